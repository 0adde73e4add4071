// tests/import/ply_building.h - making PLY files for the reader's tests, and reading them
#pragma once
#include "import/ply/ply.h"
#include "tests/import/loading.h"

#include <string.h>

namespace ply
{

inline const RecordedBox refusal = { "error reading ply file", "error", iconNone };

class PlyReader : public CleanTest
{
};

// A file's header, with a comment that makes a file of any body long enough. Lines end with `end`.
inline std::string header(const std::string& format, const std::string& lines, const std::string& end = "\n")
{
    std::string text =
        "ply\nformat " + format + " 1.0\ncomment " + std::string(256, '.') + "\n" + lines + "end_header\n";
    std::string ended;
    for (char c : text)
        ended += c == '\n' ? end : std::string(1, c);
    return ended;
}

inline const std::string xyz = "property float x\nproperty float y\nproperty float z\n";
inline const std::string indices = "property list uchar int vertex_indices\n";

inline std::string ascii(const std::string& lines, const std::string& body)
{
    return header("ascii", lines) + body;
}

// Five vertices and these face lines.
inline std::string facesFile(int count, const std::string& faceLines)
{
    return ascii("element vertex 5\n" + xyz + "element face " + std::to_string(count) + "\n" + indices,
                 "0 0 0\n1 0 0\n1 1 0\n0 1 0\n.5 2 0\n" + faceLines);
}

inline std::string facesFrom(int count, const std::string& faceLines)
{
    return facesReadBy(LoadPlyFile, facesFile(count, faceLines));
}

inline void expectRefused(const std::string& bytes)
{
    expectRefusal(LoadPlyFile, bytes, refusal, "LOADING.....");
}

// One line for each vertex of a file: position and colour.
inline std::string verticesFrom(const std::string& bytes)
{
    LoadedMesh loaded(LoadPlyFile, bytes);
    if (!loaded.result)
        return "failed";
    expectSound(loaded.mesh);
    std::string text;
    for (int32_t i = 0; i < loaded->vertexCount; ++i)
    {
        char colour[20];
        snprintf(colour, sizeof colour, " %08X", loaded->vertices[i].colour);
        text.append(i ? "; " : "").append(positionOf(loaded.mesh, i)).append(colour);
    }
    return text;
}

// The bytes of numbers in either byte order.
struct Packer
{
    bool bigEndian;
    std::string bytes;

    template <typename T>
    Packer& put(T value)
    {
        char raw[sizeof value];
        memcpy(raw, &value, sizeof value);
        std::string text(raw, sizeof value);
        bytes += bigEndian ? std::string(text.rbegin(), text.rend()) : text;
        return *this;
    }
    std::string file(const std::string& lines) const
    {
        return header(bigEndian ? "binary_big_endian" : "binary_little_endian", lines) + bytes;
    }
};

// A house: a coloured square with a roof, faces with scalars around the list.
inline std::string binaryHouse(bool bigEndian)
{
    Packer body{ bigEndian, {} };
    for (float p : { 0.0f, 1.0f, 2.0f, 3.0f, 4.0f })
        body.put<int16_t>(-7)
            .put(p)
            .put(p * p)
            .put(-p)
            .put<uint8_t>(10)
            .put<uint8_t>(static_cast<uint8_t>(p))
            .put<uint8_t>(255);
    body.put<uint8_t>(1).put<uint8_t>(4);
    for (int32_t i : { 0, 1, 2, 3 })
        body.put(i);
    body.put(1.5).put<uint8_t>(1).put<uint8_t>(3);
    for (int32_t i : { 3, 2, 4 })
        body.put(i);
    body.put(2.5);
    return body.file("element vertex 5\nproperty short level\n" + xyz +
                     "property uchar red\nproperty uchar green\nproperty uchar blue\n"
                     "element face 2\nproperty uchar tag\n" +
                     indices + "property double weight\n");
}

} // namespace ply
