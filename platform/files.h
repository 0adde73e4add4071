// platform/files.h - files by names in UTF-8, whatever the system calls them
#pragma once
#include <stdio.h>
#include <stddef.h>
#include <stdint.h>
#include <string>

// fopen for a UTF-8 path. Null when it does not open, for a folder, and for reading from a device, which may never end.
FILE* openFile(const char* path, const char* mode);

// Creates a file to be written where nothing stands yet, not even a link to nowhere. Null when it cannot be made;
// *taken tells whether because something stands there.
FILE* createFile(const char* path, int* taken);

// Whether a file stands there, links followed: no folder, device or pipe.
int isPlainFile(const char* path);

// The path with the current folder in front when it does not name one from the root, so that it still means the same
// file after the current folder has changed. An empty path stays empty.
std::string fullPathOf(const char* path);

// The size of an open file in bytes and the position back at its start; -1 when it cannot be measured.
int64_t measureFile(FILE* file);

// The position from the start of the file in bytes; -1 when unknown. Both go past 2 GiB on every target.
int64_t filePosition(FILE* file);
int seekFile(FILE* file, int64_t position);

// Looks in a folder ("" is the current one) for a file whose name equals the given one but for the case of ASCII
// letters. Writes the name as it stands there and returns 1; 0 when there is none or it does not fit in roomBytes.
int findNameIgnoringCase(const char* folder, const char* name, char* found, size_t roomBytes);

// What a path to be written stands for.
enum FileTarget
{
    targetReplaceable, // a file, or nothing yet: a whole file may take its place
    targetDirect,      // a device or a pipe: written as it stands, never replaced
    targetRefused      // a folder, or a file that must not be written
};

// Looks at what stands at a path. Writes the path of the file itself, links followed; an empty path is refused, as is
// one that does not fit in roomBytes.
FileTarget findFileTarget(const char* path, char* actual, size_t roomBytes);

// Replaces a file by another one in one step; the permissions stay those of the file that was there. Returns 1, or 0
// with both as they were.
int renameFile(const char* from, const char* to);
int removeFile(const char* path);
