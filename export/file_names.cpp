// export/file_names.cpp - cutting extensions and adding others
#include "export/file_names.h"

#include <string.h>

std::string cutAtLastDot(const std::string& name, int firstCounts)
{
    size_t dot = name.rfind('.');
    if (dot == std::string::npos || (dot == 0 && !firstCounts))
        return name;
    return name.substr(0, dot);
}

size_t nameStart(const std::string& path)
{
    size_t separator = path.find_last_of("/\\:");
    return separator == std::string::npos ? 0 : separator + 1;
}

std::string cutPathAtLastDot(const std::string& path)
{
    size_t start = nameStart(path);
    return path.substr(0, start) + cutAtLastDot(path.substr(start), 1);
}

void proposeName(char* buffer, const std::string& stem, const char* extension)
{
    size_t extensionBytes = strlen(extension);
    size_t stemBytes =
        stem.size() < saveNameCharacters - 1 - extensionBytes ? stem.size() : saveNameCharacters - 1 - extensionBytes;
    memcpy(buffer, stem.data(), stemBytes);
    memcpy(buffer + stemBytes, extension, extensionBytes + 1);
}
