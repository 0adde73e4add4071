// platform/posix/standard_input.cpp - a copy of standard input in a file without a name
#include "platform/standard_input.h"

#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

static int kept = -1;

static int openTemporary()
{
    const char* chosen = getenv("TMPDIR");
    std::string folder = chosen && *chosen ? chosen : "/tmp";
#ifdef O_TMPFILE
    int unnamed = open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
    if (unnamed >= 0)
        return unnamed;
#endif
    std::string name = folder + "/kestrelbox-XXXXXX";
    int file = mkstemp(name.data());
    if (file >= 0)
        unlink(name.c_str());
    return file;
}

static bool writeAll(int file, const char* bytes, ssize_t count)
{
    while (count > 0)
    {
        ssize_t written = write(file, bytes, static_cast<size_t>(count));
        if (written < 0 && errno != EINTR)
            return false;
        bytes += written > 0 ? written : 0;
        count -= written > 0 ? written : 0;
    }
    return true;
}

static bool copyInput(int file, int64_t limitBytes)
{
    char bytes[32768];
    int64_t all = 0;
    for (;;)
    {
        ssize_t count = read(STDIN_FILENO, bytes, sizeof bytes);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return count == 0;
        all += count;
        if (all > limitBytes)
        {
            errno = EFBIG;
            return false;
        }
        if (!writeAll(file, bytes, count))
            return false;
    }
}

int keepStandardInput(int64_t limitBytes, std::string* path)
{
    bool open = fcntl(STDIN_FILENO, F_GETFD) >= 0; // otherwise the copy would get its number
    kept = open ? openTemporary() : -1;
    if (kept < 0)
        return 0;
    *path = "/dev/fd/" + std::to_string(kept);
    if (copyInput(kept, limitBytes) && lseek(kept, 0, SEEK_SET) == 0)
        return 1;
    int reason = errno;
    dropStandardInput();
    errno = reason;
    return 0;
}

void dropStandardInput()
{
    if (kept >= 0)
        close(kept);
    kept = -1;
}
