// fuzz/memory_files.cpp - files that are strings, behind streams of our own
#include "fuzz/memory_files.h"

#include "platform/files.h"
#include "platform/pending_files.h"

#include <errno.h>
#include <stdlib.h>
#include <string.h>
#include <strings.h>
#include <map>
#include <string>
#include <vector>

static std::map<std::string, std::string> files;

struct OpenStream
{
    std::string* bytes;
    size_t position;
};

static ssize_t readSome(void* cookie, char* bytes, size_t size)
{
    auto* stream = static_cast<OpenStream*>(cookie);
    if (stream->position >= stream->bytes->size())
        return 0;
    size_t count = stream->bytes->copy(bytes, size, stream->position);
    stream->position += count;
    return static_cast<ssize_t>(count);
}

static ssize_t writeSome(void* cookie, const char* bytes, size_t size)
{
    auto* stream = static_cast<OpenStream*>(cookie);
    if (stream->bytes->size() < stream->position + size)
        stream->bytes->resize(stream->position + size);
    memcpy(stream->bytes->data() + stream->position, bytes, size);
    stream->position += size;
    return static_cast<ssize_t>(size);
}

static int seek(void* cookie, off64_t* position, int whence)
{
    auto* stream = static_cast<OpenStream*>(cookie);
    int64_t from = whence == SEEK_END   ? static_cast<int64_t>(stream->bytes->size())
                   : whence == SEEK_CUR ? static_cast<int64_t>(stream->position)
                                        : 0;
    if (from + *position < 0)
        return -1;
    *position += from;
    stream->position = static_cast<size_t>(*position);
    return 0;
}

static int closeStream(void* cookie)
{
    delete static_cast<OpenStream*>(cookie);
    return 0;
}

// The readers and writers turn the library's buffer off, since their own blocks are large. Such a stream would be asked
// for every byte on its own.
extern "C" int __wrap_setvbuf(FILE*, char*, int, size_t)
{
    return 0;
}

const char* memoryFile(const uint8_t* bytes, size_t size)
{
    static const std::string name = "model.obj";
    memoryFileAt(name, bytes, size);
    return name.c_str();
}

void memoryFileAt(const std::string& name, const uint8_t* bytes, size_t size)
{
    std::string& contents = files[name];
    if (size > 0)
        contents.assign(reinterpret_cast<const char*>(bytes), size);
    else
        contents.clear();
}

void removeMemoryFiles()
{
    files.clear();
}

FILE* openFile(const char* path, const char* mode)
{
    auto found = files.find(path);
    if (*mode == 'w')
        found = files.insert_or_assign(path, "").first;
    if (found == files.end())
        return nullptr;
    return fopencookie(new OpenStream{ &found->second, 0 }, mode, { readSome, writeSome, seek, closeStream });
}

int causeOfFailure()
{
    return errno;
}

int isPlainFile(const char* path)
{
    return files.contains(path);
}

std::string fullPathOf(const char* path)
{
    return path;
}

// There is one folder, the current one.
int findNameIgnoringCase(FolderListings*, const char* folder, const char* name, char* found, size_t roomBytes)
{
    for (const auto& [path, bytes] : files)
    {
        if (*folder == 0 && strcasecmp(path.c_str(), name) == 0 && path.size() < roomBytes)
        {
            memcpy(found, path.c_str(), path.size() + 1);
            return 1;
        }
    }
    return 0;
}

// Names with a '/' count as names in the current folder, too.
int listNames(const char*, std::vector<std::string>* names)
{
    for (const auto& [path, bytes] : files)
        names->push_back(path);
    return 1;
}

FileTarget findFileTarget(const char* path, std::string* actual)
{
    *actual = path;
    return *path == 0 ? targetRefused : targetReplaceable;
}

int createPendingFile(PendingFile* pending, const char* place)
{
    std::string temporary = std::string(place) + "\n"; // no writer has such a name
    *pending = { openFile(temporary.c_str(), "wb"), place, temporary };
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
        fclose(pending[i].file);
        pending[i].file = nullptr;
        files[pending[i].place] = std::move(files[pending[i].temporary]);
        files.erase(pending[i].temporary);
        pending[i].temporary.clear();
    }
    return count;
}

void dropPendingFile(PendingFile* pending)
{
    if (pending->file)
        fclose(pending->file);
    if (!pending->temporary.empty())
        files.erase(pending->temporary);
    *pending = {};
}
