// platform/file_names.h - taking paths and file names apart
//
// The operating system decides what separates the folders of a path: only '/' on Linux, also '\' and ':' on Windows.
// Names inside a model come from every operating system and have a function of their own.
#pragma once
#include <string>

// The file name in a path: what stands behind its last separator, or all of it. The result points into the path.
const char* fileNameOf(const char* path);

// The folder of a path with the separator that ends it; empty for the current folder.
std::string folderOf(const std::string& path);

// The file name in a name that stands in a model: what follows its last '/', '\' or ':', on every operating system.
const char* bareNameInModel(const char* name);

// A file name without its extension, by the three rules in use. Without a '.' that counts, the result is the whole
// name.
std::string withoutExtension(const std::string& name); // up to the last '.'; one in first position begins a name
std::string upToLastDot(const std::string& name);      // up to the last '.', also one in first position
std::string upToFirstDot(const std::string& name);     // up to the first '.', also one in first position
