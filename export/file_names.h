// export/file_names.h - the names that save dialogs propose
#pragma once
#include "platform/dialogs.h"

#include <string>

constexpr size_t saveNameCharacters = 320; // of a path or a title that a save dialog fills
constexpr size_t saveNameRoom = dialogBytes(saveNameCharacters);

// Stem and extension into a buffer, the stem cut when both take more than saveNameCharacters bytes.
void proposeName(char* buffer, const std::string& stem, const char* extension);
