// export/file_names.h - the names of the files that belong together
#pragma once
#include "platform/dialogs.h"

#include <string>

constexpr size_t saveNameCharacters = 320; // of a path or a title that a save dialog fills
constexpr size_t saveNameRoom = dialogBytes(saveNameCharacters);

// The name up to its last "."; whole when it has none. A "." in the first position counts only when asked for.
std::string cutAtLastDot(const std::string& name, int firstCounts);

// The same for a path: only what follows its last separator is looked at.
std::string cutPathAtLastDot(const std::string& path);

// Where the name begins in a path.
size_t nameStart(const std::string& path);

// Stem and extension into a buffer, the stem cut when both take more than saveNameCharacters bytes.
void proposeName(char* buffer, const std::string& stem, const char* extension);
