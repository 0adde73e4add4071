// export/output_file.h - the files that a writer makes, and what happens to them when something fails
//
// The bytes go to a pending file (platform/pending_files.h), which replaces the target when all of them are written.
// Until then, and when anything fails, an earlier file of that name stays as it was. The files of a set replace their
// targets only when every one of them is whole. A symbolic link is followed: the file it leads to is replaced. A device
// or a pipe takes the bytes directly, and so does standard output, which is the target "-". A file without the
// permission to write is not replaced.
//
// Every failure is shown in a message box with the path and explained with its cause.
#pragma once
#include "platform/pending_files.h"

#include <stdio.h>
#include <string>

struct OutputFile
{
    FILE* file;          // write here; null before opening and after closing
    std::string target;  // the path that the user gave
    PendingFile pending; // its file is null when the target takes the bytes directly
};

// Creates the pending file of a target, or opens a device or a pipe. Returns 1, or 0 after the message box "Error
// cannot create".
int openOutput(OutputFile* output, const std::string& target);

// Ends the writing of a file. written: whether all earlier writes have succeeded. Returns 1 when the file is whole.
// Otherwise it returns 0, after the message box "Error cannot write" and with the pending file removed.
int closeOutput(OutputFile* output, bool written);

// Ends a set of files. whole: whether all of them are. If so, they replace their targets, from first to last; cleared
// records are skipped. Otherwise the pending files are removed. Returns 1; or 0 when the set is not whole, or when a
// file could not replace its target, after the message box "Error cannot write" and with the later ones removed.
int commitOutputs(OutputFile* outputs, int count, bool whole);

// Removes the pending file and leaves the target as it was, in silence: what it should hold is not to be had.
void dropOutput(OutputFile* output);

// closeOutput and commitOutputs for a single file.
int commitOutput(OutputFile* output, bool written);
