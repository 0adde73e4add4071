// import/common/paths.h - files that a model names
#pragma once
#include "platform/folder_listings.h"

#include <string>

// Finds the file that a model names: that name in the model's folder, else the name with '\' read as '/', else the name
// that differs only in the case of its letters. An absolute name is used as it is. Paths and names are UTF-8. Returns
// "" when there is no such file. For the many names of one model the caller keeps the listings.
std::string findModelFile(const char* modelPath, const char* name, FolderListings* listings);

// The same for images, whose names may hold the folders of another computer: at last it tries the bare file name in the
// model's folder.
std::string findTextureFile(const char* modelPath, const char* name, FolderListings* listings);
