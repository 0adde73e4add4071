// platform/win32/files.cpp - files by wide names, where letter case does not count
#include "platform/files.h"
#include "platform/win32/names.h"

#include <errno.h>
#include <fcntl.h>
#include <io.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <windows.h>

std::wstring wideFromUtf8(const char* text)
{
    int length = MultiByteToWideChar(CP_UTF8, 0, text, -1, nullptr, 0);
    if (length < 1)
        return {};
    std::wstring wide(static_cast<size_t>(length), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text, -1, wide.data(), length);
    wide.resize(static_cast<size_t>(length) - 1);
    return wide;
}

std::string utf8FromWide(const wchar_t* text)
{
    int length = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
    if (length < 1)
        return {};
    std::string narrow(static_cast<size_t>(length), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, -1, narrow.data(), length, nullptr, nullptr);
    narrow.resize(static_cast<size_t>(length) - 1);
    return narrow;
}

static std::wstring fullWidePath(const std::wstring& path)
{
    std::wstring full(GetFullPathNameW(path.c_str(), 0, nullptr, nullptr), L'\0');
    DWORD length = GetFullPathNameW(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
    if (length == 0 || length >= full.size())
        return path;
    full.resize(length);
    return full;
}

std::wstring widePath(const char* path)
{
    constexpr size_t shortPath = 240; // MAX_PATH, without what a folder must leave for a name of the old form
    std::wstring wide = wideFromUtf8(path);
    bool literal = wide.rfind(LR"(\\?\)", 0) == 0 || wide.rfind(LR"(\\.\)", 0) == 0;
    if (literal)
        return wide;
    std::wstring full = fullWidePath(wide);
    if (full.size() < shortPath)
        return wide;
    bool ofServer = full.rfind(LR"(\\)", 0) == 0;
    return ofServer ? LR"(\\?\UNC\)" + full.substr(2) : LR"(\\?\)" + full;
}

static HANDLE handleOf(FILE* file)
{
    return reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(file)));
}

static FILE* openStandardOutput()
{
    int copy = _dup(1);
    if (copy < 0)
        return nullptr;
    _setmode(copy, _O_BINARY);
    return _fdopen(copy, "wb");
}

FILE* openFile(const char* path, const char* mode)
{
    if (*mode == 'w' && isStandardOutput(path))
        return openStandardOutput();
    std::wstring wide = widePath(path);
    DWORD facts = GetFileAttributesW(wide.c_str());
    if (facts != INVALID_FILE_ATTRIBUTES && (facts & FILE_ATTRIBUTE_DIRECTORY))
        return nullptr;
    FILE* file = _wfopen(wide.c_str(), wideFromUtf8(mode).c_str());
    if (file && *mode == 'r' && GetFileType(handleOf(file)) == FILE_TYPE_CHAR) // such as a material library named CON
    {
        fclose(file);
        return nullptr;
    }
    return file;
}

// The C library has no name of its own for a pipe that is being closed.
int causeOfFailure()
{
    unsigned long own = _doserrno;
    bool closed = own == ERROR_BROKEN_PIPE || own == ERROR_NO_DATA || own == ERROR_PIPE_NOT_CONNECTED;
    return errno == EINVAL && closed ? EPIPE : errno;
}

int isPlainFile(const char* path)
{
    DWORD facts = GetFileAttributesW(widePath(path).c_str());
    return facts != INVALID_FILE_ATTRIBUTES && !(facts & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE));
}

std::string fullPathOf(const char* path)
{
    return *path ? utf8FromWide(fullWidePath(wideFromUtf8(path)).c_str()) : "";
}

int64_t measureFile(FILE* file)
{
    if (_fseeki64(file, 0, SEEK_END) != 0)
        return -1;
    int64_t size = _ftelli64(file);
    return _fseeki64(file, 0, SEEK_SET) == 0 ? size : -1;
}

int64_t filePosition(FILE* file)
{
    return _ftelli64(file);
}

int seekFile(FILE* file, int64_t position)
{
    return _fseeki64(file, position, SEEK_SET) == 0;
}

int findNameIgnoringCase(FolderListings*, const char* folder, const char* name, char* found, size_t roomBytes)
{
    std::string path = *folder ? std::string(folder) + "\\" + name : std::string(name);
    if (GetFileAttributesW(widePath(path.c_str()).c_str()) == INVALID_FILE_ATTRIBUTES || strlen(name) >= roomBytes)
        return 0;
    memcpy(found, name, strlen(name) + 1);
    return 1;
}

// Whether another file may take the place of this one. A program that has it open can forbid that. Asking before
// anything is written keeps a set from being replaced in part.
static bool mayBeReplaced(const std::wstring& path)
{
    HANDLE file = CreateFileW(path.c_str(), DELETE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                              OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    CloseHandle(file);
    return true;
}

int listNames(const char* folder, std::vector<std::string>* names)
{
    WIN32_FIND_DATAW entry;
    HANDLE search = FindFirstFileW(widePath((std::string(folder) + "\\*").c_str()).c_str(), &entry);
    if (search == INVALID_HANDLE_VALUE)
        return 0;
    do
        names->push_back(utf8FromWide(entry.cFileName));
    while (FindNextFileW(search, &entry));
    FindClose(search);
    return 1;
}

FileTarget findFileTarget(const char* path, std::string* actual)
{
    *actual = path;
    if (*path == 0)
        return targetRefused;
    if (isStandardOutput(path))
        return targetDirect;
    std::wstring wide = widePath(path);
    DWORD facts = GetFileAttributesW(wide.c_str());
    if (facts != INVALID_FILE_ATTRIBUTES && (facts & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY)))
        return targetRefused;
    HANDLE handle = CreateFileW(wide.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                OPEN_EXISTING, 0, nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        return targetReplaceable;
    DWORD type = GetFileType(handle);
    CloseHandle(handle);
    if (type == FILE_TYPE_CHAR || type == FILE_TYPE_PIPE)
        return targetDirect;
    return mayBeReplaced(wide) ? targetReplaceable : targetRefused;
}
