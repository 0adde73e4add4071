// export/file_names.cpp - names that fit a dialog
#include "export/file_names.h"

#include <string.h>

void proposeName(char* buffer, const std::string& stem, const char* extension)
{
    size_t extensionBytes = strlen(extension);
    size_t stemBytes =
        stem.size() < saveNameCharacters - 1 - extensionBytes ? stem.size() : saveNameCharacters - 1 - extensionBytes;
    memcpy(buffer, stem.data(), stemBytes);
    memcpy(buffer + stemBytes, extension, extensionBytes + 1);
}
