// platform/win32/standard_input.cpp - a copy of standard input in a temporary file
//
// The file is deleted by name: one that is deleted with its handle cannot be opened by the C library meanwhile.
#include "platform/standard_input.h"

#include "platform/win32/names.h"

#include <errno.h>
#include <windows.h>

static std::wstring kept;

static bool copyInput(HANDLE file, int64_t limitBytes)
{
    char bytes[32768];
    HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    int64_t all = 0;
    DWORD count = 0, written = 0;
    while (ReadFile(input, bytes, sizeof bytes, &count, nullptr) && count > 0)
    {
        all += count;
        if (all > limitBytes)
        {
            errno = EFBIG;
            return false;
        }
        if (!WriteFile(file, bytes, count, &written, nullptr) || written != count)
        {
            errno = ENOSPC;
            return false;
        }
    }
    return true;
}

int keepStandardInput(int64_t limitBytes, std::string* path)
{
    wchar_t folder[MAX_PATH + 1], name[MAX_PATH + 1];
    errno = EACCES;
    if (!GetTempPathW(MAX_PATH + 1, folder) || !GetTempFileNameW(folder, L"kbx", 0, name))
        return 0;
    kept = name;
    HANDLE file = CreateFileW(name, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_TEMPORARY, nullptr);
    bool whole = file != INVALID_HANDLE_VALUE && copyInput(file, limitBytes);
    if (file != INVALID_HANDLE_VALUE)
        CloseHandle(file);
    if (whole)
    {
        *path = utf8FromWide(name);
        return 1;
    }
    int reason = errno;
    dropStandardInput();
    errno = reason;
    return 0;
}

void dropStandardInput()
{
    if (!kept.empty())
        DeleteFileW(kept.c_str());
    kept.clear();
}
