// tests/hostile/hostile_files.h - files that are wrong on purpose: every class of mistake in every format that can have
// it
//
// The files are made in memory, the same ones in every run. A format's files begin as a small correct file with one
// place left open; each class fills that place with the values that readers get wrong.
#pragma once
#include <string>
#include <vector>

struct HostileFile
{
    std::string kind;      // the class of the mistake, such as "index" or "count"
    std::string extension; // of the format, lower case, without the "."
    std::string detail;    // what is wrong, for messages
    std::string bytes;
};

// All of them, at least a thousand, grouped by format.
std::vector<HostileFile> hostileFiles();
