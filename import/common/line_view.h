// import/common/line_view.h - the lines of a text file, read in place in the block
//
// A line is terminated in place, so that nothing is copied. The byte under the terminator is kept and put back before
// the next line is taken.
#pragma once
#include "import/common/block_source.h"

struct LineView
{
    char* line;        // the line that nextLine took, including its line feed
    size_t lineLength; // up to the first NUL, which ends the line for all text functions
    char held;         // the byte under the line's terminator
    BlockSource blocks;
};

// Starts at the beginning of a file.
void startLines(LineView* view, FILE* file);

// Takes the next line, up to and including its line feed, at most lineRoom - 1 bytes; the rest of a longer line is the
// next one. A last line may lack its line feed. Returns false at the end of the file and when it cannot be read. The
// line is valid until the next call.
bool nextLine(LineView* view, size_t lineRoom);

// For readers that take lines straight from the block. openLines puts back the byte under the terminator, and
// closeLines keeps the next one. Between the calls blocks.at may be moved, and there is no current line.
void openLines(LineView* view);
void closeLines(LineView* view);
