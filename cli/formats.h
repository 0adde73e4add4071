// cli/formats.h - the formats that kbx reads and writes, by the names that its options take
#pragma once
#include <string>
#include <vector>

enum class FormatUse
{
    modelRead,
    modelWritten,
    pictureWritten
};

// The names of the formats with a use, such as "obj", in the order of kbx formats.
std::vector<std::string> formatNames(FormatUse use);

// Prints all of them. Returns the exit status.
int runFormats();
