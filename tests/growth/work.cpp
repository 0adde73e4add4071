// tests/growth/work.cpp - the counters
#include "tests/growth/work.h"

#include "tests/recording/recording.h"

#include <stdio.h>

static uint64_t steps, libraryBytes;

// What -fsanitize-coverage=trace-pc calls in every basic block.
extern "C" void __sanitizer_cov_trace_pc()
{
    ++steps;
}

uint64_t workDone()
{
    static size_t earlierPages, lastPages; // a new recording starts at 0
    if (recorded.requestedBytes < lastPages)
        earlierPages += lastPages;
    lastPages = recorded.requestedBytes;
    return steps + libraryBytes / 8 + (earlierPages + lastPages) / 64;
}

// The linker gives calls of these functions to the wrappers (tests/CMakeLists.txt).
extern "C"
{
    void* __real_memcpy(void* to, const void* from, size_t count);
    void* __real_memmove(void* to, const void* from, size_t count);
    void* __real_memset(void* to, int byte, size_t count);
    void* __real_memchr(const void* bytes, int byte, size_t count);
    int __real_memcmp(const void* a, const void* b, size_t count);
    int __real_strcmp(const char* a, const char* b);
    size_t __real_strlen(const char* text);
    size_t __real_strnlen(const char* text, size_t count);
    size_t __real_fread(void* bytes, size_t size, size_t count, FILE* file);
    size_t __real_fwrite(const void* bytes, size_t size, size_t count, FILE* file);

    void* __wrap_memcpy(void* to, const void* from, size_t count)
    {
        libraryBytes += count;
        return __real_memcpy(to, from, count);
    }

    void* __wrap_memmove(void* to, const void* from, size_t count)
    {
        libraryBytes += count;
        return __real_memmove(to, from, count);
    }

    void* __wrap_memset(void* to, int byte, size_t count)
    {
        libraryBytes += count;
        return __real_memset(to, byte, count);
    }

    void* __wrap_memchr(const void* bytes, int byte, size_t count)
    {
        void* found = __real_memchr(bytes, byte, count);
        libraryBytes +=
            found ? static_cast<size_t>(static_cast<char*>(found) - static_cast<const char*>(bytes)) : count;
        return found;
    }

    int __wrap_memcmp(const void* a, const void* b, size_t count)
    {
        libraryBytes += count;
        return __real_memcmp(a, b, count);
    }

    int __wrap_strcmp(const char* a, const char* b)
    {
        for (size_t i = 0; a[i] == b[i] && a[i] != 0; ++i)
            ++libraryBytes;
        libraryBytes += 8;
        return __real_strcmp(a, b);
    }

    size_t __wrap_strlen(const char* text)
    {
        size_t length = __real_strlen(text);
        libraryBytes += length;
        return length;
    }

    size_t __wrap_strnlen(const char* text, size_t count)
    {
        size_t length = __real_strnlen(text, count);
        libraryBytes += length;
        return length;
    }

    size_t __wrap_fread(void* bytes, size_t size, size_t count, FILE* file)
    {
        size_t got = __real_fread(bytes, size, count, file);
        libraryBytes += got * size;
        return got;
    }

    size_t __wrap_fwrite(const void* bytes, size_t size, size_t count, FILE* file)
    {
        libraryBytes += size * count;
        return __real_fwrite(bytes, size, count, file);
    }
}
