// platform/posix/files.cpp - files on operating systems where names are bytes and letter case counts
#include "platform/files.h"

#include "platform/folder_listings.h"
#include "platform/refused_memory.h"

#include <dirent.h>
#include <errno.h>
#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <string>

#ifdef __linux__
#include <linux/magic.h>
#include <sys/vfs.h>

constexpr uint32_t configfsMagic = 0x62656570; // <linux/magic.h> lacks it
#endif

// Makes a write past the size limit of files fail as on a full disk. By default the operating system ends the program.
static void letLongWritesFail()
{
    static bool done;
    if (!done)
        signal(SIGXFSZ, SIG_IGN);
    done = true;
}

FILE* openFile(const char* path, const char* mode)
{
    letLongWritesFail();
    FILE* file = fopen(path, mode);
    if (!file && errno == ENOMEM)
        noteRefusedMemory();
    struct stat facts;
    if (!file || fstat(fileno(file), &facts) != 0)
        return file;
    bool endless = S_ISCHR(facts.st_mode) && *mode == 'r'; // such as a link to /dev/zero
    if (endless || S_ISDIR(facts.st_mode))
    {
        fclose(file);
        return nullptr;
    }
    return file;
}

// Whether the kernel makes the files of a file system up as they are read. Some of those never end, as
// /proc/self/pagemap, and some wait or answer only once.
static bool isMadeUp(const char* path)
{
#ifdef __linux__
    static constexpr uint32_t made[] = {
        PROC_SUPER_MAGIC, SYSFS_MAGIC,   DEBUGFS_MAGIC, TRACEFS_MAGIC,     CGROUP_SUPER_MAGIC, CGROUP2_SUPER_MAGIC,
        SECURITYFS_MAGIC, SELINUX_MAGIC, SMACK_MAGIC,   PSTOREFS_MAGIC,    EFIVARFS_MAGIC,     RDTGROUP_SUPER_MAGIC,
        BINFMTFS_MAGIC,   BPF_FS_MAGIC,  NSFS_MAGIC,    XENFS_SUPER_MAGIC, configfsMagic
    };
    struct statfs facts;
    if (statfs(path, &facts) != 0)
        return false;
    for (uint32_t magic : made)
    {
        if (static_cast<uint32_t>(facts.f_type) == magic)
            return true;
    }
#else
    (void)path;
#endif
    return false;
}

int isPlainFile(const char* path)
{
    struct stat facts;
    return stat(path, &facts) == 0 && S_ISREG(facts.st_mode) && !isMadeUp(path);
}

std::string fullPathOf(const char* path)
{
    if (*path == 0 || *path == '/')
        return path;
    char* folder = getcwd(nullptr, 0);
    std::string full = folder ? std::string(folder) + "/" + path : path;
    free(folder);
    return full;
}

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

static std::vector<std::string> listFolder(DIR* folder)
{
    std::vector<std::string> names;
    while (const dirent* entry = readdir(folder))
        names.emplace_back(entry->d_name);
    auto comesBefore = [](const std::string& a, const std::string& b) { return strcasecmp(a.c_str(), b.c_str()) < 0; };
    std::stable_sort(names.begin(), names.end(), comesBefore);
    return names;
}

// The names in a folder, or null for one that cannot be opened.
static const std::vector<std::string>* namesIn(FolderListings* listings, const char* folder)
{
    struct stat facts;
    if (stat(folder, &facts) != 0)
        return nullptr;
    FolderListings::FolderId id = { facts.st_dev, facts.st_ino };
    if (auto known = listings->names.find(id); known != listings->names.end())
        return &known->second;
    DIR* entries = opendir(folder);
    if (!entries && errno == ENOMEM)
        noteRefusedMemory();
    if (!entries)
        return nullptr;
    std::vector<std::string>* names = &listings->names[id];
    *names = listFolder(entries);
    closedir(entries);
    return names;
}

int findNameIgnoringCase(FolderListings* listings, const char* folder, const char* name, char* found, size_t roomBytes)
{
    const std::vector<std::string>* names = namesIn(listings, *folder ? folder : ".");
    if (!names)
        return 0;
    auto comesBefore = [](const std::string& entry, const char* wanted)
    { return strcasecmp(entry.c_str(), wanted) < 0; };
    auto entry = std::lower_bound(names->begin(), names->end(), name, comesBefore);
    if (entry == names->end() || strcasecmp(entry->c_str(), name) != 0 || entry->size() >= roomBytes)
        return 0;
    memcpy(found, entry->c_str(), entry->size() + 1);
    return 1;
}

// The path at the end of a chain of dangling links; for any other path, the path itself.
static std::string followEmptyLinks(std::string path)
{
    constexpr int linkLimit = 40;
    char target[4096];
    for (int i = 0; i < linkLimit; ++i)
    {
        ssize_t length = readlink(path.c_str(), target, sizeof target);
        if (length <= 0 || length == static_cast<ssize_t>(sizeof target))
            break;
        std::string name(target, static_cast<size_t>(length));
        if (name[0] == '/')
            path.clear();
        path.resize(path.rfind('/') + 1); // leaves its folder, or nothing
        path += name;
    }
    return path;
}

// The path of the file itself, with links followed.
static std::string actualPath(const char* path)
{
    char* followed = realpath(path, nullptr);
    std::string actual = followed ? followed : followEmptyLinks(path);
    free(followed);
    return actual;
}

FileTarget findFileTarget(const char* path, char* actual, size_t roomBytes)
{
    struct stat facts;
    bool there = stat(path, &facts) == 0;
    bool isFile = there && S_ISREG(facts.st_mode), isFolder = there && S_ISDIR(facts.st_mode);
    bool direct = there && !isFile && !isFolder;
    if (*path == 0 || isFolder || (isFile && access(path, W_OK) != 0))
        return targetRefused;
    std::string name = direct ? path : actualPath(path);
    if (name.size() >= roomBytes)
        return targetRefused;
    memcpy(actual, name.c_str(), name.size() + 1);
    return direct ? targetDirect : targetReplaceable;
}
