// import/common/paths.h - files that a model names
#pragma once
#include <string>

// The file that a model means by a name: that name in the model's folder, else the name with '\' read as '/', else the
// one that differs only in the case of its letters. An absolute name is taken as it stands. Paths and names are UTF-8.
// Empty when there is none.
std::string findModelFile(const char* modelPath, const char* name);

// The same for pictures, whose names come from all kinds of machines: at last the bare file name in the model's folder.
std::string findTextureFile(const char* modelPath, const char* name);
