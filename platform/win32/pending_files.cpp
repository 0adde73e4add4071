// platform/win32/pending_files.cpp - files that are deleted with their last handle unless they are completed
#include "platform/pending_files.h"

#include "platform/file_names.h"
#include "platform/win32/names.h"

#include <errno.h>
#include <fcntl.h>
#include <io.h>
#include <windows.h>

// Sets errno as the C library does for the errors that writers meet.
static void setErrno(DWORD error)
{
    switch (error)
    {
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL: errno = ENOSPC; break;
    case ERROR_PATH_NOT_FOUND:
    case ERROR_FILE_NOT_FOUND: errno = ENOENT; break;
    case ERROR_NOT_ENOUGH_MEMORY:
    case ERROR_OUTOFMEMORY: errno = ENOMEM; break;
    default: errno = EACCES; break;
    }
}

static bool deleteWithHandle(HANDLE file, bool on)
{
    FILE_DISPOSITION_INFO facts = { static_cast<BOOLEAN>(on) };
    return SetFileInformationByHandle(file, FileDispositionInfo, &facts, sizeof facts) != 0;
}

static HANDLE handleOf(FILE* file)
{
    return reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(file)));
}

// The process id makes the name unique.
static HANDLE createTemporary(PendingFile* pending)
{
    for (int number = 0;; ++number)
    {
        pending->temporary = folderOf(pending->place) + ".kestrelbox-" + std::to_string(GetCurrentProcessId()) + "-" +
                             std::to_string(number) + ".part";
        HANDLE file = CreateFileW(widePath(pending->temporary.c_str()).c_str(), GENERIC_WRITE | DELETE,
                                  FILE_SHARE_DELETE, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
        DWORD error = GetLastError();
        if (file != INVALID_HANDLE_VALUE || error != ERROR_FILE_EXISTS)
        {
            setErrno(error);
            return file;
        }
    }
}

int createPendingFile(PendingFile* pending, const char* place)
{
    *pending = { nullptr, place, "" };
    HANDLE file = createTemporary(pending);
    if (file == INVALID_HANDLE_VALUE)
    {
        pending->temporary.clear();
        return 0;
    }
    deleteWithHandle(file, true); // where the file system cannot do this, a process that ends leaves the file behind
    int descriptor = _open_osfhandle(reinterpret_cast<intptr_t>(file), _O_BINARY);
    pending->file = descriptor < 0 ? nullptr : _fdopen(descriptor, "wb");
    if (pending->file)
        return 1;
    if (descriptor < 0)
        CloseHandle(file);
    else
        _close(descriptor);
    pending->temporary.clear();
    errno = ENOMEM;
    return 0;
}

int finishPendingFile(PendingFile* pending)
{
    return !ferror(pending->file) && fflush(pending->file) == 0;
}

static int placeFile(PendingFile* pending)
{
    if (!deleteWithHandle(handleOf(pending->file), false))
    {
        setErrno(GetLastError());
        return 0;
    }
    int closed = fclose(pending->file);
    pending->file = nullptr;
    if (closed != 0)
        return 0;
    if (!MoveFileExW(widePath(pending->temporary.c_str()).c_str(), widePath(pending->place.c_str()).c_str(),
                     MOVEFILE_REPLACE_EXISTING))
    {
        setErrno(GetLastError());
        return 0;
    }
    pending->temporary.clear();
    return 1;
}

// Places one set at a time on this machine, and stops waiting for a process that keeps its turn too long.
int placePendingFiles(PendingFile* pending, int count)
{
    constexpr DWORD patienceMs = 2000;
    HANDLE turn = count > 1 ? CreateMutexW(nullptr, FALSE, L"Local\\kestrelbox-placing-files") : nullptr;
    DWORD waited = turn ? WaitForSingleObject(turn, patienceMs) : WAIT_FAILED;
    int placed = 0;
    while (placed < count && placeFile(&pending[placed]))
        ++placed;
    if (waited == WAIT_OBJECT_0 || waited == WAIT_ABANDONED)
        ReleaseMutex(turn);
    if (turn)
        CloseHandle(turn);
    return placed;
}

void dropPendingFile(PendingFile* pending)
{
    if (pending->file)
        fclose(pending->file);
    if (!pending->temporary.empty())
        DeleteFileW(widePath(pending->temporary.c_str()).c_str());
    pending->file = nullptr;
    pending->temporary.clear();
}

// Nothing to do: the operating system deletes the files with their handles, however the process ends.
void removePendingFilesOnSignals() {}
void removePendingFiles() {}

// Nothing to do: the files always have names.
void namePendingFilesAtOnce(bool) {}
