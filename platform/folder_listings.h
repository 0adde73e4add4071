// platform/folder_listings.h - the names in folders, for findNameIgnoringCase (platform/files.h)
#pragma once
#include <stdint.h>
#include <map>
#include <string>
#include <utility>
#include <vector>

// What the folders held when they were first looked at. A caller with many names keeps one over all of them, so that no
// folder is listed twice, by whatever path it is reached.
struct FolderListings
{
    using FolderId = std::pair<uint64_t, uint64_t>;     // the device, and the folder's number there
    std::map<FolderId, std::vector<std::string>> names; // in the order of their letters, whose case does not count
};
