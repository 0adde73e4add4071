// platform/file_names.cpp - separators and dots
#include "platform/file_names.h"

#include <string.h>

#ifdef _WIN32
static const char separators[] = "/\\:";
#else
static const char separators[] = "/";
#endif

static const char* behindLastOf(const char* text, const char* set)
{
    const char* behind = text;
    for (const char* at = strpbrk(text, set); at; at = strpbrk(behind, set))
        behind = at + 1;
    return behind;
}

const char* fileNameOf(const char* path)
{
    return behindLastOf(path, separators);
}

std::string folderOf(const std::string& path)
{
    return path.substr(0, path.find_last_of(separators) + 1);
}

const char* bareNameInModel(const char* name)
{
    return behindLastOf(name, "/\\:");
}

std::string withoutExtension(const std::string& name)
{
    size_t dot = name.rfind('.');
    return dot == 0 ? name : name.substr(0, dot);
}

std::string upToLastDot(const std::string& name)
{
    return name.substr(0, name.rfind('.'));
}

std::string upToFirstDot(const std::string& name)
{
    return name.substr(0, name.find('.'));
}
