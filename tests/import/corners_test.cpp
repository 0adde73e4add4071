// tests/import/corners_test.cpp - corner lists, fans and chains, names
#include "import/common/corners.h"
#include "import/common/names.h"
#include "import/common/numbers.h"
#include "model/seeded_hash.h"
#include "tests/recording/recording.h"
#include "tests/import/random.h"
#include "tests/import/runs.h"

#include <gtest/gtest.h>
#include <stdio.h>
#include <string.h>
#include <string>
#include <vector>

static void appendCorner(std::string* list, int32_t vertex, int32_t uv)
{
    if (!list->empty() && list->back() != '\n')
        list->append(" ");
    list->append(std::to_string(vertex)).append("/").append(std::to_string(uv));
}

// "1/2 3/1" for the corners kept, "" for a rejected statement.
static std::string cornersOf(const std::string& text, int32_t vertexCount, int32_t uvCount)
{
    int32_t vertices[cornerLimit], uvs[cornerLimit];
    int kept = ParseFaceCorners(text.c_str(), vertexCount, uvCount, vertices, uvs);
    std::string list;
    for (int k = 0; k < kept; ++k)
        appendCorner(&list, vertices[k], uvs[k]);

    std::string padded = text + std::string(1 + numberPaddingRoom, '\0');
    int32_t fastVertices[cornerLimit], fastUvs[cornerLimit];
    CornerFindings findings;
    EXPECT_EQ(parseFaceCornersPadded(padded.c_str(), vertexCount, uvCount, fastVertices, fastUvs, &findings), kept)
        << text;
    for (int k = 0; k < kept; ++k)
    {
        EXPECT_EQ(fastVertices[k], vertices[k]) << text;
        EXPECT_EQ(fastUvs[k], uvs[k]) << text;
    }
    if (kept)
    {
        EXPECT_EQ(*findings.end, 0) << text;
    }
    return list;
}

TEST(Corners, AllFourWaysToWriteOne)
{
    EXPECT_EQ(cornersOf("7", 9, 9), "7/1"); // no texture index counts as 0, which names none
    EXPECT_EQ(cornersOf("7/3", 9, 9), "7/3");
    EXPECT_EQ(cornersOf("7/3/5", 9, 9), "7/3");
    EXPECT_EQ(cornersOf("7//5", 9, 9), "7/5"); // the normal's index serves
    EXPECT_EQ(cornersOf("/7", 9, 9), "7/1");
    EXPECT_EQ(cornersOf("//7//8", 9, 9), "7/8");
    EXPECT_EQ(cornersOf("7/", 9, 9), "7/1");
}

TEST(Corners, OnlyBlanksSeparateCorners)
{
    EXPECT_EQ(cornersOf("  1/1   2/2 3/3  ", 9, 9), "1/1 2/2 3/3");
    EXPECT_EQ(cornersOf("1\t2\t3 4", 9, 9), "1/2 4/1");
}

TEST(Corners, WhatIsNoNumberRejectsTheStatement)
{
    for (const char* text : { "", " ", "x", "1 2 x", "1 2 3x", "1 2 3.5", "1/x", "1/- 2 3", "7-", "-", "+", "/", "//",
                              "0x1", "1e1", "1 2 - 3", "1/+ 2" })
        EXPECT_EQ(cornersOf(text, 9, 9), "") << text;
    EXPECT_EQ(cornersOf("1/2x 2/2/x 3/1.5", 9, 9), "1/2 2/2 3/1"); // the rest after the second number is ignored
}

TEST(Corners, NegativeIndicesCountBack)
{
    EXPECT_EQ(cornersOf("-3 -2 -1", 10, 0), "8/1 9/1 10/1");
    EXPECT_EQ(cornersOf("-1/-1 -2/-2", 10, 5), "10/5 9/4");
    EXPECT_EQ(cornersOf("-11", 10, 0), "");
    EXPECT_EQ(cornersOf("1/-6", 10, 5), "1/1");
    EXPECT_EQ(cornersOf("-2147483648", 10, 0), "");
    EXPECT_EQ(cornersOf("1/-2147483648", 10, 5), "1/1");
}

TEST(Corners, VertexIndicesMustBeRead)
{
    EXPECT_EQ(cornersOf("1 2 3", 3, 0), "1/1 2/1 3/1");
    EXPECT_EQ(cornersOf("1 2 4", 3, 0), "");
    EXPECT_EQ(cornersOf("0 1 2", 3, 0), "");
    EXPECT_EQ(cornersOf("1", 0, 0), "");
}

TEST(Corners, TextureIndicesThatNameNoneBecomeOne)
{
    EXPECT_EQ(cornersOf("1/6 2/5 3/0", 3, 5), "1/1 2/5 3/1");
    EXPECT_EQ(cornersOf("1/9", 3, 0), "1/1");
}

TEST(Corners, NumbersPastTheirRangeWrapAsScanfWrapsThem)
{
    EXPECT_EQ(cornersOf("4294967297", 3, 0), "1/1");
    EXPECT_EQ(cornersOf("99999999999999999999", 3, 0), "3/1"); // the largest 64-bit number, cut to 32 bits: -1
}

TEST(Corners, RepeatedVerticesGoButTextureIndicesStay)
{
    EXPECT_EQ(cornersOf("1/1 2/2 2/3 3/4", 9, 9), "1/1 2/2 3/3");
    EXPECT_EQ(cornersOf("1/1 1/2 1/3", 9, 9), "1/1");
    EXPECT_EQ(cornersOf("1/5 2/6 3/7 1/8 4/9", 9, 9), "1/5 2/6 3/7 4/8");
}

TEST(Corners, ThirtyTwoAreTheMost)
{
    std::string text;
    for (int k = 1; k <= 32; ++k)
        text += std::to_string(k) + " ";
    EXPECT_NE(cornersOf(text, 40, 0), "");
    EXPECT_EQ(cornersOf(text + "33", 40, 0), "");
    EXPECT_EQ(cornersOf(text + "1", 40, 0), ""); // repeated corners count too
}

// Follows the rules literally: the corner's bytes with blanks for '/', " 0" appended, two numbers by sscanf.
static std::string literalCorners(const std::string& text, int32_t vertexCount, int32_t uvCount)
{
    std::vector<int32_t> vertices, uvs;
    size_t at = 0;
    for (;;)
    {
        while (at < text.size() && text[at] == ' ')
            ++at;
        if (at == text.size())
            break;
        std::string scratch;
        for (; at < text.size() && text[at] != ' '; ++at)
            scratch += text[at] == '/' ? ' ' : text[at];
        scratch += " 0";
        int v, t;
        if (vertices.size() == 32 || sscanf(scratch.c_str(), "%d %d", &v, &t) < 2)
            return "";
        int64_t vertex = v < 0 ? int64_t{ v } + vertexCount + 1 : v;
        if (vertex < 1 || vertex > vertexCount)
            return "";
        int64_t uv = t > uvCount ? 1 : t;
        uv = uv < 0 ? uvCount + uv + 1 : uv;
        vertices.push_back(static_cast<int32_t>(vertex));
        uvs.push_back(static_cast<int32_t>(uv <= 0 ? 1 : uv));
    }
    for (size_t k = 0; k < vertices.size(); ++k)
    {
        for (size_t later = k + 1; later < vertices.size();)
            if (vertices[later] == vertices[k])
                vertices.erase(vertices.begin() + static_cast<long>(later));
            else
                ++later;
    }
    std::string list;
    for (size_t k = 0; k < vertices.size(); ++k)
        appendCorner(&list, vertices[k], uvs[k]);
    return list;
}

TEST(Corners, RandomTextsGiveWhatTheRulesGiveWordForWord)
{
    Random random(1);
    const char alphabet[] = "0123456789123451234567      ////--+\t\vx.";
    for (int i = 0; i < 200000; ++i)
    {
        std::string text;
        for (unsigned length = random() % 20; length > 0; --length)
            text += alphabet[random() % (sizeof alphabet - 1)];
        int32_t vertexCount = static_cast<int32_t>(random() % 30), uvCount = static_cast<int32_t>(random() % 10);
        ASSERT_EQ(cornersOf(text, vertexCount, uvCount), literalCorners(text, vertexCount, uvCount)) << text;
    }
}

static Mesh* meshWithFaces(int32_t capacity)
{
    Mesh* mesh = createMesh("test");
    EXPECT_TRUE(growFaces(mesh, capacity));
    return mesh;
}

static std::string recordsOf(const Mesh* mesh, int32_t records)
{
    std::string list;
    for (int32_t f = 0; f < records; ++f)
    {
        for (size_t k = 0; k < 4; ++k)
            appendCorner(&list, static_cast<int32_t>(mesh->faces[f][k]), static_cast<int32_t>(mesh->faceUvs[f][k]));
        char word[16];
        snprintf(word, sizeof word, " %x\n", mesh->faceAttributes[f]);
        list += word;
    }
    return list;
}

static const int32_t ten[] = { 1, 2, 3, 4, 5, 6, 7, 8, 9, 10 };

TEST(FaceRecords, PolygonsOfFiveAndMoreAreFans)
{
    Mesh* mesh = meshWithFaces(20);
    CornerList corners = { ten, ten, 6, -1, -1 };
    EXPECT_EQ(storePolygon(mesh, 0, corners, 5), 4);
    EXPECT_EQ(recordsOf(mesh, 4), "0/0 1/1 2/2 -1/0 5\n0/0 2/2 3/3 -1/0 5\n0/0 3/3 4/4 -1/0 5\n0/0 4/4 5/5 -1/0 5\n");
    corners.count = 4;
    EXPECT_EQ(storePolygon(mesh, 0, corners, 7), 1);
    EXPECT_EQ(recordsOf(mesh, 1), "0/0 1/1 2/2 3/3 7\n");
    corners.count = 3;
    EXPECT_EQ(storePolygon(mesh, 0, corners, 7), 1);
    EXPECT_EQ(recordsOf(mesh, 1), "0/0 1/1 2/2 -1/0 7\n");
    CornerList block = { ten, nullptr, 3, 99, 0 };
    EXPECT_EQ(storePolygon(mesh, 0, block, 0), 1);
    EXPECT_EQ(recordsOf(mesh, 1), "100/0 101/0 102/0 -1/0 0\n");
    freeMesh(mesh);
}

TEST(FaceRecords, PolylinesAreChains)
{
    Mesh* mesh = meshWithFaces(20);
    const char* wanted[] = { "0/0 1/1 -1/0 -1/0 20080003\n",
                             "0/0 1/1 2/2 -1/0 200c0003\n",
                             "0/0 1/1 2/2 3/3 20100003\n",
                             "0/0 1/1 2/2 3/3 20140003\n3/3 4/4 -1/0 -1/0 20000003\n",
                             "0/0 1/1 2/2 3/3 20180003\n3/3 4/4 5/5 -1/0 20000003\n",
                             "0/0 1/1 2/2 3/3 201c0003\n3/3 4/4 5/5 6/6 20000003\n",
                             "0/0 1/1 2/2 3/3 20200003\n3/3 4/4 5/5 6/6 20000003\n6/6 7/7 -1/0 -1/0 20000003\n" };
    for (int32_t points = 2; points <= 8; ++points)
    {
        CornerList corners = { ten, ten, points, -1, -1 };
        int32_t records = storePolyline(mesh, 0, corners, 3);
        EXPECT_EQ(records, polylineRecords(points));
        EXPECT_EQ(recordsOf(mesh, records), wanted[points - 2]) << points;
    }
    freeMesh(mesh);
}

// The places of a full table of names that all hash to one place under FNV-1a, which has no seed.
static std::vector<bool> placesAfterAFlood(uint64_t seed)
{
    static char slots[nameLimit][nameRoom];
    setHashSeed(seed);
    NameTable table;
    startNames(&table, slots);
    for (int number = 0; table.count < nameLimit; ++number)
    {
        std::string name = "name" + std::to_string(number);
        uint32_t hash = 2166136261u;
        for (char c : name)
            hash = (hash ^ static_cast<uint8_t>(c)) * 16777619u;
        bool colliding = ((hash ^ hash >> 16) & (2 * nameLimit - 1)) == 0;
        EXPECT_TRUE(!colliding || findOrAddName(&table, name.c_str()) >= 0);
    }
    return std::vector<bool>(table.places, table.places + 2 * nameLimit);
}

TEST(Names, NoFileCanForeseeWhereANameGoes)
{
    std::vector<bool> places = placesAfterAFlood(1);
    EXPECT_LE(longestRun(places), places.size() / 8);
    EXPECT_EQ(placesAfterAFlood(1), places);
    EXPECT_NE(placesAfterAFlood(2), places);
}

TEST(Names, FoundExactlyOrAddedOrRefusedWhenFull)
{
    static char slots[nameLimit][nameRoom];
    memset(slots, 'z', sizeof slots);
    NameTable table;
    startNames(&table, slots);
    EXPECT_EQ(findName(&table, "a"), -1);
    EXPECT_EQ(findOrAddName(&table, "a"), 0);
    EXPECT_EQ(findOrAddName(&table, "A"), 1);
    EXPECT_EQ(findOrAddName(&table, "a b \r\n"), 2);
    EXPECT_STREQ(slots[2], "a b ");
    EXPECT_EQ(findOrAddName(&table, "a"), 0);
    std::string longName(100, 'x');
    EXPECT_EQ(findOrAddName(&table, longName.c_str()), 3);
    EXPECT_STREQ(slots[3], longName.substr(0, 63).c_str());
    EXPECT_EQ(findOrAddName(&table, longName.substr(0, 63).c_str()), 3);
    EXPECT_EQ(findName(&table, longName.c_str()), -1);
    for (int i = 4; i < nameLimit; ++i)
        EXPECT_EQ(findOrAddName(&table, std::to_string(i).c_str()), i);
    EXPECT_EQ(findOrAddName(&table, "one more"), -1);
    EXPECT_EQ(findOrAddName(&table, "511"), 511);
    EXPECT_EQ(table.count, 512);
}
