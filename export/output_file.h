// export/output_file.h - the files that a writer makes, and what becomes of them when something fails
//
// saveWhole: the bytes go to a pending file (platform/pending_files.h), which takes the target's place when all of them
// are written. Until then, and when anything fails, an earlier file of that name stays as it was. Files that belong
// together take their places only when every one of them is whole. A link is followed: what it points to is replaced. A
// device or a pipe takes the bytes directly; a file that may not be written is not replaced either.
//
// saveInPlace: the bytes go straight into the target, and nothing is shown. What was written before a failure stays.
#pragma once
#include "platform/pending_files.h"

#include <stdio.h>
#include <string>

enum SaveMode
{
    saveInPlace, // the desktop program; its commands say what their users are told
    saveWhole    // the command line; every failure is shown in a box, and its cause explained
};

struct OutputFile
{
    FILE* file; // write here; null before opening and after closing
    SaveMode mode;
    std::string target;  // the name that was asked for
    PendingFile pending; // of saveWhole; its file is null where the target takes the bytes directly
};

// Creates the target, or with saveWhole the pending file. Returns 1, or 0: in saveWhole after the box "Error cannot
// create".
int openOutput(OutputFile* output, const std::string& target, SaveMode mode);

// Ends the writing of a file. written: whether all writes before have succeeded. Returns 1 when the file is whole; else
// 0, in saveWhole after the box "Error cannot write" and with the pending file gone.
int closeOutput(OutputFile* output, bool written);

// Ends a set of files. When all of them are whole, it puts the closed ones in the places of their targets, first to
// last; cleared records are passed over. Else it removes what is pending. Returns 1, or 0: not whole, or one could not
// be put in place, after the box "Error cannot write" and with those behind it removed.
int commitOutputs(OutputFile* outputs, int count, bool whole);

// closeOutput and commitOutputs for a file that stands alone.
int commitOutput(OutputFile* output, bool written);
