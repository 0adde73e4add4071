// platform/files.h - files by names in UTF-8, whatever encoding the operating system uses
//
// Programs on Windows link win32/files.cpp, others posix/files.cpp. The tests of faults have their own, which fails on
// request.
#pragma once
#include <stdio.h>
#include <stddef.h>
#include <stdint.h>
#include <string>
#include <vector>

// fopen for a UTF-8 path. Null when the file does not open, for a folder, and for reading from a device, which may
// never end. errno then has the cause. For writing, "-" is standard output.
FILE* openFile(const char* path, const char* mode);

// Returns 1 when the path, with links followed, leads to a regular file, and 0 for a folder, a device, a pipe or
// nothing, and for what only looks like a file, such as those of /proc and /sys, which may never end.
int isPlainFile(const char* path);

// The path with the current folder in front when it is relative, so that it still means the same file after the current
// folder has changed. An empty path stays empty.
std::string fullPathOf(const char* path);

// The size of an open file in bytes, or -1 when it cannot be measured. Moves the position to the start of the file.
int64_t measureFile(FILE* file);

// Get the position in bytes from the start of the file (-1 when unknown), and set it (returns 1, or 0 when that fails).
// Both go past 2 GiB in every build.
int64_t filePosition(FILE* file);
int seekFile(FILE* file, int64_t position);

// errno of a call that has just failed, where EPIPE means everywhere that nobody reads the pipe any more.
int causeOfFailure();

struct FolderListings; // platform/folder_listings.h

// Looks in a folder ("" is the current one) for a file whose name is the given one in any case of its ASCII letters.
// Writes the name as the folder spells it and returns 1, or returns 0 when there is none or it does not fit in
// roomBytes. Of names that differ in their case only it is the one that the operating system lists first.
int findNameIgnoringCase(FolderListings* listings, const char* folder, const char* name, char* found, size_t roomBytes);

// Appends the names in a folder ("." is the current one), in no order, folders among them. Returns 1, or 0 when it
// cannot be listed.
int listNames(const char* folder, std::vector<std::string>* names);

// What is at the path of a target.
enum FileTarget
{
    targetReplaceable, // a file, or nothing yet: a whole file may take its place
    targetDirect,      // a device or a pipe: written to directly, never replaced
    targetRefused      // a folder, or a file without the permission to write
};

// Whether a path to write is standard output.
inline bool isStandardOutput(const std::string& path)
{
    return path == "-";
}

// Finds out what is at a path, and gives the path of the file itself, with links followed. Refuses an empty path.
FileTarget findFileTarget(const char* path, std::string* actual);
