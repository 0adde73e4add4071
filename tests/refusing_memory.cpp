// tests/refusing_memory.cpp - refuses chosen requests for memory in a whole program
//
// It is linked into a second kbx with the linker's --wrap, so that requests of the C and C++ libraries come here too.
// Environment variables control it: REFUSE_ONLY=n refuses the n-th request, REFUSE_FROM=n refuses it and all later
// ones, and COUNT_REQUESTS=FILE writes the number of requests into a file.
#include <errno.h>
#include <fcntl.h>
#include <stddef.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <unistd.h>

extern "C"
{
    void* __real_malloc(size_t size);
    void* __real_calloc(size_t count, size_t size);
    void* __real_realloc(void* block, size_t size);
    int __real_posix_memalign(void** block, size_t alignment, size_t size);
    void* __real_mmap(void* at, size_t size, int access, int flags, int file, off_t offset);
}

static long requests;
static bool started; // the C library has started; its earlier requests must succeed

static long numberIn(const char* name)
{
    const char* text = getenv(name);
    return text ? strtol(text, nullptr, 10) : 0;
}

static bool refused()
{
    static const long only = numberIn("REFUSE_ONLY"), from = numberIn("REFUSE_FROM");
    if (!started)
        return false;
    ++requests;
    bool refuse = requests == only || (from != 0 && requests >= from);
    if (refuse)
        errno = ENOMEM;
    return refuse;
}

extern "C"
{
    void* __wrap_malloc(size_t size)
    {
        return refused() ? nullptr : __real_malloc(size);
    }

    void* __wrap_calloc(size_t count, size_t size)
    {
        return refused() ? nullptr : __real_calloc(count, size);
    }

    void* __wrap_realloc(void* block, size_t size)
    {
        return refused() ? nullptr : __real_realloc(block, size);
    }

    int __wrap_posix_memalign(void** block, size_t alignment, size_t size)
    {
        return refused() ? ENOMEM : __real_posix_memalign(block, alignment, size);
    }

    void* __wrap_mmap(void* at, size_t size, int access, int flags, int file, off_t offset)
    {
        return refused() ? MAP_FAILED : __real_mmap(at, size, access, flags, file, offset);
    }

    __attribute__((constructor(102))) static void startCounting()
    {
        started = true;
    }

    __attribute__((destructor)) static void writeCount()
    {
        const char* name = getenv("COUNT_REQUESTS");
        int file = name ? open(name, O_WRONLY | O_CREAT | O_TRUNC, 0600) : -1;
        if (file < 0)
            return;
        char text[32];
        int length = snprintf(text, sizeof text, "%ld\n", requests);
        (void)!write(file, text, static_cast<size_t>(length));
        close(file);
    }
}
