// import/common/paths.h - files that a model names
#pragma once
#include "platform/folder_listings.h"

#include <string>

// Finds the file that a model names. It tries that name in the model's folder, then the name with '\' read as '/', then
// a name that differs only in letter case. An absolute name is used as it is. Paths and names are UTF-8. Returns ""
// when there is no such file. The caller keeps the listings for all names of one model.
std::string findModelFile(const char* modelPath, const char* name, FolderListings* listings);

// Does the same for images, whose names may contain the folders of another computer. As a last resort it tries the bare
// file name in the model's folder.
std::string findTextureFile(const char* modelPath, const char* name, FolderListings* listings);
