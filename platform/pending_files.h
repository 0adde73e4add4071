// platform/pending_files.h - files that appear whole or not at all
//
// A pending file is written in the folder of its place and takes the place when it is whole. Where the operating system
// can keep a file without a name (Linux) or delete one with its last handle (Windows), nothing of it stays behind when
// the process ends in the middle; elsewhere the next writer in the folder uses what stayed behind again.
//
// A file that stood in the place is replaced, not rewritten: its other hard links keep the old contents. The new file
// keeps the old one's permissions, but set-user-id and set-group-id bits only where owner and group stay the same.
#pragma once
#include <stdio.h>
#include <string>

struct PendingFile
{
    FILE* file;            // written to; null when there is none
    std::string place;     // the path that it takes in the end; no link
    std::string temporary; // the name that it has meanwhile; empty while it has none
};

// Creates a pending file. Returns 1, or 0 with errno set. Its temporary name does not depend on the place's, so that
// every name that the operating system allows can be written.
int createPendingFile(PendingFile* pending, const char* place);

// Hands all that was written to the operating system. The file stays open. Returns 1, or 0 with errno set when a write
// has failed, now or before.
int finishPendingFile(PendingFile* pending);

// Puts finished files into their places, first to last, and closes them. Files that belong together go in one call: of
// two processes that put the same files at once, one puts all of its own first. Returns how many are in their places;
// fewer than count after a failure, with errno set. The others are still pending.
int placePendingFiles(PendingFile* pending, int count);

// Closes a file that is not to take its place, and removes it. A cleared record is fine.
void dropPendingFile(PendingFile* pending);

// From now on the signals that end a process from outside (interrupt, termination, hang-up) remove what pending files
// have names, and then end the process as they always do. For a command line; Windows needs nothing.
void removePendingFilesOnSignals();

// Removes what pending files have names, at once and without memory, for a process that must end.
void removePendingFiles();

// Gives pending files names from the start, as on file systems without unnamed files; for tests.
void namePendingFilesAtOnce(bool on);
