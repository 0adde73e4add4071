// import/common/line_view.h - the lines of a text file, where they lie in the block
//
// A line is terminated in place, so that nothing is copied. The byte under the terminator is kept and put back before
// the next line is taken.
#pragma once
#include "import/common/block_source.h"

struct LineView
{
    char* line;        // of nextLine: the line, its line feed included
    size_t lineLength; // up to the first NUL, which ends a line for everybody who reads it as text
    char held;         // the byte under the line's terminator
    BlockSource blocks;
};

// Starts at the beginning of a file.
void startLines(LineView* view, FILE* file);

// Takes the next line: up to and including its line feed, at most lineRoom - 1 bytes (what is left of a longer line is
// the next one). A last line need not have a line feed. Returns false at the end of the file and when it cannot be
// read. The line stays where it is until the next call.
bool nextLine(LineView* view, size_t lineRoom);

// For readers that take lines straight from the block: puts back the byte under the terminator, and, when they are
// done, keeps the next one. In between blocks.at may be moved, but no line is there.
void openLines(LineView* view);
void closeLines(LineView* view);
