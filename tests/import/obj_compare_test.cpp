// tests/import/obj_compare_test.cpp - the fast reader compared with the literal one on made, damaged and real files
#include "import/obj/parts.h"
#include "platform/boxes.h"
#include "tests/import/obj_literal.h"
#include "tests/import/obj_loading.h"
#include "tests/import/random.h"

#include <stdarg.h>
#include <memory>

// Reads the bytes with both readers and compares mesh, refusal and progress.
static void expectLiteral(const std::string& path, const std::string& bytes, size_t blockBytes = blockRoom)
{
    LiteralObj wanted = readLiterally(bytes);
    resetRecording();
    showProgress("LOADING.....");
    std::unique_ptr<Mesh, void (*)(Mesh*)> mesh(createMesh("prop"), freeMesh);
    int ok = parseObjInBlocks(mesh.get(), path.c_str(), blockBytes);
    closeProgress();
    ASSERT_EQ(ok != 0, wanted.ok) << path;
    ASSERT_EQ(recorded.progress.back().fractions, wanted.fractions);
    if (!ok)
        return;
    // Compares two long texts without printing them.
    std::string geometry = geometryText(mesh.get());
    size_t same = 0;
    while (same < geometry.size() && same < wanted.geometry.size() && geometry[same] == wanted.geometry[same])
        ++same;
    ASSERT_TRUE(geometry == wanted.geometry)
        << path << ": from " << geometry.substr(same, 200) << "\nwanted " << wanted.geometry.substr(same, 200);
}

class ObjLiteral : public testing::Test
{
protected:
    TestFolder folder;

    void compare(const std::string& bytes, size_t blockBytes = blockRoom)
    {
        expectLiteral(folder.write("test.obj", bytes), bytes, blockBytes);
    }
    void TearDown() override
    {
        EXPECT_EQ(recorded.liveBlocks, 0);
    }
};

static const std::string sample =
    "# sample\r\nmtllib a.mtl\r\nv 1.5 -2.25 .5\r\nv 0 1e1 0x1p2\r\nv -1 0 0\r\nv 3 3 3\tx\r\nvt 0.5 0.25\nvt 1 1\n"
    "vn 0 0 1\ng left side \nusemtl red\nf 1/1/1 2/2/1 3//1\nfo 1 2 3 4\n\n\tv 7 7 7\nl 1 2 3 4 5\nusev 1 1 1\n"
    "usemtl  blue\nf -1 -2 -3 -4 -5\ng\nf 1 2\nmtlx f 1 2 3\ns 1\rv 9 9 9\rf 1/2 3/1 6/2\n";

TEST_F(ObjLiteral, CornersOfEveryForm)
{
    static const char* const forms[] = { "", "/%d", "/%d/%d", "//%d", "/%d/", "//%d/%d", "///%d", "/" };
    std::string text;
    for (int i = 1; i <= 9; ++i)
        text += "v " + std::to_string(i) + " 0 0\nvt 0." + std::to_string(i) + " 0\n";
    auto corner = [](int number, const char* form)
    {
        char rest[32];
        snprintf(rest, sizeof rest, form, 9 - number, number); // not the index of the vertex
        return " " + std::to_string(number) + rest;
    };
    for (const char* end : { "\n", " \n", "\r\n", "  \n" })
        for (const char* first : forms)
            for (const char* other : forms)
                for (int count = 2; count <= 5; ++count)
                {
                    text += "f";
                    for (int k = 1; k <= count; ++k)
                        text += corner(k, k == count - 1 ? other : first);
                    text += end;
                }
    compare(text);
}

TEST_F(ObjLiteral, EveryCutOfASampleWithEveryBlockSize)
{
    for (size_t length = 0; length <= sample.size(); ++length)
        compare(sample.substr(0, length));
    for (size_t size = 1; size <= sample.size() + 1; ++size)
    {
        compare(sample, size);
        compare(sample.substr(0, sample.size() - size % 50), size);
    }
}

TEST_F(ObjLiteral, AFileOfWholeBlocksEndsWithTheReadThatBringsNothing)
{
    for (size_t size : { 4095u, 4096u, 4097u, 8192u, 262143u, 262144u, 262145u, 524288u })
    {
        std::string bytes = sample;
        while (bytes.size() < size)
            bytes += "v 1 2 3\n";
        bytes.resize(size);
        compare(bytes);
        bytes.back() = '\n';
        compare(bytes);
    }
}

// A line of a random kind, mostly sensible.
static void addLine(std::string* text, Random& random)
{
    auto add = [text](const char* format, ...) __attribute__((format(printf, 2, 3)))
    {
        char line[256];
        va_list arguments;
        va_start(arguments, format);
        vsnprintf(line, sizeof line, format, arguments);
        va_end(arguments);
        *text += line;
    };
    auto number = [&random] { return (static_cast<double>(random()) - 2e9) / 1e9; };
    static const char* const ends[] = { "\n", "\n", "\n", "\r\n", "\r", " \n", "\t\r\n" };
    switch (random() % 16)
    {
    case 0:
    case 1:
    case 2: add("v %.6f %.6f %.6f", number(), number(), number()); break;
    case 3: add("v %g %.9g %.17g", number(), number() * 1e-9, number()); break;
    case 4:
    case 5: add("vt %f %f", number(), number()); break;
    case 6: add("vn %f %f %f", number(), number(), number()); break;
    case 7: add("usemtl material%u", random() % 600); break;
    case 8: add("g group %u", random() % 600); break;
    case 9: add("# %u", random()); break;
    case 10: add("%s %u", random() % 2 ? "usemt" : "mtllix", random()); break;
    default:
    {
        *text += random() % 6 ? "f" : "l";
        for (unsigned corner = random() % 9; corner > 0; --corner)
        {
            static const char* const formats[] = { " %d", " %d/%d", " %d/%d/%d", " %d//%d" };
            int a = static_cast<int>(random() % 60) - 9, b = static_cast<int>(random() % 40) - 9;
            char one[64];
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
#pragma GCC diagnostic ignored "-Wformat-extra-args"
            snprintf(one, sizeof one, formats[random() % 4], a, b, 3);
#pragma GCC diagnostic pop
            *text += one;
        }
    }
    }
    *text += ends[random() % 7];
}

static void damage(std::string* text, Random& random)
{
    static const char bytes[] = "\n\r \t/-+.eExvftlgum#0123456789\0\xFF";
    for (unsigned times = random() % 12; times > 0 && !text->empty(); --times)
    {
        size_t at = random() % text->size();
        switch (random() % 4)
        {
        case 0: (*text)[at] = bytes[random() % (sizeof bytes - 1)]; break;
        case 1: text->erase(at, random() % 9); break;
        case 2: text->insert(at, 1, bytes[random() % (sizeof bytes - 1)]); break;
        case 3: text->insert(at, text->substr(random() % text->size(), random() % 30)); break;
        }
    }
}

TEST_F(ObjLiteral, ThousandsOfRandomFiles)
{
    Random random(7);
    for (int i = 0; i < 2500; ++i)
    {
        std::string text = random() % 4 ? "v 1 2 3\nv 3 4 5\nv 5 5 1\nvt 1 1\nf 1 2 3\n" : "";
        for (unsigned lines = random() % 120; lines > 0; --lines)
            addLine(&text, random);
        if (i % 2)
            damage(&text, random);
        compare(text, i % 3 ? 1 + random() % 300 : blockRoom);
        if (HasFatalFailure())
        {
            folder.write("../failed.obj", text);
            return;
        }
    }
}

TEST_F(ObjLiteral, LongLinesAtEveryPlaceOfTheBlock)
{
    Random random(8);
    for (int i = 0; i < 300; ++i)
    {
        std::string text = "v 1 2 3\nv 3 4 5\nv 5 5 1\nf 1 2 3\n";
        for (int line = 0; line < 20; ++line)
        {
            addLine(&text, random);
            if (random() % 3 == 0)
            {
                static const char* const keywords[] = { "g ", "v ", "f ", "# ", "vt", "usemtl ", "  " };
                text += keywords[random() % 7];
                text.append(2035 + random() % 20, random() % 2 ? 'x' : ' ');
                text += "1 2 3\n";
            }
        }
        compare(text, 1 + random() % 6000);
        if (HasFatalFailure())
            return;
    }
}

TEST_F(ObjLiteral, ALargeFileWithSectionsAndManyStatements)
{
    Random random(9);
    std::string text;
    char line[100];
    for (int i = 0; i < 90000; ++i)
    {
        auto number = [&random] { return (static_cast<double>(random()) - 2e9) / 1e9; };
        snprintf(line, sizeof line, "v %.6f %.6f %.6f\n", number(), number(), number());
        text += line;
    }
    for (int i = 0; i < 80000; ++i)
    {
        snprintf(line, sizeof line, "vt %.5f %.5f\n", random() / 4294967296.0, random() / 4294967296.0);
        text += line;
    }
    for (int i = 0; i < 150000; ++i)
    {
        snprintf(line, sizeof line, "f %u/%u %u/%u %u/%u\n", 1 + random() % 90000, 1 + random() % 80000,
                 1 + random() % 90000, 1 + random() % 80000, 1 + random() % 90000, 1 + random() % 80000);
        text += line;
        if (i % 5000 == 0)
            text.append("g group").append(std::to_string(i)).append("\n");
    }
    compare(text);
    EXPECT_GT(recorded.progress.back().fractions.size(), 30u);
    size_t used = 90000 * 48 + 80000 * 8 + 150000 * 52;
    EXPECT_LT(recorded.peakBytes, used * 3 / 2); // room was right from the start
}

// Files whose samples do not represent the whole file.
TEST_F(ObjLiteral, AMisjudgedLargeFileGrows)
{
    std::string text;
    while (text.size() < (4u << 20))
        text.append("# ").append(4000, 'c').append("\n");
    std::string tail = "vt 1 1\n";
    for (int i = 0; i < 100000; ++i)
        tail += "v 1 2 3\n";
    for (int i = 0; i < 100000; ++i)
        tail += "f 1 2 3 4 5 6\n";
    compare(text + tail);
    std::string faces = "v 1 2 3\nv 1 2 3\nv 1 2 3\nf 1 2 3\n";
    while (faces.size() < (5u << 20))
        faces += "f x\n";
    compare(faces);
    EXPECT_LT(recorded.peakBytes, 20 * faces.size());
}

TEST_F(ObjLiteral, EveryRealFile)
{
    const char* models = getenv("KESTRELBOX_MODELS");
    if (!models)
        GTEST_SKIP() << "KESTRELBOX_MODELS names no folder of real files";
    int files = 0, loadable = 0;
    for (const char* sub : { "obj", "broken", "mtl" })
    {
        std::filesystem::path in = std::filesystem::path(models) / sub;
        if (!std::filesystem::exists(in))
            continue;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(in))
        {
            if (entry.path().extension() != ".obj")
                continue;
            std::string bytes = fileBytes(entry.path().string());
            expectLiteral(entry.path().string(), bytes);
            ++files;
            loadable += readLiterally(bytes).ok;
            if (HasFatalFailure())
                return;
        }
    }
    EXPECT_GT(files, 10);
    EXPECT_GT(loadable, 10);
}
