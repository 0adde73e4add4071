// tests/growth/growth.cpp - the files of the tests of growth
#include "tests/growth/growth.h"

#include <unistd.h>
#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

struct Folder
{
    fs::path path = fs::temp_directory_path() / ("kestrelbox-growth-" + std::to_string(getpid()));
    Folder()
    {
        fs::create_directory(path);
    }
    ~Folder()
    {
        fs::remove_all(path);
    }
};

std::string repeat(int count, const std::string& text)
{
    std::string all;
    for (int i = 0; i < count; ++i)
        all += text;
    return all;
}

std::string growthFile(const std::string& extension)
{
    static Folder folder;
    return (folder.path / ("growth." + extension)).string();
}

void putGrowthFile(const std::string& path, const std::string& bytes)
{
    std::ofstream(path, std::ios::binary) << bytes;
}
