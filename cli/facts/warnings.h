// cli/facts/warnings.h - what a report says, in words for people
#pragma once
#include "model/report.h"

#include <string>

// One kind of a report: its text, its count, names and details, and where it happened first.
std::string warningText(const Report& report, ReportKind kind);

// Prints a line on standard error for each kind that happened: kbx: FILE: warning: TEXT. Prints nothing when quiet.
void printWarnings(const std::string& path, const Report& report, bool quiet);

// Why a file was not read: the reader's reason where it opened, otherwise that of the operating system.
std::string causeOf(const Report& report, const std::string& path, bool outOfMemory);
