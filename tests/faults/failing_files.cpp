// tests/faults/failing_files.cpp - platform/files.h with failing reads and writes
//
// The real file is wrapped in a stream of the test. It reports the real size, so a reader only notices the failure when
// it gets there, as with a bad sector or a network share that disappears.
#include "tests/faults/failing_files.h"

#include "platform/files.h"
#include "platform/pending_files.h"

#include <errno.h>
#include <string.h>
#include <filesystem>

FileFaults fileFaults;

static int fail()
{
    ++fileFaults.failures;
    errno = EIO;
    return -1;
}

static ssize_t readSome(void* cookie, char* bytes, size_t size)
{
    FILE* file = static_cast<FILE*>(cookie);
    if (fileFaults.readableBytes >= 0)
    {
        int64_t left = fileFaults.readableBytes - ftello(file);
        if (left <= 0 && size > 0)
            return fail();
        size = static_cast<size_t>(left) < size ? static_cast<size_t>(left) : size;
    }
    return static_cast<ssize_t>(fread(bytes, 1, size, file));
}

static ssize_t writeSome(void* cookie, const char* bytes, size_t size)
{
    FILE* file = static_cast<FILE*>(cookie);
    if (fileFaults.writableBytes >= 0)
    {
        if (fileFaults.writableBytes < static_cast<int64_t>(size))
        {
            fileFaults.writableBytes = 0;
            fail();
            return 0; // how such a stream reports an error
        }
        fileFaults.writableBytes -= static_cast<int64_t>(size);
    }
    return static_cast<ssize_t>(fwrite(bytes, 1, size, file));
}

static int seek(void* cookie, off64_t* position, int whence)
{
    FILE* file = static_cast<FILE*>(cookie);
    if (fseeko(file, *position, whence) != 0)
        return -1;
    *position = ftello(file);
    return 0;
}

static int closeFile(void* cookie)
{
    return fclose(static_cast<FILE*>(cookie));
}

static bool mayOpen()
{
    if (fileFaults.openAllowed == 0)
    {
        fail();
        return false;
    }
    fileFaults.openAllowed -= fileFaults.openAllowed > 0;
    return true;
}

static FILE* withFaults(FILE* file, const char* mode)
{
    return file ? fopencookie(file, mode, { readSome, writeSome, seek, closeFile }) : nullptr;
}

FILE* openFile(const char* path, const char* mode)
{
    std::error_code unknown;
    if (!mayOpen() || std::filesystem::is_directory(path, unknown))
        return nullptr;
    return withFaults(fopen(path, mode), mode);
}

int causeOfFailure()
{
    return errno;
}

int isPlainFile(const char* path)
{
    std::error_code unknown;
    return std::filesystem::is_regular_file(path, unknown);
}

std::string fullPathOf(const char* path)
{
    return *path ? std::filesystem::absolute(path).string() : "";
}

int findNameIgnoringCase(FolderListings*, const char*, const char*, char*, size_t)
{
    return 0; // the tests use the exact file names
}

int listNames(const char*, std::vector<std::string>*)
{
    return 0; // no test looks for neighbours
}

FileTarget findFileTarget(const char* path, std::string* actual)
{
    *actual = path;
    return *path == 0 ? targetRefused : targetReplaceable; // the tests have neither links nor devices
}

// Behave as the real ones do on a file system where files always have names.
int createPendingFile(PendingFile* pending, const char* place)
{
    *pending = { nullptr, place, "" };
    if (!mayOpen())
        return 0;
    std::string name = std::string(place) + ".part";
    pending->file = withFaults(fopen(name.c_str(), "wbx"), "wb");
    if (pending->file)
        pending->temporary = name;
    return pending->file != nullptr;
}

int finishPendingFile(PendingFile* pending)
{
    return !ferror(pending->file) && fflush(pending->file) == 0;
}

int placePendingFiles(PendingFile* pending, int count)
{
    for (int i = 0; i < count; ++i)
    {
        if (fileFaults.renamesAllowed == 0)
        {
            fail();
            return i;
        }
        fileFaults.renamesAllowed -= fileFaults.renamesAllowed > 0;
        fclose(pending[i].file);
        pending[i].file = nullptr;
        if (rename(pending[i].temporary.c_str(), pending[i].place.c_str()) != 0)
            return i;
        pending[i].temporary.clear();
    }
    return count;
}

void dropPendingFile(PendingFile* pending)
{
    if (pending->file)
        fclose(pending->file);
    if (!pending->temporary.empty())
        remove(pending->temporary.c_str());
    *pending = {};
}
