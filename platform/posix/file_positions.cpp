// platform/posix/file_positions.cpp - where an open file stands, for every kind of stream: also for those of tests
#include "platform/files.h"

int64_t measureFile(FILE* file)
{
    if (fseeko(file, 0, SEEK_END) != 0)
        return -1;
    int64_t size = ftello(file);
    return fseeko(file, 0, SEEK_SET) == 0 ? size : -1;
}

int64_t filePosition(FILE* file)
{
    return ftello(file);
}

int seekFile(FILE* file, int64_t position)
{
    return fseeko(file, static_cast<off_t>(position), SEEK_SET) == 0;
}
