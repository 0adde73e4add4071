// tests/import/scratch_files.h - files made from bytes for a test, and the real models that a test can name
#pragma once
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>
#include <fstream>
#include <string>

// A file with the given bytes, removed at the end.
struct ScratchFile
{
    std::string path;

    explicit ScratchFile(const std::string& bytes, const std::string& extension = "txt")
    {
        static int number = 0;
        path = testing::TempDir() + "kestrelbox-" + std::to_string(getpid()) + "-" + std::to_string(++number) + "." +
               extension;
        std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }
    ~ScratchFile()
    {
        remove(path.c_str());
    }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;
};

// A file of the folder of real models; an empty path when the environment names no such folder.
struct RealFile
{
    std::string path;

    explicit RealFile(const std::string& name)
    {
        if (const char* folder = getenv("KESTRELBOX_MODELS"))
            path = std::string(folder) + "/" + name;
    }
};
