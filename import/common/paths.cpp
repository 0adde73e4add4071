// import/common/paths.cpp - finding named files beside a model
#include "import/common/paths.h"

#include "platform/file_names.h"
#include "platform/files.h"

#include <algorithm>

// Only plain files count, because a pipe could make the program wait for ever.
static bool fileOpens(const std::string& path)
{
    FILE* file = isPlainFile(path.c_str()) ? openFile(path.c_str(), "rb") : nullptr;
    if (file)
        fclose(file);
    return file != nullptr;
}

static bool isAbsolute(const std::string& name)
{
#ifdef _WIN32
    if (name[0] == '\\' || name.find(':') != std::string::npos)
        return true;
#endif
    return name[0] == '/';
}

// Returns folder + name, found without regard to the letter case of each part of the name. Empty when a part is
// missing.
static std::string findIgnoringCase(std::string folder, const std::string& name, FolderListings* listings)
{
    size_t begin = 0;
    for (;;)
    {
        size_t end = std::min(name.find('/', begin), name.size());
        std::string part = name.substr(begin, end - begin);
        char found[1024];
        if (!part.empty() && !findNameIgnoringCase(listings, folder.c_str(), part.c_str(), found, sizeof found))
            return {};
        if (!part.empty())
            folder += found;
        if (end == name.size())
            return folder;
        folder += '/';
        begin = end + 1;
    }
}

static std::string findInFolder(const std::string& folder, const std::string& name, FolderListings* listings)
{
    std::string path = folder + name;
    if (fileOpens(path))
        return path;
    std::string slashed = name;
    std::replace(slashed.begin(), slashed.end(), '\\', '/');
    path = folder + slashed;
    if (fileOpens(path))
        return path;
    path = findIgnoringCase(folder, slashed, listings);
    return !path.empty() && fileOpens(path) ? path : std::string{};
}

static std::string findNamed(const char* modelPath, const std::string& name, FolderListings* listings)
{
    if (name.empty())
        return {};
    if (isAbsolute(name))
        return fileOpens(name) ? name : std::string{};
    return findInFolder(folderOf(modelPath), name, listings);
}

std::string findModelFile(const char* modelPath, const char* name, FolderListings* listings)
{
    std::string path = findNamed(modelPath, name, listings);
    std::string withoutBlanks(name, std::string(name).find_last_not_of(" \t") + 1); // Windows ignores trailing blanks
    return path.empty() && withoutBlanks != name ? findNamed(modelPath, withoutBlanks, listings) : path;
}

std::string findTextureFile(const char* modelPath, const char* name, FolderListings* listings)
{
    std::string path = findModelFile(modelPath, name, listings);
    const char* bare = bareNameInModel(name);
    if (path.empty() && *bare)
        path = findInFolder(folderOf(modelPath), bare, listings);
    return path;
}
