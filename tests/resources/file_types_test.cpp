// tests/resources/file_types_test.cpp - the file types that the package registers with a desktop
#include <gtest/gtest.h>
#include <stdio.h>
#include <stdlib.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

static const std::string typesFile = RESOURCES "/linux/kestrelbox.xml";

static std::string fileText(const std::string& path)
{
    std::ifstream file(path);
    return { std::istreambuf_iterator<char>(file), {} };
}

TEST(FileTypes, NoExtensionOfOthersIsClaimed)
{
    std::string types = fileText(typesFile);
    EXPECT_NE(types.find("<glob pattern=\"*.ply\"/>"), std::string::npos);
    for (const char* extension : { "obj", "3ds", "dxf", "pp2", "hr2", "cr2" })
        EXPECT_EQ(types.find(std::string("<glob pattern=\"*.") + extension), std::string::npos) << extension;
}

static bool haveProgram(const std::string& name)
{
    return system(("command -v " + name + " >/dev/null 2>&1").c_str()) == 0;
}

class FileTypesOfDesktop : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!haveProgram("update-mime-database") || !haveProgram("gio"))
            GTEST_SKIP() << "packages shared-mime-info and libglib2.0-bin are not installed";
        folder = testing::TempDir() + "file_types_XXXXXX";
        ASSERT_NE(mkdtemp(folder.data()), nullptr);
        std::filesystem::create_directories(folder + "/mime/packages");
        std::filesystem::copy(typesFile, folder + "/mime/packages/kestrelbox.xml");
        ASSERT_EQ(system(("update-mime-database '" + folder + "/mime' 2>/dev/null").c_str()), 0);
    }
    void TearDown() override
    {
        if (!folder.empty())
            std::filesystem::remove_all(folder);
    }
    // The type that a desktop without other types finds for this name and content.
    std::string typeOf(const std::string& name, const std::string& content) const
    {
        std::ofstream(folder + "/" + name) << content;
        std::string command = "XDG_DATA_DIRS=/nonexistent XDG_DATA_HOME='" + folder +
                              "' gio info -a standard::content-type '" + folder + "/" + name + "'";
        FILE* pipe = popen(command.c_str(), "r");
        std::string answer;
        for (int c = fgetc(pipe); c != EOF; c = fgetc(pipe))
            answer.push_back(static_cast<char>(c));
        pclose(pipe);
        const std::string label = "standard::content-type: ";
        size_t at = answer.find(label);
        return at == std::string::npos ? ""
                                       : answer.substr(at + label.size(), answer.find('\n', at) - at - label.size());
    }
    std::string folder;
};

TEST_F(FileTypesOfDesktop, PoserFilesAreKnownByTheirContents)
{
    for (const char* ends : { "\n", "\r\n" })
    {
        std::string line = ends;
        std::string version = "version" + line + "\t{" + line + "\tnumber 4.01" + line + "\t}" + line;
        for (const char* name : { "a.pp2", "a.hr2", "a.cr2", "a" })
            for (const std::string& start : { "{" + line, "{" + line + line, "{" + line + "// a comment" + line })
                EXPECT_EQ(typeOf(name, start + version), "model/x-poser") << name;
    }
    EXPECT_NE(typeOf("raw.cr2", "II*\001something else"), "model/x-poser");
    EXPECT_NE(typeOf("json.pp2", "{\n\"version\": 1,\n\"number\": 2\n}\n"), "model/x-poser");
}

TEST_F(FileTypesOfDesktop, OtherModelsAreKnownByTheirNames)
{
    EXPECT_EQ(typeOf("a.ply", "ply\nformat ascii 1.0\n"), "model/x-ply");
    EXPECT_EQ(typeOf("b", "ply\r\nformat ascii 1.0\r\n"), "model/x-ply");
    EXPECT_EQ(typeOf("a.off", "OFF\n1 0 0\n0 0 0\n"), "model/x-off");
    EXPECT_EQ(typeOf("a.rkf", "anything"), "model/x-rkf");
}
