// platform/win32/folders.cpp - folders, where letter case does not count
#include "platform/folders.h"

#include "platform/win32/names.h"

#include <errno.h>
#include <windows.h>

static bool isFolder(const std::wstring& path)
{
    DWORD facts = GetFileAttributesW(path.c_str());
    return facts != INVALID_FILE_ATTRIBUTES && (facts & FILE_ATTRIBUTE_DIRECTORY);
}

int makeFolder(const std::string& folder)
{
    for (size_t end = 1; end <= folder.size(); ++end)
    {
        bool atSeparator = end == folder.size() || folder[end] == '/' || folder[end] == '\\';
        if (!atSeparator || folder[end - 1] == ':') // a drive is there
            continue;
        std::wstring part = widePath(folder.substr(0, end).c_str());
        if (!CreateDirectoryW(part.c_str(), nullptr) && !isFolder(part) && end == folder.size())
        {
            errno = GetLastError() == ERROR_PATH_NOT_FOUND ? ENOENT : EACCES;
            return 0;
        }
    }
    return 1;
}

int pathExists(const std::string& path)
{
    return GetFileAttributesW(widePath(path.c_str()).c_str()) != INVALID_FILE_ATTRIBUTES;
}

int folderIgnoresCase(const std::string&)
{
    return 1;
}

std::wstring foldedName(const std::string& name)
{
    std::wstring wide = wideFromUtf8(name.c_str());
    CharUpperW(wide.data());
    return wide;
}
