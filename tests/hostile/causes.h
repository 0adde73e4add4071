// tests/hostile/causes.h - what a reader says about each class of mistake
#pragma once
#include "model/report.h"
#include "tests/hostile/hostile_files.h"

#include <regex>
#include <string>
#include <vector>

struct ExpectedCauses
{
    const char* extension;
    const char* kind;                  // the class of mistake
    std::vector<ReportKind> warnings;  // those that its mistakes can cause
    std::vector<const char*> failures; // the same for reasons of a failure: the words in them
    std::string silent;                // details of the files that lose nothing, as a regular expression
};

// The row of a file's class; null when there is none.
const ExpectedCauses* expectedCauses(const HostileFile& file);

// What of a report the row does not expect; empty when all is as expected.
std::string unexpectedIn(const Report& report, const HostileFile& file, const ExpectedCauses& expected);
