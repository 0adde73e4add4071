// tests/page/hostile_test.cpp - damaged and large files in the page and in a view: the same messages as natively, no
// memory, Stop
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
using Json = nlohmann::json;

static fs::path testFolder()
{
    fs::path folder = fs::temp_directory_path() / "page-hostile";
    fs::create_directories(folder);
    return folder;
}

struct NativeAnswer
{
    Boxes boxes;
    std::string output, cause; // on standard output; the last reason on standard error
};

// What the native kbx says of a file in its folder. Names stand there without their folder.
static NativeAnswer askNative(const std::string& arguments, const fs::path& path)
{
    NativeAnswer answer;
    const std::string name = path.filename().string(), mark = "message: ", reason = "kbx: " + name + ": ";
    const std::string command = "cd " + path.parent_path().string() + " && " NATIVE_PROGRAMS "/kbx " + arguments;
    FILE* lines = popen((command + " 2>&1 >output.txt").c_str(), "r");
    for (char line[4096]; lines && fgets(line, sizeof line, lines);)
    {
        std::string text = line;
        text.pop_back();
        if (text.rfind(mark, 0) == 0)
            answer.boxes.push_back(text.substr(mark.size()));
        else if (text.rfind(reason, 0) == 0 && text.find("warning: ") == std::string::npos)
            answer.cause = text.substr(reason.size());
    }
    if (lines)
        pclose(lines);
    std::ifstream output(path.parent_path() / "output.txt");
    answer.output.assign(std::istreambuf_iterator<char>(output), {});
    return answer;
}

// A JPEG file is tried as a texture.
static std::string argumentsFor(const HostileFile& file, const fs::path& path)
{
    const std::string name = path.filename().string();
    return file.extension == "jpg" ? "render --size 10x10 -o drawn.png --texture " + name : "info --json " + name;
}

static fs::path writeHostile(const HostileFile& file)
{
    fs::path path = testFolder() / ("hostile." + file.extension);
    std::ofstream(path, std::ios::binary) << file.bytes;
    return path;
}

// Of every class of mistakes in every format the first file.
static std::vector<HostileFile> sample()
{
    std::vector<HostileFile> chosen;
    std::set<std::string> classes;
    for (HostileFile& file : hostileFiles())
    {
        if (classes.insert(file.extension + file.kind).second)
            chosen.push_back(std::move(file));
    }
    return chosen;
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

TEST(Page, SaysOfDamagedFilesWhatTheCommandLineSays)
{
    const std::vector<HostileFile> files = sample();
    int refused = 0, refusedPictures = 0;
    for (const HostileFile& file : files)
    {
        fs::path path = writeHostile(file);
        Boxes native = askNative(argumentsFor(file, path), path).boxes;
        refused += !native.empty();
        refusedPictures += !native.empty() && file.extension == "jpg";
        EXPECT_EQ(pageBoxes(path.filename(), file.bytes), native)
            << file.extension << ", " << file.kind << ": " << file.detail;
    }
    EXPECT_GT(files.size(), 50u);
    EXPECT_GT(refused, 20);
    EXPECT_GT(refusedPictures, 2);
    fs::remove_all(testFolder());
    askBridge("visit", { { "search", "" } });
}

// The text of the last box, without its caption, or the reason where there was none.
static std::string messageOf(const NativeAnswer& native)
{
    if (native.boxes.empty())
        return native.cause;
    const std::string& box = native.boxes.back();
    return box.substr(0, box.rfind(" ["));
}

// The events are compared, too.
TEST(ViewOfDamaged, SaysOfDamagedFilesWhatTheCommandLineSays)
{
    askBridge("viewHost", { { "models", testFolder().string() } });
    askBridge("viewAdd", { { "id", "a" }, { "attributes", Json::object() }, { "size", nullptr } });
    int refused = 0, read = 0;
    for (const HostileFile& file : sample())
    {
        if (file.extension == "jpg")
            continue;
        SCOPED_TRACE(file.extension + ", " + file.kind + ": " + file.detail);
        fs::path path = writeHostile(file);
        NativeAnswer native = askNative(argumentsFor(file, path), path);
        Json facts = Json::parse(native.output);
        Json shown =
            askBridge("viewOpenBytes",
                      { { "id", "a" }, { "name", path.filename().string() }, { "bytes", encodeBase64(file.bytes) } });
        Json message = facts.contains("error") ? Json(messageOf(native)) : Json();
        EXPECT_EQ(shown["refused"], message);
        EXPECT_EQ(shown["said"], message);
        EXPECT_EQ(shown["info"], facts);
        ++(message.is_null() ? read : refused);
    }
    EXPECT_GT(refused, 20);
    EXPECT_GT(read, 5);
    fs::remove_all(testFolder());
}

TEST(ViewOfDamaged, SaysOfADamagedTextureWhatTheCommandLineSays)
{
    askBridge("viewHost", { { "models", testFolder().string() } });
    askBridge("viewAdd", { { "id", "a" }, { "attributes", Json::object() }, { "size", nullptr } });
    int refused = 0, number = 0;
    for (const HostileFile& file : sample())
    {
        if (file.extension != "jpg")
            continue;
        fs::path path = writeHostile(file);
        NativeAnswer native = askNative(argumentsFor(file, path), path);
        const std::string name = std::to_string(++number) + ".jpg"; // an address that is not known yet
        fs::rename(path, testFolder() / name);
        askBridge("viewSet", { { "id", "a" }, { "attributes", { { "texture", "/models/" + name } } } });
        askBridge("viewPicture", { { "id", "a" }, { "path", (testFolder() / "shown.png").string() } }); // after it
        Json events = askBridge("viewSay", { { "id", "a" }, { "count", 1 } });
        refused += !native.cause.empty();
        EXPECT_EQ(std::count_if(events.begin(), events.end(), [](auto& event) { return event["type"] == "error"; }),
                  refused);
        if (!native.cause.empty())
        {
            EXPECT_EQ(events.back()["message"], name + ": " + native.cause) << file.kind << ": " << file.detail;
        }
    }
    EXPECT_GT(refused, 2);
    fs::remove_all(testFolder());
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
