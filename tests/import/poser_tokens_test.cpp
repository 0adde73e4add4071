// tests/import/poser_tokens_test.cpp - the words of a Poser file, its blocks and its names
#include "platform/files.h"
#include "tests/import/poser_building.h"

#include <string.h>
#include <memory>

using namespace poser;

// The tokens of a text as "word[rest]", one after the other, with '!' where reading fails before the end.
static std::string tokensOf(const std::string& text)
{
    ScratchFile scratch(text);
    FILE* stream = openFile(scratch.path.c_str(), "rb");
    auto source = std::make_unique<PoserSource>();
    startBlocks(&source->blocks, stream);
    std::string found;
    while (NextPoserToken(source.get()))
        found += std::string(source->word) + "[" + source->rest + "]";
    fclose(stream);
    return found;
}

static std::string nameOf(std::string text)
{
    size_t length = PoserName(text.data());
    EXPECT_EQ(length, strlen(text.c_str()));
    return text.c_str();
}

static std::string mapNameOf(std::string text)
{
    return PoserMapName(text.data());
}

TEST_F(PoserReader, TokensAreAWordAndTheRestOfItsLine)
{
    EXPECT_EQ(tokensOf("  prop \t a box \r\n\tv 1 2 3\nend\n"), "prop[a box ]v[1 2 3]end[]");
    EXPECT_EQ(tokensOf("one \t \ntwo\r\n"), "one[]two[]");
    EXPECT_EQ(tokensOf("x\ny z\n"), "x[]y[z]");
}

TEST_F(PoserReader, BracesAreTokensOnlyByThemselves)
{
    EXPECT_EQ(tokensOf("{ a b\n}}{c d{}\ne}\nf } g\n"), "{[]a[b]}[]}[]{[]c[d{}]e}[]f[} g]");
    EXPECT_EQ(tokensOf("}"), "}[]"); // needs no line end
}

TEST_F(PoserReader, CommentsAreSkipped)
{
    EXPECT_EQ(tokensOf("// one two\na b // kept\n  //}\n//\n///\nc//d\n/ e\n"), "a[b // kept]c//d[]/[e]");
    EXPECT_EQ(tokensOf("a b\n// not ended"), "a[b]");
}

TEST_F(PoserReader, AFinalLineWithoutALineEndIsLost)
{
    EXPECT_EQ(tokensOf("a b\nc d"), "a[b]");
    EXPECT_EQ(tokensOf("a b\nc"), "a[b]");
    EXPECT_EQ(tokensOf("a b\nc "), "a[b]");
    EXPECT_EQ(tokensOf(""), "");
    EXPECT_EQ(tokensOf("\n \t\r\n"), "");
}

TEST_F(PoserReader, OverLongWordsAndRestsEndTheReading)
{
    std::string longest(2047, 'w');
    EXPECT_EQ(tokensOf(longest + " " + longest + "\nb c\n"), longest + "[" + longest + "]b[c]");
    EXPECT_EQ(tokensOf(longest + "w c\nb c\n"), "");
    EXPECT_EQ(tokensOf("a " + longest + "w\nb c\n"), "");
    EXPECT_EQ(tokensOf("a" + std::string(100000, ' ') + longest + "\nb c\n"), "a[" + longest + "]b[c]");
}

TEST_F(PoserReader, TokensAcrossBlocksAreWhole)
{
    std::string text, expected;
    for (int i = 0; i < 20000; ++i)
    {
        std::string number = std::to_string(i);
        text += std::string(static_cast<size_t>(i % 4), ' ') + "word" + number + "  rest of " + number + "\r\n";
        expected += "word" + number + "[rest of " + number + "]";
    }
    EXPECT_EQ(tokensOf(text), expected);
}

// The first word after the block in which a text starts, or "open" when the block does not end.
static std::string wordAfterBlock(const std::string& text)
{
    ScratchFile scratch(text);
    FILE* stream = openFile(scratch.path.c_str(), "rb");
    auto source = std::make_unique<PoserSource>();
    startBlocks(&source->blocks, stream);
    std::string word = "open";
    if (SkipPoserBlock(source.get()))
        word = NextPoserToken(source.get()) ? source->word : "";
    fclose(stream);
    return word;
}

TEST_F(PoserReader, BlocksAreSkippedWithTheirNesting)
{
    EXPECT_EQ(wordAfterBlock("} after x\n"), "after");
    EXPECT_EQ(wordAfterBlock("{ { } } { } } after x\n"), "after");
    EXPECT_EQ(wordAfterBlock("a }\n{ b\n} c {\n} after x\n"), "after"); // "a" and "c" take the rest of their lines
    EXPECT_EQ(wordAfterBlock("// }\n}\n"), "");
    EXPECT_EQ(wordAfterBlock("{ } { }\n"), "open");
    EXPECT_EQ(wordAfterBlock(""), "open");
}

TEST_F(PoserReader, NamesEndAtBlanksAndColons)
{
    EXPECT_EQ(nameOf("hip:1"), "hip");
    EXPECT_EQ(nameOf("left hand"), "left");
    EXPECT_EQ(nameOf("left\thand"), "left");
    EXPECT_EQ(nameOf(":x"), "");
    EXPECT_EQ(nameOf(""), "");
    EXPECT_EQ(nameOf(std::string(63, 'n')), std::string(63, 'n'));
    EXPECT_EQ(nameOf(std::string(64, 'n')), std::string(63, 'n')); // room for the terminator
    EXPECT_EQ(nameOf(std::string(2000, 'n')), std::string(63, 'n'));
}

TEST_F(PoserReader, TextureReferencesBecomeFileNames)
{
    EXPECT_EQ(mapNameOf("\":Runtime:Textures:skin.jpg\""), "skin.jpg");
    EXPECT_EQ(mapNameOf("\"C:\\pictures\\my skin.jpg\" \t"), "my skin.jpg");
    EXPECT_EQ(mapNameOf("skin.jpg"), "skin.jpg");
    EXPECT_EQ(mapNameOf("\"skin.jpg"), "skin.jpg");
    EXPECT_EQ(mapNameOf("a/b/skin.jpg"), "a/b/skin.jpg"); // '/' separates nothing
    EXPECT_EQ(mapNameOf("NO_MAP"), "");
    EXPECT_EQ(mapNameOf("\"NO_MAP\" "), "");
    EXPECT_EQ(mapNameOf(":x:NO_MAP"), "");
    EXPECT_EQ(mapNameOf("NO_MAP2"), "NO_MAP2");
    EXPECT_EQ(mapNameOf("no_map"), "no_map");
    EXPECT_EQ(mapNameOf("x:"), "");
    EXPECT_EQ(mapNameOf("\"\""), "");
    EXPECT_EQ(mapNameOf("\""), "");
    EXPECT_EQ(mapNameOf(""), "");
    EXPECT_EQ(mapNameOf(" \t"), "");
}
