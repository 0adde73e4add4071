// tests/import/poser_building.h - making Poser files for the reader's tests
#pragma once
#include "import/text/poser.h"
#include "tests/import/loading.h"

namespace poser
{

class PoserReader : public CleanTest
{
};

inline const std::string squareVertices = "numbVerts 4\nnumbTVerts 4\nnumbElems 2\nv 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\n"
                                          "vt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\n";

inline const std::string squareFace = "f 1/1 2/2 3/3 4/4\n";

inline std::string geometry(const std::string& lines)
{
    return "geomCustom\n{\n" + lines + "}\n";
}

inline std::string object(const std::string& head, const std::string& body)
{
    return head + "\n{\n" + body + "}\n";
}

inline std::string file(const std::string& objects)
{
    return "{\nversion\n{\nnumber 4.01\n}\n" + objects + "}\n";
}

inline std::string propOf(const std::string& lines)
{
    return file(object("prop box", geometry(lines)));
}

inline void expectFailure(const std::string& bytes, const char* text)
{
    resetRecording();
    LoadedMesh loaded(LoadPoserFile, bytes);
    EXPECT_EQ(loaded.result, 0) << bytes;
    ASSERT_EQ(recorded.boxes.size(), 1u) << bytes;
    EXPECT_EQ(recorded.boxes[0], (RecordedBox{ text, "Error", iconNone })) << bytes;
    EXPECT_TRUE(recorded.progress.empty());
    EXPECT_LT(recorded.peakBytes, 2u << 20);
}

inline void expectUnreadable(const std::string& bytes)
{
    expectFailure(bytes, "Unable to read file");
}

} // namespace poser
