// export/output_file.h - a file that is there whole or not at all
//
// The bytes go to a new file beside the target, which takes the target's place when all of them are written. Until
// then, and when anything fails, an earlier file of that name stays as it was. Files that belong together are all
// closed first and put in place only when every one of them is whole. A link is followed: what it points to is
// replaced. A device or a pipe takes the bytes directly; a file that may not be written is not replaced either.
#pragma once
#include <stdio.h>
#include <string>

struct OutputFile
{
    FILE* file;            // write here; null before opening and after closing
    std::string target;    // the name that was asked for
    std::string place;     // the file itself, links followed
    std::string temporary; // where the bytes are meanwhile; empty: nothing lies there
};

// Creates the file beside the target. Returns 1, or 0 after the box "Error cannot create".
int openOutput(OutputFile* output, const char* target);

// Closes the file. whole 0: a write has failed before. Returns 1 when all of it is written; else 0, after the box
// "Error cannot write", with nothing left beside the target.
int closeOutput(OutputFile* output, int whole);

// Puts closed files in the places of their targets, first to last. Returns 1; or 0 after the box "Error cannot write",
// with those that have not been put in place removed.
int commitOutputs(OutputFile* outputs, int count);

// Closes and removes what has not been put in place. For every stage of an output, a cleared record included.
void abandonOutputs(OutputFile* outputs, int count);

// closeOutput and commitOutputs for a file that stands alone.
int commitOutput(OutputFile* output, int whole);
