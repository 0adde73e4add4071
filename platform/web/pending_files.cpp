// platform/web/pending_files.cpp - files in the page's memory, which only the one program sees
#include "platform/pending_files.h"

#include <stdio.h>

int createPendingFile(PendingFile* pending, const char* place)
{
    *pending = { nullptr, place, std::string(place) + ".part" };
    pending->file = fopen(pending->temporary.c_str(), "wb");
    if (pending->file)
        return 1;
    *pending = {};
    return 0;
}

int finishPendingFile(PendingFile* pending)
{
    return fflush(pending->file) == 0 && !ferror(pending->file);
}

int placePendingFiles(PendingFile* pending, int count)
{
    for (int i = 0; i < count; ++i)
    {
        if (rename(pending[i].temporary.c_str(), pending[i].place.c_str()) != 0)
            return i;
        fclose(pending[i].file);
        pending[i] = {};
    }
    return count;
}

void dropPendingFile(PendingFile* pending)
{
    if (!pending->file)
        return;
    fclose(pending->file);
    remove(pending->temporary.c_str());
    *pending = {};
}

void removePendingFilesOnSignals() {}
void removePendingFiles() {}
void namePendingFilesAtOnce(bool) {}
