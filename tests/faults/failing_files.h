// tests/faults/failing_files.h - files like the posix ones that fail after a number of bytes
#pragma once
#include <stdint.h>

struct FileFaults
{
    int64_t readableBytes = -1; // of each file opened for reading; an error comes after them. -1: all
    int64_t writableBytes = -1; // of all files opened for writing together. -1: all
    int openAllowed = -1;       // files that open from now on. -1: all
    int renamesAllowed = -1;    // files that are put in place from now on. -1: all
    int failures = 0;           // reads, writes, openings and renames that have failed
};

extern FileFaults fileFaults;
