// tests/page/views_test.cpp - <kestrelbox-view> in a page of somebody else: what it shows, says and writes is what kbx
// does
#include "import/dispatch.h"
#include "tests/page/bridge.h"
#include "tests/window/driver.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace fs = std::filesystem;
using Json = nlohmann::json;

static std::string bytesOf(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

// What a command prints on standard output.
static std::string outputOf(const std::string& command)
{
    std::string text;
    FILE* pipe = popen((command + " 2>/dev/null").c_str(), "r");
    char part[4096];
    for (size_t got; pipe && (got = fread(part, 1, sizeof part, pipe)) > 0;)
        text.append(part, got);
    if (pipe)
        pclose(pipe);
    return text;
}

static std::string quoted(const std::string& text)
{
    return "'" + text + "'";
}

// Runs the native kbx in a folder.
static std::string kbxIn(const fs::path& folder, const std::string& arguments)
{
    return outputOf("cd " + quoted(folder.string()) + " && " NATIVE_PROGRAMS "/kbx " + arguments);
}

// The same with the kbx of the page's build.
static std::string wasmKbxIn(const fs::path& folder, const std::string& arguments)
{
    return outputOf("cd " + quoted(folder.string()) + " && node --no-experimental-fetch " WASM_PROGRAMS "/kbx.js " +
                    arguments);
}

// A folder with a chair whose library and picture lie beside it, and a page to show it in.
class View : public testing::Test
{
protected:
    void SetUp() override
    {
        folder = fs::temp_directory_path() / "page-views";
        fs::remove_all(folder);
        fs::create_directories(folder / "out");
        for (const char* name : { "chair.obj", "chair.mtl", "wood.jpg", "scan.ply" })
            fs::copy_file(fs::path(EXAMPLES) / name, folder / name);
        askBridge("viewHost", { { "models", folder.string() } });
        askBridge("viewRequests");
    }

    void TearDown() override
    {
        EXPECT_EQ(askBridge("viewComplaints"), Json::array()) << "about the page, such as its security policy";
        fs::remove_all(folder);
    }

    static void TearDownTestSuite()
    {
        askBridge("viewEnd");
    }

    // Adds a view and waits for its first load or error.
    static Json add(const char* id, const Json& attributes, const Json& size = nullptr)
    {
        return askBridge("viewAdd", { { "id", id }, { "attributes", attributes }, { "size", size } });
    }

    static Json infoOf(const char* id)
    {
        return askBridge("viewInfo", { { "id", id } })["value"];
    }

    std::string pictureOf(const char* id) const
    {
        Json said = askBridge("viewPicture", { { "id", id }, { "path", (folder / "out" / "shown.png").string() } });
        EXPECT_EQ(said["type"], "image/png");
        return bytesOf(folder / "out" / "shown.png");
    }

    // The picture of the same build's kbx.
    std::string rendered(const std::string& options) const
    {
        EXPECT_TRUE(runKbx("render " + options + " -o " + (folder / "out" / "kbx.png").string()));
        return bytesOf(folder / "out" / "kbx.png");
    }

    std::string chair() const
    {
        return (folder / "chair.obj").string();
    }

    fs::path folder;
};

static int countOf(const Json& events, const char* type)
{
    return static_cast<int>(
        std::count_if(events.begin(), events.end(), [type](const Json& event) { return event["type"] == type; }));
}

static std::string lastMessageOf(const Json& events)
{
    std::string message = "none";
    for (const Json& event : events)
        message = event["type"] == "error" ? event["message"].get<std::string>() : message;
    return message;
}

TEST_F(View, FindsTheLibraryAndThePicturesBesideItsSource)
{
    EXPECT_EQ(countOf(add("a", { { "src", "/models/chair.obj" } }), "load"), 1);
    EXPECT_EQ(infoOf("a"), Json::parse(kbxIn(folder, "info --json chair.obj")));
    EXPECT_EQ(infoOf("a")["materials"][0]["texture"]["found"], true) << infoOf("a")["materials"];
    Json requests = askBridge("viewRequests");
    EXPECT_EQ(std::count(requests.begin(), requests.end(), "/models/chair.mtl"), 1) << requests;
}

TEST_F(View, ANameThatLeadsOutOfItsFolderIsNotAskedFor)
{
    std::ofstream(folder / "out" / "b.obj") << "mtllib ../chair.mtl\nusemtl seat\nv 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n";
    EXPECT_EQ(countOf(add("a", { { "src", "/models/out/b.obj" } }), "load"), 1);
    Json requests = askBridge("viewRequests");
    EXPECT_EQ(std::count(requests.begin(), requests.end(), "/models/chair.mtl"), 0) << requests;
}

TEST_F(View, ItsPictureIsThatOfKbx)
{
    const char* plain = "/models/chair.obj";
    add("a",
        { { "src", plain }, { "rotate", "20,30,0" }, { "shadows", "" }, { "lights", "1,3" }, { "preset", "wood" } });
    EXPECT_EQ(pictureOf("a"),
              rendered(chair() + " --size 300x240 --rotate 20,30,0 --shadows --lights 1,3 --preset wood"));
    add("b",
        { { "src", plain }, { "texture", "pattern" }, { "zoom", "1.5" }, { "rough", "" }, { "background", "black" } },
        { "211px", "107px" });
    EXPECT_EQ(pictureOf("b"),
              rendered(chair() + " --size 211x107 --texture pattern --zoom 1.5 --rough --background black"));
    add("c", { { "texture", "/models/wood.jpg" }, { "view", "1,0,0,0,0,1,0,-1,0" }, { "no-backcull", "" } });
    EXPECT_EQ(pictureOf("c"), rendered("--size 300x240 --texture " + (folder / "wood.jpg").string() +
                                       " --view 1,0,0,0,0,1,0,-1,0 --no-backcull"));
}

TEST_F(View, FollowsItsAttributes)
{
    add("a", { { "src", "/models/chair.obj" }, { "tool", "weld" } });
    askBridge("viewSet",
              { { "id", "a" }, { "attributes", { { "metallic", "" }, { "moon", "" }, { "rotate", "0,45,0" } } } });
    EXPECT_EQ(pictureOf("a"), rendered(chair() + " --tool weld --size 300x240 --metallic --moon --rotate 0,45,0"));
    askBridge("viewSet", { { "id", "a" }, { "attributes", { { "metallic", nullptr }, { "wireframe", "" } } } });
    EXPECT_EQ(pictureOf("a"), rendered(chair() + " --tool weld --size 300x240 --wireframe --moon --rotate 0,45,0"));
    askBridge("viewSet", { { "id", "a" }, { "attributes", { { "tool", "tri,weld" }, { "filter", "2" } } } });
    askBridge("viewSay", { { "id", "a" }, { "count", 2 } });
    EXPECT_EQ(infoOf("a"), Json::parse(kbxIn(folder, "info --json --tool tri --tool weld --filter 2 chair.obj")));
    askBridge("viewSet", { { "id", "a" }, { "attributes", { { "src", "/models/scan.ply" } } } });
    askBridge("viewSay", { { "id", "a" }, { "count", 3 } });
    EXPECT_EQ(infoOf("a")["file"], "scan.ply");
}

TEST_F(View, SaysWhichAttributeIsWrong)
{
    Json events = add("a", { { "src", "/models/chair.obj" }, { "rotate", "20,30" } });
    EXPECT_EQ(lastMessageOf(events), "rotate: expected X,Y,Z, not 20,30");
    events = askBridge("viewSay", { { "id", "a" }, { "count", 2 } });
    EXPECT_EQ(countOf(events, "load"), 1) << events; // and it counts as not given
    askBridge("viewSet", { { "id", "a" }, { "attributes", { { "rotate", "20,30,0" }, { "lights", "4" } } } });
    events = askBridge("viewSay", { { "id", "a" }, { "count", 3 } });
    EXPECT_EQ(lastMessageOf(events), "lights: expected 1,2,3|none, not 4");
}

TEST_F(View, TellsWhyAFileIsNotShown)
{
    std::ofstream(folder / "bad.dxf") << "0\nSECTION\n2\nENTITIES\n0\nLINE\n0\nENDSEC\n0\nEOF\n";
    Json events = add("a", { { "src", "/models/bad.dxf" } });
    ASSERT_EQ(countOf(events, "error"), 1) << events;
    EXPECT_EQ(lastMessageOf(events), "Error: failed to open, only 3DFACE supported");
    EXPECT_EQ(infoOf("a"), Json::parse(kbxIn(folder, "info --json bad.dxf")));
    std::string missing = lastMessageOf(add("b", { { "src", "/models/none.obj" } }));
    EXPECT_EQ(missing.rfind("Error: failed to open http://", 0), 0u) << missing;
    EXPECT_EQ(askBridge("viewComplaints").size(), 1u); // the browser's own, about the missing file

    // What is shown stays, and a file that is opened then is shown.
    askBridge("viewFiles", { { "paths", { (folder / "bad.dxf").string(), (folder / "scan.ply").string() } } });
    EXPECT_EQ(askBridge("viewOpen", { { "id", "b" }, { "names", { "scan.ply" } } })["refused"], nullptr);
    std::string before = pictureOf("b");
    EXPECT_EQ(askBridge("viewOpen", { { "id", "b" }, { "names", { "bad.dxf" } } })["refused"],
              "Error: failed to open, only 3DFACE supported");
    EXPECT_EQ(pictureOf("b"), before);
}

TEST_F(View, WritesTheFilesOfKbxConvert)
{
    add("a", { { "src", "/models/chair.obj" } });
    for (const char* tool : { "weld", "tri" })
        EXPECT_EQ(askBridge("viewTool", { { "id", "a" }, { "name", tool } }).value("refused", ""), "");
    EXPECT_EQ(infoOf("a"), Json::parse(kbxIn(folder, "info --json --tool weld --tool tri chair.obj")));
    fs::create_directories(folder / "kbx");
    for (const char* kind : { "obj", "pp2", "rkf", "lxs", "stl" })
    {
        Json saved =
            askBridge("viewSave", { { "id", "a" }, { "kind", kind }, { "folder", (folder / "out").string() } });
        EXPECT_EQ(saved["refused"], nullptr);
        EXPECT_EQ(saved["names"][0], std::string("chair.") + kind);
        // Normals are those of the processor, so a scene is compared with the same build's.
        std::string words = std::string("convert --tool weld --tool tri chair.obj kbx/chair.") + kind;
        std::string(kind) == "lxs" ? wasmKbxIn(folder, words) : kbxIn(folder, words);
        for (const std::string& name : saved["names"].get<std::vector<std::string>>())
            EXPECT_EQ(bytesOf(folder / "out" / name), bytesOf(folder / "kbx" / name)) << kind << " " << name;
        size_t written = 0;
        for (const auto& entry : fs::directory_iterator(folder / "kbx"))
            written += fs::remove(entry.path());
        EXPECT_EQ(saved["names"].size(), written) << kind;
    }
    EXPECT_EQ(askBridge("viewSave", { { "id", "a" }, { "kind", "doc" }, { "folder", "/" } })["refused"],
              "there is no such format");
    EXPECT_EQ(askBridge("viewTool", { { "id", "a" }, { "name", "melt" } })["refused"], "there is no tool melt");
}

TEST_F(View, WithAFilterWritesWhatItShows)
{
    add("a", { { "src", "/models/chair.obj" }, { "filter", "2" } });
    askBridge("viewSave", { { "id", "a" }, { "kind", "obj" }, { "folder", (folder / "out").string() } });
    fs::create_directories(folder / "kbx");
    kbxIn(folder, "convert --filter 2 chair.obj kbx/chair.obj");
    EXPECT_EQ(bytesOf(folder / "out" / "chair.obj"), bytesOf(folder / "kbx" / "chair.obj"));
    EXPECT_GT(infoOf("a")["hidden"].get<int>(), 0); // the view still has the rest
}

// A file of more than 64 MiB is fetched in pieces that grow.
TEST_F(View, ReadsAFileOfSeveralPiecesAsKbxDoes)
{
    const std::string comment = "#" + std::string(700, '-') + "\n"; // makes it large, but not its model
    std::ofstream large(folder / "large.obj");
    for (int i = 0; i < 50000; ++i)
        large << "v " << i % 977 << "." << i << " " << i / 7 << " -0." << 1000000 + i << "\n" << comment;
    for (int i = 1; i < 50000 - 2; ++i)
        large << "f " << i << " " << i + 1 << " " << i + 2 << "\n" << comment;
    large.close();
    ASSERT_GT(fs::file_size(folder / "large.obj"), uintmax_t{ 64 } << 20);
    add("a", Json::object());
    askBridge("viewFiles", { { "paths", { (folder / "large.obj").string() } } });
    askBridge("viewOpen", { { "id", "a" }, { "names", { "large.obj" } } });
    askBridge("viewSave", { { "id", "a" }, { "kind", "obj" }, { "folder", (folder / "out").string() } });
    fs::create_directories(folder / "kbx");
    kbxIn(folder, "convert large.obj kbx/large.obj");
    EXPECT_EQ(bytesOf(folder / "out" / "large.obj"), bytesOf(folder / "kbx" / "large.obj"));
}

TEST_F(View, ReportsProgress)
{
    std::ofstream large(folder / "large.off");
    const int side = 400;
    large << "OFF\n" << side * side << " " << side * side << " 0\n";
    for (int i = 0; i < side * side; ++i)
        large << i % side << " " << i / side << " 0\n";
    for (int i = 0; i < side * side; ++i)
        large << "3 " << i % (side * side - 500) << " " << i % (side * side - 500) + 1 << " "
              << i % (side * side - 500) + side << "\n";
    large.close();
    Json events = add("a", { { "src", "/models/large.off" } });
    EXPECT_GT(countOf(events, "progress"), 3) << events;
    double last = 0;
    for (const Json& event : events)
    {
        if (event["type"] != "progress")
            continue;
        EXPECT_LE(event["loaded"], event["total"]);
        last = event["loaded"].get<double>() / event["total"].get<double>();
    }
    EXPECT_EQ(last, 1);
}

TEST_F(View, TurnsAndZoomsByMouseAndKeys)
{
    add("a", { { "src", "/models/chair.obj" }, { "rotate", "0,30,0" } });
    std::string start = pictureOf("a");
    askBridge("viewKeys", { { "id", "a" }, { "names", { "ArrowLeft" } } });
    std::string turned = pictureOf("a");
    EXPECT_NE(turned, start);
    askBridge("viewKeys", { { "id", "a" }, { "names", { "Home" } } });
    EXPECT_EQ(pictureOf("a"), start);
    askBridge("viewDrag", { { "id", "a" }, { "dx", 60 } });
    std::string dragged = pictureOf("a");
    EXPECT_NE(dragged, start);
    askBridge("viewDrag", { { "id", "a" }, { "wheel", 2 } });
    EXPECT_NE(pictureOf("a"), dragged);

    // A choice about colours leaves the turn as it is.
    askBridge("viewKeys", { { "id", "a" }, { "names", { "Home", "ArrowLeft" } } });
    askBridge("viewSet", { { "id", "a" }, { "attributes", { { "preset", "gold" } } } });
    askBridge("viewSet", { { "id", "a" }, { "attributes", { { "preset", nullptr } } } });
    EXPECT_EQ(pictureOf("a"), turned);
}

TEST_F(View, TwoOnAPageDoNotDisturbEachOther)
{
    add("a", { { "src", "/models/chair.obj" } });
    std::string before = pictureOf("a");
    Json info = infoOf("a");
    add("b", { { "src", "/models/scan.ply" }, { "background", "black" } });
    askBridge("viewTool", { { "id", "b" }, { "name", "tri" } });
    askBridge("viewKeys", { { "id", "b" }, { "names", { "ArrowUp", "+" } } });
    EXPECT_EQ(pictureOf("a"), before);
    EXPECT_EQ(infoOf("a"), info);
    askBridge("viewRemove", { { "id", "b" } });
    EXPECT_EQ(pictureOf("a"), before);
}

TEST_F(View, LoadsTheProgramOnceForAllViewsOfAPage)
{
    add("a", Json::object());
    add("b", Json::object());
    Json requests = askBridge("viewRequests");
    EXPECT_EQ(std::count(requests.begin(), requests.end(), "/view/core.wasm"), 1) << requests;
}

TEST_F(View, GivesItsMemoryBackWhenItIsRemoved)
{
    int before = askBridge("viewWorkers");
    add("a", { { "src", "/models/chair.obj" } });
    std::string shown = pictureOf("a");
    add("b", Json::object());
    EXPECT_EQ(askBridge("viewWorkers"), before + 2);
    askBridge("viewMove", { { "id", "b" } }); // within the page, which does not end it
    EXPECT_EQ(askBridge("viewWorkers"), before + 2);
    askBridge("viewRemove", { { "id", "b" } });
    EXPECT_EQ(askBridge("viewWorkers"), before + 1);
    EXPECT_EQ(pictureOf("a"), shown);
}

TEST_F(View, StartsAnewAfterAFault)
{
    add("a", { { "src", "/models/chair.obj" } });
    askBridge("viewBreak");
    Json events = askBridge("viewSay", { { "id", "a" }, { "count", 2 } });
    EXPECT_EQ(lastMessageOf(events), "The program has stopped: TypeError: actions[request.do] is not a function");
    askBridge("viewFiles", { { "paths", { (folder / "scan.ply").string() } } });
    EXPECT_EQ(askBridge("viewOpen", { { "id", "a" }, { "names", { "scan.ply" } } })["refused"], nullptr);
    EXPECT_EQ(pictureOf("a"), rendered((folder / "scan.ply").string() + " --size 300x240"));
}

TEST_F(View, ATrapInsideIsAnErrorAndTheUserCanStartAnew)
{
    add("a", { { "src", "/models/chair.obj" } });
    std::string before = pictureOf("a");
    askBridge("viewTrap");
    const std::string message = "The program has stopped: RuntimeError: memory access out of bounds";
    EXPECT_EQ(askBridge("viewTool", { { "id", "a" }, { "name", "weld" } })["refused"], message);
    Json events = askBridge("viewSay", { { "id", "a" }, { "count", 2 } });
    EXPECT_EQ(lastMessageOf(events), message);
    EXPECT_EQ(askBridge("viewClickAgain", { { "id", "a" } }), "Start anew");
    events = askBridge("viewSay", { { "id", "a" }, { "count", 3 } });
    EXPECT_EQ(countOf(events, "load"), 2) << events;
    EXPECT_EQ(pictureOf("a"), before);
    EXPECT_EQ(askBridge("viewTool", { { "id", "a" }, { "name", "weld" } }).value("refused", ""), "");
}

TEST_F(View, HasTheSizeThatItsAttributeSays)
{
    add("a", { { "src", "/models/chair.obj" }, { "size", "200x150" } });
    EXPECT_EQ(pictureOf("a"), rendered(chair() + " --size 200x150"));
    Json events = add("b", { { "src", "/models/chair.obj" }, { "size", "5x150" } });
    EXPECT_EQ(lastMessageOf(events), "size: expected WxH, each 10..16384, not 5x150");
    EXPECT_EQ(pictureOf("b"), rendered(chair()));
}

TEST_F(View, ThreeHundredFilesInARowLeaveNothingBehind)
{
    std::ofstream(folder / "bad.dxf") << "0\nSECTION\n2\nENTITIES\n0\nPOLYLINE\n";
    add("a", Json::object());
    std::vector<std::string> names = { "chair.obj", "scan.ply", "bad.dxf" }, paths;
    for (const char* name : { "chair.obj", "scan.ply", "bad.dxf", "chair.mtl", "wood.jpg" })
        paths.push_back((folder / name).string());
    askBridge("viewFiles", { { "paths", paths } });
    auto openInARow = [&](int rounds) {
        return askBridge("viewOpenInARow", { { "id", "a" }, { "names", names }, { "rounds", rounds } });
    };
    Json early = openInARow(40), late = openInARow(60);
    EXPECT_EQ(late["memory"], early["memory"]);
    EXPECT_EQ(late["nodes"], early["nodes"]);
    EXPECT_LT(late["scripts"].get<int>(), early["scripts"].get<int>() + (1 << 17)); // what the browser compiles, too
}

TEST_F(View, HasANameForScreenReaders)
{
    add("a", { { "src", "/models/chair.obj" } });
    EXPECT_EQ(askBridge("viewName", { { "id", "a" } })["name"], "Model chair.obj");
    askBridge("viewSet", { { "id", "a" }, { "attributes", { { "aria-label", "A chair" } } } });
    EXPECT_EQ(askBridge("viewName", { { "id", "a" } })["name"], "A chair");
}

// Every file in a folder, with all others beside it.
static void compareFacts(const fs::path& folder)
{
    std::vector<std::string> names, paths;
    for (const auto& entry : fs::directory_iterator(folder))
    {
        if (entry.is_regular_file())
            names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    std::string command = "info --json-lines";
    for (const std::string& name : names)
    {
        paths.push_back((folder / name).string());
        command += " " + quoted(name);
    }
    if (names.empty())
        return;
    std::istringstream answers(kbxIn(folder, command));
    askBridge("viewFiles", { { "paths", paths } });
    for (const std::string& name : names)
    {
        std::string line;
        ASSERT_TRUE(std::getline(answers, line)) << name;
        std::vector<std::string> given = { name };
        if (isModelName(name.c_str())) // else a model beside it would be meant
            std::copy_if(names.begin(), names.end(), std::back_inserter(given),
                         [&](auto& other) { return other != name; });
        askBridge("viewOpen", { { "id", "a" }, { "names", given } });
        EXPECT_EQ(askBridge("viewInfo", { { "id", "a" } })["value"], Json::parse(line)) << folder / name;
    }
}

TEST_F(View, EveryRealFileIsDescribedAsByKbxInfo)
{
    const char* models = getenv("KESTRELBOX_MODELS");
    if (!models)
        GTEST_SKIP() << "KESTRELBOX_MODELS is not set";
    add("a", Json::object());
    compareFacts(models);
    for (const auto& entry : fs::recursive_directory_iterator(models))
    {
        if (entry.is_directory())
            compareFacts(entry.path());
    }
}
