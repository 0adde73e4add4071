// platform/posix/folders.cpp - folders on operating systems where most file systems tell letter case apart
#include "platform/folders.h"

#include "platform/file_names.h"

#include <errno.h>
#include <fcntl.h>
#include <locale.h>
#include <sys/stat.h>
#include <unistd.h>
#include <wctype.h>

static bool isFolder(const std::string& path)
{
    struct stat facts;
    return stat(path.c_str(), &facts) == 0 && S_ISDIR(facts.st_mode);
}

// The path without the separators at its end.
static std::string withoutEnd(std::string path)
{
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return path;
}

int makeFolder(const std::string& folder)
{
    for (size_t end = 1; end <= folder.size(); ++end)
    {
        if (end < folder.size() && folder[end] != '/')
            continue;
        std::string part = folder.substr(0, end);
        if (mkdir(part.c_str(), 0777) == 0 || isFolder(part))
            continue;
        if (errno == EEXIST && end < folder.size())
            errno = ENOTDIR;
        return 0;
    }
    return 1;
}

int pathExists(const std::string& path)
{
    struct stat facts;
    return lstat(path.c_str(), &facts) == 0;
}

int folderIgnoresCase(const std::string& folder)
{
    std::string there = withoutEnd(folder.empty() ? "." : folder);
    while (!pathExists(there))
    {
        std::string above = folderOf(there);
        there = above.empty() ? "." : withoutEnd(above);
    }
    std::string process = std::to_string(getpid());
    std::string lower = there + "/.kestrelbox-case-" + process, upper = there + "/.KESTRELBOX-CASE-" + process;
    int file = open(lower.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (file < 0)
        return 0;
    int same = pathExists(upper);
    unlink(lower.c_str());
    close(file);
    return same;
}

// The character that begins at a place, which moves behind it. A byte that begins none stands for itself, beyond all
// characters.
static wint_t nextCharacter(const std::string& text, size_t* place)
{
    constexpr wint_t strayBytes = 0x110000;
    auto byte = static_cast<unsigned char>(text[(*place)++]);
    if (byte < 0x80)
        return byte;
    int more = byte >= 0xF0 ? 3 : byte >= 0xE0 ? 2 : byte >= 0xC0 ? 1 : 0;
    wint_t character = byte & (0x3Fu >> more);
    for (int i = 0; i < more; ++i)
    {
        auto next = static_cast<unsigned char>(
            *place + static_cast<size_t>(i) < text.size() ? text[*place + static_cast<size_t>(i)] : 0);
        if ((next & 0xC0) != 0x80)
            return strayBytes + byte;
        character = character << 6 | (next & 0x3Fu);
    }
    *place += static_cast<size_t>(more);
    return more == 0 ? strayBytes + byte : character;
}

std::wstring foldedName(const std::string& name)
{
    static const locale_t unicode = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    std::wstring folded;
    for (size_t place = 0; place < name.size();)
    {
        wint_t character = nextCharacter(name, &place);
        if (unicode)
            character = towlower_l(character, unicode);
        else if (character >= 'A' && character <= 'Z')
            character += 'a' - 'A';
        folded += static_cast<wchar_t>(character);
    }
    return folded;
}
