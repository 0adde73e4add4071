// platform/folders.h - making folders, and which names mean the same file in one
#pragma once
#include <string>

// Makes a folder with those above it. Returns 1, also when it is there already, or 0 with errno set.
int makeFolder(const std::string& folder);

// Whether anything has this path, also a link that leads nowhere.
int pathExists(const std::string& path);

// Whether names in a folder ("" is the current one) mean the same file when they differ in letter case only. A folder
// that is not there yet is judged by the one that it will be in. Where nothing may be created, the answer is 0.
int folderIgnoresCase(const std::string& folder);

// A name with all letters in one case. In a folder that ignores case, names that become equal mean the same file.
std::wstring foldedName(const std::string& name);
