// platform/standard_input.h - standard input as a file that readers can open, measure and go back in
#pragma once
#include <stdint.h>
#include <string>

// Copies all of standard input into a temporary file and gives its path, which stays good until dropStandardInput. On
// Linux the file has no name in any folder, so that nothing stays behind, however the process ends. Returns 1, or 0
// with errno set: EFBIG when there are more than limitBytes.
int keepStandardInput(int64_t limitBytes, std::string* path);

// Removes the copy.
void dropStandardInput();
