// tests/qt/recent_files_test.cpp - the list of recent files: the program's entries, and those of others
#include "platform/controls.h"

#include <QtCore/QByteArray>
#include <QtCore/QXmlStreamReader>
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace fs = std::filesystem;

constexpr char listOfOthers[] = R"(<?xml version="1.0" encoding="UTF-8"?>
<xbel version="1.0"
      xmlns:bookmark="http://www.freedesktop.org/standards/desktop-bookmarks"
      xmlns:mime="http://www.freedesktop.org/standards/shared-mime-info"
      xmlns:own="http://example.org/own">
  <bookmark href="file:///home/u/a%20b.png" added="2026-01-01T10:00:00.123456Z" modified="2026-01-02T10:00:00Z" visited="2026-01-01T10:00:00Z">
    <title>a &amp; b</title>
    <info>
      <metadata owner="http://freedesktop.org">
        <mime:mime-type type="image/png"/>
        <bookmark:groups><bookmark:group>Graphics</bookmark:group></bookmark:groups>
        <bookmark:applications>
          <bookmark:application name="Viewer" exec="&apos;viewer %u&apos;" modified="2026-01-02T10:00:00Z" count="7"/>
        </bookmark:applications>
        <bookmark:private/>
      </metadata>
      <metadata owner="http://example.org"><own:note kind="x">kept</own:note></metadata>
    </info>
  </bookmark>
  <!-- a note -->
  <bookmark href="file:///m/cup.obj" added="2026-01-01T10:00:00Z" modified="2026-01-01T10:00:00Z" visited="2026-01-01T10:00:00Z">
    <info>
      <metadata owner="http://freedesktop.org">
        <mime:mime-type type="model/obj"/>
        <bookmark:applications>
          <bookmark:application name="Files" exec="&apos;files %u&apos;" modified="2026-01-01T10:00:00Z" count="2"/>
        </bookmark:applications>
      </metadata>
    </info>
  </bookmark>
</xbel>
)";

class RecentFiles : public testing::Test
{
protected:
    void SetUp() override
    {
        home = getenv("XDG_DATA_HOME");
        std::string name = testing::TempDir() + "kestrelbox-recent-XXXXXX";
        ASSERT_TRUE(mkdtemp(name.data()));
        folder = name;
        setenv("XDG_DATA_HOME", name.c_str(), 1);
        list = folder / "recently-used.xbel";
    }

    void TearDown() override
    {
        setenv("XDG_DATA_HOME", home.c_str(), 1);
        fs::remove_all(folder);
    }

    void write(const std::string& text) const
    {
        std::ofstream(list, std::ios::binary) << text;
    }

    std::string bytes() const
    {
        std::ifstream file(list, std::ios::binary);
        return { std::istreambuf_iterator<char>(file), {} };
    }

    // What an XML reader sees, a line for each element with its attributes, each text and each comment; of one bookmark
    // only, or of all others.
    static std::vector<std::string> seen(const std::string& text, const char* href, bool others)
    {
        std::vector<std::string> lines;
        QXmlStreamReader in(QByteArray::fromStdString(text));
        bool wanted = others;
        while (!in.atEnd())
        {
            in.readNext();
            if (in.isStartElement() && in.name() == u"bookmark")
                wanted = (in.attributes().value("href") == QString(href)) != others;
            std::string line = in.qualifiedName().toString().toStdString();
            for (const QXmlStreamAttribute& attribute : in.attributes())
                line +=
                    " " + attribute.name().toString().toStdString() + "=" + attribute.value().toString().toStdString();
            if (in.isCharacters() || in.isComment())
                line = in.text().toString().trimmed().toStdString();
            if (wanted && !line.empty())
                lines.push_back(line);
            if (in.isEndElement() && in.name() == u"bookmark")
                wanted = others;
        }
        EXPECT_FALSE(in.hasError()) << in.errorString().toStdString();
        return lines;
    }

    static size_t count(const std::string& text, const std::string& part)
    {
        size_t times = 0;
        for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
            ++times;
        return times;
    }

    fs::path folder, list;
    std::string home;
};

TEST_F(RecentFiles, AListIsMadeForItsUserAlone)
{
    rememberFile("/m/My \u6a21\u578b & \"more\".OBJ");
    std::string text = bytes();
    const char* address = "file:///m/My%20%E6%A8%A1%E5%9E%8B%20&%20%22more%22.OBJ";
    std::vector<std::string> lines = seen(text, address, false);
    ASSERT_GE(lines.size(), 5u) << text;
    EXPECT_EQ(lines[0].rfind(std::string("bookmark href=") + address + " added=2", 0), 0u) << lines[0];
    EXPECT_EQ(lines[1], "info");
    EXPECT_EQ(lines[2], "metadata owner=http://freedesktop.org");
    EXPECT_EQ(lines[3], "mime:mime-type type=model/obj");
    EXPECT_EQ(count(text, "<bookmark:application name=\"Kestrelbox\" exec=\"'kestrelbox %u'\""), 1u) << text;
    EXPECT_NE(text.find("count=\"1\""), std::string::npos);
    struct stat status;
    ASSERT_EQ(stat(list.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
}

TEST_F(RecentFiles, EntriesOfOthersAreKept)
{
    write(listOfOthers);
    std::vector<std::string> before = seen(listOfOthers, "file:///m/new.ply", true);
    rememberFile("/m/new.ply");
    EXPECT_EQ(seen(bytes(), "file:///m/new.ply", true), before);
    EXPECT_EQ(seen(bytes(), "file:///m/new.ply", false).at(3), "mime:mime-type type=model/x-ply");
}

TEST_F(RecentFiles, AnEntryOfAnotherProgramGetsThisOneBesideIt)
{
    write(listOfOthers);
    std::vector<std::string> others = seen(listOfOthers, "file:///m/cup.obj", true);
    for (int times = 1; times <= 3; ++times)
    {
        rememberFile("/m/cup.obj");
        std::string text = bytes();
        EXPECT_EQ(count(text, "file:///m/cup.obj"), 1u);
        EXPECT_EQ(count(text, "name=\"Kestrelbox\""), 1u);
        EXPECT_EQ(count(text, "name=\"Files\""), 1u);
        EXPECT_EQ(seen(text, "file:///m/cup.obj", true), others);
        std::vector<std::string> own = seen(text, "file:///m/cup.obj", false);
        EXPECT_EQ(own[0].rfind("bookmark href=file:///m/cup.obj added=2026-01-01T10:00:00Z modified=", 0), 0u)
            << own[0];
        EXPECT_EQ(own[0].find("modified=2026-01-01T10:00:00Z"), std::string::npos) << own[0];
        EXPECT_EQ(count(text, " count=\"" + std::to_string(times) + "\""), times == 2 ? 2u : 1u) << text;
    }
}

TEST_F(RecentFiles, AnEntryWithoutFactsIsCompleted)
{
    for (const char* inside :
         { "", "<title>x</title>", "<info/>", "<info><metadata owner=\"http://example.org\"/></info>",
           "<info><metadata owner=\"http://freedesktop.org\"/></info>" })
    {
        write(std::string("<xbel version=\"1.0\"><bookmark href=\"file:///m/a.off\">") + inside + "</bookmark></xbel>");
        rememberFile("/m/a.off");
        std::string text = bytes();
        EXPECT_EQ(count(text, "name=\"Kestrelbox\""), 1u) << text;
        EXPECT_EQ(count(text, "<info>"), 1u) << text;
        EXPECT_EQ(count(text, "owner=\"http://freedesktop.org\""), 1u) << text;
        EXPECT_EQ(count(text, "</bookmark:applications>"), 1u) << text;
    }
}

TEST_F(RecentFiles, WhatIsNoListStaysAsItIs)
{
    std::string cut(listOfOthers, sizeof listOfOthers / 2);
    for (const std::string& text : { cut, std::string("no XML"), std::string("<html/>"), std::string(17 << 20, ' ') })
    {
        write(text);
        rememberFile("/m/a.obj");
        EXPECT_TRUE(bytes() == text);
    }
    fs::remove(list);
    fs::create_directory(list);
    rememberFile("/m/a.obj");
    EXPECT_TRUE(fs::is_directory(list));
}

TEST_F(RecentFiles, AFullDiskLeavesTheListWhole)
{
    write(listOfOthers);
    rlimit usual, small;
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &usual), 0);
    small = { 1000, usual.rlim_max };
    auto* handler = signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    rememberFile("/m/a.obj");
    setrlimit(RLIMIT_FSIZE, &usual);
    signal(SIGXFSZ, handler);
    EXPECT_EQ(bytes(), listOfOthers);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 1) << "nothing is left beside it";
}
