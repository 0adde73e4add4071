// tests/import/threeds_building.h - making 3DS files from chunks for the reader's tests, and reading them
#pragma once
#include "import/threeds/threeds.h"
#include "import/threeds/parts.h"
#include "tests/import/loading.h"

#include <math.h>
#include <string.h>

namespace threeds
{

inline const RecordedBox refusal = { "Unable to read file", "Error", iconNone };

class ThreeDsReader : public CleanTest
{
};

inline int loadWithoutKeyframes(Mesh* mesh, const char* path)
{
    return Load3dsFile(mesh, path, false);
}

// Building files

template <typename... T>
inline std::string bytesOf(T... values)
{
    std::string bytes;
    (bytes.append(reinterpret_cast<const char*>(&values), sizeof values), ...);
    return bytes;
}

inline std::string u16(int value)
{
    return bytesOf(static_cast<uint16_t>(value));
}

inline std::string chunkOfLength(int id, size_t length, const std::string& data)
{
    return bytesOf(static_cast<uint16_t>(id), static_cast<uint32_t>(length)) + data;
}

inline std::string chunk(int id, const std::string& data)
{
    return chunkOfLength(id, 6 + data.size(), data);
}

inline std::string text(const std::string& name)
{
    return name + std::string(1, '\0');
}

inline std::string vertices(const std::vector<float>& numbers)
{
    std::string data = u16(static_cast<int>(numbers.size() / 3));
    for (float value : numbers)
        data += bytesOf(value);
    return chunk(chunkVertices, data);
}

inline std::string mapping(const std::vector<float>& numbers)
{
    std::string data = u16(static_cast<int>(numbers.size() / 2));
    for (float value : numbers)
        data += bytesOf(value);
    return chunk(chunkMappingCoords, data);
}

inline std::string faces(const std::vector<int>& corners, const std::string& children = "")
{
    std::string data = u16(static_cast<int>(corners.size() / 3));
    for (size_t i = 0; i < corners.size(); i += 3)
        data += u16(corners[i]) + u16(corners[i + 1]) + u16(corners[i + 2]) + u16(0xFFFF);
    return chunk(chunkFaces, data + children);
}

inline std::string faceMaterial(const std::string& name, const std::vector<int>& numbers)
{
    std::string data = text(name) + u16(static_cast<int>(numbers.size()));
    for (int number : numbers)
        data += u16(number);
    return chunk(chunkFaceMaterial, data);
}

inline std::string object(const std::string& name, const std::string& trimeshChildren)
{
    return chunk(chunkObject, text(name) + chunk(chunkTrimesh, trimeshChildren));
}

inline std::string colour24(int r, int g, int b)
{
    return chunk(chunkColour24, bytesOf(static_cast<uint8_t>(r), static_cast<uint8_t>(g), static_cast<uint8_t>(b)));
}

inline std::string percent(int value)
{
    return chunk(chunkPercentageInt, u16(value));
}

inline std::string material(const std::string& name, const std::string& children)
{
    return chunk(chunkMaterial, chunk(chunkMaterialName, text(name)) + children);
}

inline std::string matrixChunk(const std::vector<float>& numbers)
{
    std::string data;
    for (float value : numbers)
        data += bytesOf(value);
    return chunk(chunkMatrix, data);
}

inline std::string node(const std::string& name, float x, float y, float z)
{
    return chunk(chunkObjectNode, chunk(0xB030, u16(1)) +
                                      chunk(chunkNodeHeader, text(name) + u16(1) + u16(2) + u16(0xFFFF)) +
                                      chunk(chunkPivot, bytesOf(x, y, z)));
}

inline std::string editor(const std::string& children)
{
    return chunk(chunkEditor, chunk(0x3D3E, bytesOf(uint32_t{ 3 })) + children);
}

inline std::string file(const std::string& editorChildren, const std::string& keyframer = "")
{
    return chunk(chunkMain, chunk(0x0002, bytesOf(uint32_t{ 3 })) + editor(editorChildren) +
                                (keyframer.empty() ? "" : chunk(chunkKeyframer, chunk(0xB00A, u16(0)) + keyframer)));
}

inline const std::string square = vertices({ 0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0 });

// A file with everything that the reader uses.
inline std::string wholeFile()
{
    return file(
        material("red paint", chunk(chunkAmbient, colour24(51, 0, 0)) +
                                  chunk(chunkDiffuse, chunk(chunkColourFloat, bytesOf(1.0f, 0.5f, 0.0f))) +
                                  chunk(chunkSpecular, colour24(255, 255, 255)) + chunk(chunkShininess, percent(30)) +
                                  chunk(chunkShininessStrength, percent(70)) + chunk(chunkTransparency, percent(25)) +
                                  chunk(chunkShading, u16(3)) +
                                  chunk(chunkTextureMap, percent(100) + chunk(chunkMapName, text("WOOD.JPG")))) +
            object("box", square + mapping({ 0, 0, 1, 0, 1, 1, 0, 1 }) +
                              matrixChunk({ 1, 0, 0, 0, 1, 0, 0, 0, 1, 5, 6, 7 }) +
                              faces({ 0, 1, 2, 0, 2, 3 }, faceMaterial("red paint", { 1 }))) +
            object("flat", vertices({ 0, 0, 1, 1, 0, 1, 0, 1, 1 }) + faces({ 0, 1, 2 })),
        node("box", 0, 0, 0) + node("flat", 0, 0, 3));
}

inline std::string facesFrom(const std::string& bytes)
{
    return facesReadBy(Load3dsFile, bytes);
}

inline void expectRefused(const std::string& bytes)
{
    expectRefusal(Load3dsFile, bytes, refusal, "LOADING 3DS.....");
}

// The vertex as the file has it, before the turn about the x axis.
inline std::string positionInFile(const Mesh* mesh, int32_t vertex)
{
    const float* p = mesh->vertices[vertex].position;
    const double c = cos(1.57075), s = sin(1.57075);
    auto rounded = [](double value) { return round(value * 1000) / 1000 + 0.0; };
    char out[100];
    snprintf(out, sizeof out, "%g %g %g", rounded(static_cast<double>(p[0])),
             rounded(c * static_cast<double>(p[1]) - s * static_cast<double>(p[2])),
             rounded(s * static_cast<double>(p[1]) + c * static_cast<double>(p[2])));
    return out;
}

} // namespace threeds
