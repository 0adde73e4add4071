// tests/page/handles_test.cpp - a folder that is saved into, and files that are read again by their handles
#include "resources/ids.h"
#include "shell/keys.h"
#include "tests/page/base64.h"
#include "tests/page/bridge.h"
#include "tests/window/driver.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace fs = std::filesystem;
using Json = nlohmann::json;

static const char* triangle = "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n";
static const char* twoTriangles = "v 0 0 0\nv 1 0 0\nv 0 1 0\nv 1 1 0\nf 1 2 3\nf 2 4 3\n";

static std::string bytesOf(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

// The page in a browser with pickers, which choose from one folder.
class Handles : public testing::Test
{
protected:
    void SetUp() override
    {
        askBridge("handlesBegin");
        folder = fs::temp_directory_path() / "page-handles";
        fs::remove_all(folder);
        fs::create_directories(folder);
    }

    void TearDown() override
    {
        askBridge("handlesEnd");
        fs::remove_all(folder);
    }

    static void write(const char* name, const std::string& bytes)
    {
        askBridge("handlesWrite", { { "name", name }, { "bytes", encodeBase64(bytes) } });
    }

    static std::map<std::string, std::string> files()
    {
        std::map<std::string, std::string> found;
        Json all = askBridge("handlesFiles");
        for (const auto& [name, bytes] : all.items())
            found[name] = decodeBase64(bytes);
        return found;
    }

    static void openByPicker(const std::vector<std::string>& names)
    {
        askBridge("handlesPick", { { "names", names } });
        askBridge("clickOn", { { "selector", "#choose-files" } });
    }

    static void chooseFolder()
    {
        askBridge("clickOn", { { "selector", "#save-folder" } });
    }

    // What kbx writes for the chair.
    std::map<std::string, std::string> converted(const char* name) const
    {
        std::map<std::string, std::string> written;
        fs::create_directories(folder / "kbx");
        std::string command = NATIVE_PROGRAMS "/kbx convert " EXAMPLES "/chair.obj " + (folder / "kbx" / name).string();
        EXPECT_EQ(system((command + " >/dev/null 2>&1").c_str()), 0);
        for (const auto& entry : fs::directory_iterator(folder / "kbx"))
            written[entry.path().filename().string()] = bytesOf(entry.path());
        return written;
    }

    static void openChair()
    {
        for (const char* name : { "chair.obj", "chair.mtl", "wood.jpg" })
            write(name, bytesOf(fs::path(EXAMPLES) / name));
        openByPicker({ "chair.obj", "chair.mtl", "wood.jpg" });
        EXPECT_EQ(panelText(ID_MATERIAL_COUNT), "2");
    }

    fs::path folder;
};

static int downloadCount()
{
    return askBridge("downloadCount").get<int>();
}

static void exportObjAs(const char* name)
{
    askBridge("saveAs", { { "id", ID_EXPORT_OBJ }, { "name", name } });
}

TEST_F(Handles, ASetOfFilesIsSavedIntoTheChosenFolder)
{
    openChair();
    int downloads = downloadCount();
    chooseFolder();
    EXPECT_EQ(askBridge("textOf", { { "selector", "#save-folder" } }), "chosen");
    exportObjAs("saved.obj");
    askBridge("whenNoticed", { { "text", "Saved into chosen" } });
    auto found = files(), expected = converted("saved.obj");
    EXPECT_EQ(expected.size(), 2u);
    for (const auto& [name, bytes] : expected)
        EXPECT_EQ(found[name], bytes) << name;
    EXPECT_EQ(downloadCount(), downloads);

    // A second press goes back to downloads.
    chooseFolder();
    EXPECT_EQ(askBridge("textOf", { { "selector", "#save-folder" } }), "Save folder");
    exportObjAs("loaded.obj");
    askBridge("takeDownloads", { { "folder", folder.string() } });
    EXPECT_EQ(downloadCount(), downloads + 1);
    EXPECT_EQ(bytesOf(folder / "loaded.mtl"), expected["saved.mtl"]);
}

// The preview shows the display, so only the prop is that of kbx.
TEST_F(Handles, APropAndItsPreviewAreSavedIntoTheChosenFolder)
{
    openChair();
    int downloads = downloadCount();
    chooseFolder();
    askBridge("saveAs", { { "id", ID_EXPORT_PP2 }, { "name", "saved.pp2" } });
    askBridge("whenNoticed", { { "text", "Saved into chosen" } });
    auto found = files(), expected = converted("saved.pp2");
    EXPECT_EQ(expected.size(), 2u);
    EXPECT_EQ(found["saved.pp2"], expected["saved.pp2"]);
    EXPECT_FALSE(found["saved.rsr"].empty());
    EXPECT_EQ(downloadCount(), downloads);
}

TEST_F(Handles, ASceneIsSavedIntoTheChosenFolder)
{
    openChair();
    int downloads = downloadCount();
    chooseFolder();
    pressPanel(ID_LUX_EXPORT);
    askBridge("whenNoticed", { { "text", "Saved into chosen" } });
    auto found = files(), expected = converted("chair.lxs");
    EXPECT_EQ(expected.size(), 4u);
    for (const auto& [name, bytes] : expected)
        EXPECT_FALSE(found[name].empty()) << name;
    EXPECT_EQ(found["chair.lxm"], expected["chair.lxm"]); // the others have normals, which are the processor's
    EXPECT_EQ(downloadCount(), downloads);
}

TEST_F(Handles, FilesOfTheFolderAreReplacedOnlyWhenTheUserSaysSo)
{
    openChair();
    chooseFolder();
    write("saved.mtl", "mine");
    exportObjAs("saved.obj");
    EXPECT_EQ(askBridge("readBox")["text"], "saved.mtl: already in the folder chosen");
    askBridge("pressButton", { { "number", 1 } });
    auto kept = files();
    EXPECT_EQ(kept["saved.mtl"], "mine");
    EXPECT_EQ(kept.count("saved.obj"), 0u);
    exportObjAs("saved.obj");
    askBridge("pressButton", { { "number", 0 } });
    askBridge("whenNoticed", { { "text", "Saved into chosen" } });
    auto replaced = files();
    for (const auto& [name, bytes] : converted("saved.obj"))
        EXPECT_EQ(replaced[name], bytes) << name;
}

TEST_F(Handles, AFolderThatCannotBeWrittenStaysAsItWasAndTheFilesAreDownloaded)
{
    openChair();
    chooseFolder();
    askBridge("handlesMakeFolder", { { "name", "saved.obj" } }); // where a file has to go
    exportObjAs("saved.obj");
    EXPECT_EQ(askBridge("readBox")["text"], "The folder chosen cannot be written. The files are downloaded.");
    askBridge("pressButton", { { "number", 0 } });
    askBridge("takeDownloads", { { "folder", folder.string() } });
    for (const auto& [name, bytes] : converted("saved.obj"))
        EXPECT_EQ(bytesOf(folder / name), bytes) << name;
    auto kept = files();
    EXPECT_EQ(kept.size(), 4u);
    EXPECT_EQ(kept.count("saved.obj/"), 1u);
}

TEST_F(Handles, AFileThatHasChangedIsReadAgain)
{
    write("a.obj", triangle);
    openByPicker({ "a.obj" });
    EXPECT_EQ(panelText(ID_FACE_COUNT), "1");
    write("a.obj", twoTriangles);
    pressKey(keyF5, 0);
    EXPECT_EQ(panelText(ID_FACE_COUNT), "2");

    // Dropped files have handles, too, and those in a dropped folder.
    for (const char* dropped : { "a.obj", "" })
    {
        write("a.obj", triangle);
        askBridge("handlesDrop", { { "names", { dropped } } });
        EXPECT_EQ(panelText(ID_FACE_COUNT), "1") << dropped;
        write("a.obj", twoTriangles);
        pressKey(keyF5, 0);
        EXPECT_EQ(panelText(ID_FACE_COUNT), "2") << dropped;
    }
    askBridge("handlesRemove", { { "name", "a.obj" } });
    pressKey(keyF5, 0);
    EXPECT_EQ(askBridge("readBox")["text"], "Error: failed to open");
    askBridge("pressButton", { { "number", 0 } });
    EXPECT_EQ(panelText(ID_FACE_COUNT), "2");
}

TEST_F(Handles, APickerThatIsCancelledChangesNothing)
{
    openByPicker({});
    askBridge("handlesPick", { { "names", nullptr } });
    askBridge("clickOn", { { "selector", "#choose-files" } });
    EXPECT_EQ(panelText(ID_FACE_COUNT), "4096");
}

TEST(Page, OffersNoFolderWhereTheBrowserHasNoPicker)
{
    EXPECT_FALSE(askBridge("isShown", { { "selector", "#save-folder" } }).get<bool>());
}
