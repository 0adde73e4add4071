// tests/page/hostile_test.cpp - damaged and large files in the page: the same messages as natively, no memory, Stop
#include "resources/ids.h"
#include "tests/hostile/hostile_files.h"
#include "tests/page/base64.h"
#include "tests/page/bridge.h"
#include "tests/window/driver.h"

#include <gtest/gtest.h>
#include <stdio.h>
#include <filesystem>
#include <fstream>
#include <set>

namespace fs = std::filesystem;

using Boxes = std::vector<std::string>; // each as kbx prints it

static fs::path testFolder()
{
    fs::path folder = fs::temp_directory_path() / "page-hostile";
    fs::create_directories(folder);
    return folder;
}

static std::string without(std::string text, const std::string& part)
{
    for (size_t at; (at = text.find(part)) != std::string::npos;)
        text.erase(at, part.size());
    return text;
}

static Boxes nativeBoxes(const fs::path& path)
{
    Boxes boxes;
    FILE* lines = popen((std::string(NATIVE_PROGRAMS "/kbx info ") + path.string() + " 2>&1 >/dev/null").c_str(), "r");
    for (char line[4096]; lines && fgets(line, sizeof line, lines);)
    {
        const std::string text = line, mark = "message: ";
        if (text.rfind(mark, 0) == 0)
            boxes.push_back(
                without(text.substr(mark.size(), text.size() - mark.size() - 1), path.parent_path().string() + "/"));
    }
    if (lines)
        pclose(lines);
    return boxes;
}

static Boxes pageBoxes(const std::string& name, const std::string& bytes)
{
    Boxes boxes;
    for (const auto& box : askBridge("boxesOf", { { "name", name }, { "bytes", encodeBase64(bytes) } }))
    {
        std::string caption = box[1];
        boxes.push_back(box[0].get<std::string>() + " [" + caption.substr(caption.rfind('/') + 1) + "]");
    }
    return boxes;
}

// Of every class of mistakes in every format the first file.
TEST(Page, SaysOfDamagedFilesWhatTheCommandLineSays)
{
    std::set<std::string> classes;
    int refused = 0;
    for (const HostileFile& file : hostileFiles())
    {
        if (file.extension == "jpg" || !classes.insert(file.extension + file.kind).second)
            continue;
        fs::path path = testFolder() / ("hostile." + file.extension);
        std::ofstream(path, std::ios::binary) << file.bytes;
        Boxes native = nativeBoxes(path);
        refused += !native.empty();
        EXPECT_EQ(pageBoxes(path.filename(), file.bytes), native)
            << file.extension << ", " << file.kind << ": " << file.detail;
    }
    EXPECT_GT(classes.size(), 50u);
    EXPECT_GT(refused, 20);
    fs::remove_all(testFolder());
    askBridge("visit", { { "search", "" } });
}

// A file of zeros, which take no place on the disk.
static fs::path largeFile(int vertexCount)
{
    fs::path path = testFolder() / "large.ply";
    std::ofstream(path) << "ply\nformat binary_little_endian 1.0\nelement vertex " << vertexCount
                        << "\nproperty float x\nproperty float y\nproperty float z\nelement face 1\n"
                           "property list uchar int vertex_indices\nend_header\n";
    fs::resize_file(path, fs::file_size(path) + static_cast<uintmax_t>(vertexCount) * 12 + 1);
    return path;
}

TEST(Page, TooLittleMemoryIsSaidAndThePageGoesOn)
{
    askBridge("limitMemory", { { "bytes", 256 << 20 } });
    Shown plain = shownPicture();
    askBridge("drop", { { "paths", { largeFile(8000000).string() } } });
    auto boxes = askBridge("closeBoxes");
    ASSERT_FALSE(boxes.empty());
    EXPECT_EQ(boxes[0][0], "Out of memory"); // the reader's own box follows
    EXPECT_EQ(panelText(ID_FACE_COUNT), "4096");
    command(ID_PRESET_GOLD);
    EXPECT_NE(shownPicture().bytes, plain.bytes);
    EXPECT_LE(residentBytes(), size_t{ 256 } << 20);
    fs::remove_all(testFolder());
    askBridge("limitMemory", { { "bytes", 0 } });
}

TEST(Page, ALargeFileShowsItsProgressAndCanBeStopped)
{
    double reached = askBridge("stopReading", { { "path", largeFile(30000000).string() } }).get<double>();
    EXPECT_GT(reached, 0);
    EXPECT_LT(reached, 1);
    EXPECT_EQ(panelText(ID_FACE_COUNT), "4096");
    command(ID_PRESET_GOLD);
    EXPECT_TRUE(menuTicked(ID_PRESET_GOLD));
    fs::remove_all(testFolder());
    askBridge("visit", { { "search", "" } });
}
