// import/common/report_lines.h - the lines of a file where a report says that something happened
#pragma once
#include "model/report.h"

// Fills in the lines of the first positions, and of the failure, for a text file. It reads the file once more, so that
// readers need not count lines; a report without positions costs nothing. CR, LF and CR LF end a line.
void locateReport(Report* report, const char* path);
