// platform/posix/pending_files.cpp - unnamed files where the file system supports them, otherwise locked files
//
// A process holds a lock on the pending file that it writes, and locks end with their process. A temporary file without
// a lock therefore belongs to a process that has ended.
#include "platform/pending_files.h"

#include "platform/file_names.h"
#include "platform/refused_memory.h"

#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <string.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

// The names of this process's files, for the signal handler. A handler must not allocate, so the table has a fixed
// size. A file that does not fit in it stays behind when a signal arrives, until the next writer takes it over.
constexpr int namedLimit = 8;
constexpr size_t namedPathRoom = 4096;
static char namedPaths[namedLimit][namedPathRoom];
static bool namedAtOnce;

static void rememberName(const std::string& name)
{
    for (auto& path : namedPaths)
    {
        if (*path || name.size() >= namedPathRoom)
            continue;
        memcpy(path + 1, name.c_str() + 1, name.size()); // first byte last: the handler sees all or nothing
        *path = name[0];
        return;
    }
}

static void forgetName(const std::string& name)
{
    for (auto& path : namedPaths)
        if (name == path)
            *path = 0;
}

void removePendingFiles()
{
    for (const auto& path : namedPaths)
        if (*path)
            unlink(path);
}

extern "C" void endBySignal(int signalNumber)
{
    removePendingFiles();
    raise(signalNumber); // delivered after the handler has returned, with its default effect
}

void removePendingFilesOnSignals()
{
    struct sigaction action = {};
    action.sa_handler = endBySignal;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    for (int signalNumber : { SIGINT, SIGTERM, SIGHUP })
    {
        struct sigaction present;
        if (sigaction(signalNumber, nullptr, &present) == 0 && present.sa_handler == SIG_DFL)
            sigaction(signalNumber, &action, nullptr); // an ignored signal, as under nohup, stays ignored
    }
}

void namePendingFilesAtOnce(bool on)
{
    namedAtOnce = on;
}

static std::string folderForOpening(const std::string& place)
{
    std::string folder = folderOf(place);
    return folder.empty() ? "." : folder;
}

static std::string temporaryName(const std::string& place, int number)
{
    return folderOf(place) + ".kestrelbox-" + std::to_string(number) + ".part";
}

// Whether the descriptor is still the file of that name. Another writer may have taken it over and placed it.
static bool hasName(int file, const std::string& name)
{
    struct stat opened, named;
    return fstat(file, &opened) == 0 && lstat(name.c_str(), &named) == 0 && named.st_ino == opened.st_ino &&
           named.st_dev == opened.st_dev;
}

static int closeUnlessGood(int file, bool good)
{
    if (!good)
        close(file);
    return good ? file : -1;
}

// Locks a file that was just created. Returns -1 when another writer was faster. Without support for locks, nobody
// takes over a file.
static int lockFresh(int file, const std::string& name)
{
    bool locked = flock(file, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
    return closeUnlessGood(file, locked && hasName(file, name));
}

// Opens, locks and empties a temporary file that a dead process of this user has left. Returns its descriptor, or -1
// when the file is in use or belongs to somebody else.
static int openAbandoned(const std::string& name)
{
    int file = open(name.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (file < 0)
        return -1;
    struct stat facts;
    bool ours = flock(file, LOCK_EX | LOCK_NB) == 0 && fstat(file, &facts) == 0 && S_ISREG(facts.st_mode) &&
                facts.st_uid == geteuid() && facts.st_nlink == 1 && hasName(file, name);
    return closeUnlessGood(file, ours && ftruncate(file, 0) == 0);
}

// Creates a file under the first temporary name that is free or abandoned. The name is copied first, because nothing
// may fail once the file exists.
static int openNamed(PendingFile* pending)
{
    for (int number = 0;; ++number)
    {
        std::string name = temporaryName(pending->place, number), kept = name;
        int file = open(name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (file < 0 && errno != EEXIST)
            return -1;
        file = file < 0 ? openAbandoned(name) : lockFresh(file, name);
        if (file < 0)
            continue;
        rememberName(name);
        pending->temporary.swap(kept);
        return file;
    }
}

static std::string pathOfDescriptor(int file)
{
    return "/proc/self/fd/" + std::to_string(file);
}

// Opens a file that gets its name when it is complete. Returns its descriptor, or -1 where that is not supported.
static int openUnnamed(const std::string& place)
{
#ifdef O_TMPFILE
    int file = open(folderForOpening(place).c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0666);
    if (file >= 0 && access(pathOfDescriptor(file).c_str(), F_OK) == 0) // this path names it later
    {
        flock(file, LOCK_EX | LOCK_NB);
        return file;
    }
    if (file >= 0)
        close(file);
#endif
    return -1;
}

int createPendingFile(PendingFile* pending, const char* place)
{
    *pending = { nullptr, place, "" };
    signal(SIGXFSZ, SIG_IGN); // a write past the file size limit must fail as on a full disk
    int file = namedAtOnce ? -1 : openUnnamed(pending->place);
    if (file < 0)
        file = openNamed(pending);
    if (file < 0)
        return 0;
    pending->file = fdopen(file, "wb");
    if (pending->file)
        return 1;
    int reason = errno;
    if (reason == ENOMEM)
        noteRefusedMemory();
    close(file);
    dropPendingFile(pending);
    errno = reason;
    return 0;
}

// Closes a copy, because some file systems report a failed write only when a descriptor is closed.
int finishPendingFile(PendingFile* pending)
{
    if (ferror(pending->file) || fflush(pending->file) != 0)
        return 0;
    int copy = dup(fileno(pending->file));
    return copy >= 0 && close(copy) == 0;
}

// Gives an unnamed file the first temporary name that is free. Removes files that dead processes left under such names.
// The name is copied first, because nothing may fail once the file is linked.
static int nameFile(PendingFile* pending)
{
    std::string self = pathOfDescriptor(fileno(pending->file));
    for (int number = 0;; ++number)
    {
        std::string name = temporaryName(pending->place, number), kept = name;
        if (linkat(AT_FDCWD, self.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0)
        {
            rememberName(name);
            pending->temporary.swap(kept);
            return 1;
        }
        if (errno != EEXIST)
            return 0;
        int abandoned = openAbandoned(name);
        if (abandoned < 0)
            continue;
        unlink(name.c_str());
        close(abandoned);
        --number; // the name is free now
    }
}

static void keepPermissions(const PendingFile* pending)
{
    struct stat old, fresh;
    if (stat(pending->place.c_str(), &old) != 0 || !S_ISREG(old.st_mode) || fstat(fileno(pending->file), &fresh) != 0)
        return;
    bool sameOwner = old.st_uid == fresh.st_uid && old.st_gid == fresh.st_gid;
    (void)!fchmod(fileno(pending->file), old.st_mode & (sameOwner ? 07777u : 0777u)); // some file systems have none
}

// The last step before renaming, which hardly ever fails. After it, every file of a set has a name in the folder.
static int prepareToPlace(PendingFile* pending)
{
    keepPermissions(pending);
    return !pending->temporary.empty() || nameFile(pending);
}

static int placeFile(PendingFile* pending)
{
    if (rename(pending->temporary.c_str(), pending->place.c_str()) != 0)
        return 0;
    forgetName(pending->temporary);
    pending->temporary.clear();
    fclose(pending->file);
    pending->file = nullptr;
    return 1;
}

// Waits for other writers in the folder, but only for a limited time, so that a program that keeps its lock cannot
// block this one.
static int lockFolder(const std::string& place)
{
    constexpr int attempts = 400;
    constexpr timespec pause = { 0, 5000000 };
    int folder = open(folderForOpening(place).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    for (int i = 0; folder >= 0 && i < attempts && flock(folder, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK; ++i)
        nanosleep(&pause, nullptr);
    return folder;
}

static int placeInTurn(PendingFile* pending, int count)
{
    int placed = 0;
    for (int i = 0; i < count; ++i)
        if (!prepareToPlace(&pending[i]))
            return 0;
    while (placed < count && placeFile(&pending[placed]))
        ++placed;
    return placed;
}

int placePendingFiles(PendingFile* pending, int count)
{
    int folder = count > 1 ? lockFolder(pending[0].place) : -1;
    int placed = placeInTurn(pending, count);
    int reason = errno;
    if (folder >= 0)
        close(folder);
    errno = reason;
    return placed;
}

void dropPendingFile(PendingFile* pending)
{
    if (!pending->temporary.empty())
    {
        unlink(pending->temporary.c_str());
        forgetName(pending->temporary);
    }
    if (pending->file)
        fclose(pending->file);
    pending->file = nullptr;
    pending->temporary.clear();
}
