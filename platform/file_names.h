// platform/file_names.h - taking paths and file names apart
//
// What separates the folders of a path is the system's: only '/' on Linux, also '\' and ':' on Windows. Names that
// stand inside a model come from all kinds of machines and have a function of their own.
#pragma once
#include <string>

// Where the file name begins in a path: behind its last separator, or at its front. The result points into the path.
const char* fileNameOf(const char* path);

// The folder of a path with the separator that ends it; empty for the current folder.
std::string folderOf(const std::string& path);

// The bare file name in a name that a model mentions: what follows its last '/', '\' or ':', on every system.
const char* bareNameInModel(const char* name);

// Names without their extension, by the three rules in use. Each takes a name without a folder and returns all of it
// when it has no '.' that counts.
std::string withoutExtension(const std::string& name); // up to the last '.'; one in first position begins a name
std::string upToLastDot(const std::string& name);      // up to the last '.', also one in first position
std::string upToFirstDot(const std::string& name);     // up to the first '.', also one in first position
