// cli/version.h - which kbx this is
#pragma once

extern const char versionNumber[]; // such as "0.1.0"
extern const char versionLine[];   // what kbx --version prints: the number and the build
