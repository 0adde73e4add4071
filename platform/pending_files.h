// platform/pending_files.h - files that appear whole or not at all
//
// A pending file is written in the folder of its final path and moves there when it is whole. Linux can keep a file
// without a name, and Windows deletes a file with its last handle: there nothing stays behind when the process ends
// early. Some file systems can do neither. There a temporary file stays behind, and the next writer in the folder uses
// it again.
//
// A file that already has the final path is replaced, not rewritten: its other hard links keep the old contents. The
// new file gets the old one's permissions, but set-user-id and set-group-id bits only when owner and group are the
// same.
#pragma once
#include <stdio.h>
#include <string>

struct PendingFile
{
    FILE* file;            // written to; null when there is none
    std::string place;     // the final path; not a symbolic link
    std::string temporary; // the path that it has until then; empty while it has none
};

// Creates a pending file for a final path. Returns 1, or 0 with errno set. Its temporary name does not contain the
// final one, so that names up to the operating system's limit can be written.
int createPendingFile(PendingFile* pending, const char* place);

// Passes everything that was written on to the operating system. The file stays open. Returns 1, or 0 with errno set
// when this write or an earlier one has failed.
int finishPendingFile(PendingFile* pending);

// Moves finished files to their final paths, from first to last, and closes them. Files that belong together go in one
// call: when two processes place the same files at once, one of them places all of its files before the other begins.
// It waits two seconds at most for the other. Returns how many files were placed: fewer than count after a failure,
// with errno set. The others are still pending.
int placePendingFiles(PendingFile* pending, int count);

// Closes and removes a file that will not be placed. A cleared record is fine.
void dropPendingFile(PendingFile* pending);

// From now on, interrupt, termination and hang-up signals first remove the pending files that have names, and then end
// the process as usual. For the command line. It does nothing on Windows, which deletes these files itself.
void removePendingFilesOnSignals();

// Removes the pending files that have names, without requesting memory, for a process that has to end at once.
void removePendingFiles();

// Gives pending files their names from the start, as on file systems without unnamed files. For tests.
void namePendingFilesAtOnce(bool on);
