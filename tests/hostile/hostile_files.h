// tests/hostile/hostile_files.h - files with known mistakes: every class of mistake in every format that can have it
//
// The files are made in memory and are the same in every run. Each starts as a small correct file of its format. One
// place of it is then filled with a value that readers often get wrong.
#pragma once
#include <string>
#include <vector>

struct HostileFile
{
    std::string kind;      // the class of mistake, such as "index" or "count"
    std::string extension; // of the format, lower case, without the "."
    std::string detail;    // what is wrong, for messages
    std::string bytes;
};

// All files, at least a thousand, grouped by format.
std::vector<HostileFile> hostileFiles();

// Those of one format.
std::vector<HostileFile> hostileFilesOf(const std::string& extension);
