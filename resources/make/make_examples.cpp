// resources/make/make_examples.cpp - makes the example models
//
//   make_examples FOLDER
//
// chair.obj and chair.mtl: a chair of boxes, with three groups, two materials and their textures. scan.ply: a stone as
// a poor scan gives it, every triangle with vertices of its own, some turned over and some there twice. scene.3ds: a
// table with things on it, with the names in capitals that old programs write.
#include "noise.h"
#include "output.h"

#include <math.h>
#include <stdio.h>
#include <array>
#include <vector>

struct Place
{
    double x, y, z;
};

using Corners = std::array<uint32_t, 3>;

struct Box
{
    Place from, to;
};

// The corners of a box: bit 0 of the index is x, bit 1 y, bit 2 z.
static Place cornerOf(const Box& box, unsigned index)
{
    return { index & 1 ? box.to.x : box.from.x, index & 2 ? box.to.y : box.from.y, index & 4 ? box.to.z : box.from.z };
}

// The sides of a box, counterclockwise from outside.
static constexpr unsigned sides[6][4] = { { 4, 5, 7, 6 }, { 1, 0, 2, 3 }, { 5, 1, 3, 7 },
                                          { 0, 4, 6, 2 }, { 6, 7, 3, 2 }, { 0, 1, 5, 4 } };

template <typename... Values>
static void print(std::string* text, const char* format, Values... values)
{
    char line[256];
    snprintf(line, sizeof line, format, values...);
    *text += line;
}

// ---- the chair ----

struct Part
{
    const char* group;
    const char* material;
    std::vector<Box> boxes;
};

static const std::vector<Part>& chairParts()
{
    static const std::vector<Part> parts = {
        { "seat", "wood", { { { -0.45, 0.90, -0.45 }, { 0.45, 1.00, 0.45 } } } },
        { "back",
          "wood",
          { { { -0.44, 1.00, -0.44 }, { -0.37, 2.00, -0.37 } },
            { { 0.37, 1.00, -0.44 }, { 0.44, 2.00, -0.37 } },
            { { -0.37, 1.75, -0.44 }, { 0.37, 1.95, -0.38 } },
            { { -0.37, 1.35, -0.44 }, { 0.37, 1.50, -0.38 } } } },
        { "legs",
          "metal",
          { { { -0.43, 0.00, -0.43 }, { -0.37, 0.90, -0.37 } },
            { { 0.37, 0.00, -0.43 }, { 0.43, 0.90, -0.37 } },
            { { -0.43, 0.00, 0.37 }, { -0.37, 0.90, 0.43 } },
            { { 0.37, 0.00, 0.37 }, { 0.43, 0.90, 0.43 } } } },
    };
    return parts;
}

static void putBoxObj(std::string* text, const Box& box, int number)
{
    for (unsigned i = 0; i < 8; ++i)
    {
        Place at = cornerOf(box, i);
        print(text, "v %g %g %g\n", at.x, at.y, at.z);
    }
    for (const auto& side : sides)
    {
        *text += "f";
        for (int k = 0; k < 4; ++k)
            print(text, " %u/%d", 8 * static_cast<unsigned>(number) + side[k] + 1, k + 1);
        *text += "\n";
    }
}

static std::string chairObj()
{
    std::string text = "# a chair\nmtllib chair.mtl\nvt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\n";
    int number = 0;
    for (const Part& part : chairParts())
    {
        print(&text, "g %s\nusemtl %s\n", part.group, part.material);
        for (const Box& box : part.boxes)
            putBoxObj(&text, box, number++);
    }
    return text;
}

static std::string chairMtl()
{
    return "newmtl wood\nKa 0.2 0.2 0.2\nKd 0.9 0.9 0.9\nKs 0.1 0.1 0.1\nNs 10\nmap_Kd wood.jpg\n"
           "newmtl metal\nKa 0.2 0.2 0.2\nKd 0.8 0.8 0.85\nKs 0.6 0.6 0.6\nNs 60\nmap_Kd metal.jpg\n";
}

// ---- the scan ----

static Place middleOf(const Place& a, const Place& b)
{
    return { (a.x + b.x) / 2, (a.y + b.y) / 2, (a.z + b.z) / 2 };
}

// The triangles of an octahedron, each cut into four again and again.
static std::vector<std::array<Place, 3>> ball(int times)
{
    const Place tips[6] = { { 1, 0, 0 }, { -1, 0, 0 }, { 0, 1, 0 }, { 0, -1, 0 }, { 0, 0, 1 }, { 0, 0, -1 } };
    const int cut[8][3] = { { 0, 2, 4 }, { 2, 1, 4 }, { 1, 3, 4 }, { 3, 0, 4 },
                            { 2, 0, 5 }, { 1, 2, 5 }, { 3, 1, 5 }, { 0, 3, 5 } };
    std::vector<std::array<Place, 3>> all;
    for (const auto& side : cut)
        all.push_back({ tips[side[0]], tips[side[1]], tips[side[2]] });
    for (int i = 0; i < times; ++i)
    {
        std::vector<std::array<Place, 3>> finer;
        for (const auto& [a, b, c] : all)
        {
            Place ab = middleOf(a, b), bc = middleOf(b, c), ca = middleOf(c, a);
            finer.insert(finer.end(), { { a, ab, ca }, { ab, b, bc }, { ca, bc, c }, { ab, bc, ca } });
        }
        all = finer;
    }
    return all;
}

// The place on the stone above a point of the octahedron, rounded so that equal places have equal texts.
static Place onStone(const Place& at)
{
    double length = sqrt(at.x * at.x + at.y * at.y + at.z * at.z);
    Place unit = { at.x / length, at.y / length, at.z / length };
    double bumps = 0.10 * noise(unit.x * 0.5 + 0.5, unit.y * 0.5 + 0.5, 3, 3, 5) +
                   0.10 * noise(unit.z * 0.5 + 0.5, unit.x * 0.5 + 0.5, 4, 4, 6);
    double radius = 1 + bumps;
    return { round(1e4 * 1.3 * radius * unit.x) / 1e4, round(1e4 * 0.8 * radius * unit.y) / 1e4,
             round(1e4 * radius * unit.z) / 1e4 };
}

static std::string scanPly()
{
    std::string vertices, faces;
    uint32_t vertexCount = 0, faceCount = 0, number = 0;
    for (const auto& triangle : ball(4))
    {
        for (const Place& at : triangle)
        {
            Place place = onStone(at);
            print(&vertices, "%.4f %.4f %.4f\n", place.x, place.y, place.z);
        }
        Corners corners = { vertexCount, vertexCount + 1, vertexCount + 2 };
        vertexCount += 3;
        if (number % 7 == 3)
            std::swap(corners[1], corners[2]);
        for (int copies = number % 50 == 11 ? 2 : 1; copies > 0; --copies, ++faceCount)
            print(&faces, "3 %u %u %u\n", corners[0], corners[1], corners[2]);
        ++number;
    }
    std::string text = "ply\nformat ascii 1.0\ncomment a stone\n";
    print(&text, "element vertex %u\nproperty float x\nproperty float y\nproperty float z\n", vertexCount);
    print(&text, "element face %u\nproperty list uchar int vertex_indices\nend_header\n", faceCount);
    return text + vertices + faces;
}

// ---- the scene ----

static std::string chunk(uint32_t id, const std::string& contents)
{
    std::string bytes;
    putHalf(&bytes, id);
    putWord(&bytes, static_cast<uint32_t>(contents.size() + 6));
    return bytes + contents;
}

static std::string named(const char* name)
{
    return std::string(name) + '\0';
}

static std::string colourChunk(uint32_t id, const Colour& colour)
{
    std::string bytes;
    for (double part : { colour.r, colour.g, colour.b })
        bytes += static_cast<char>(static_cast<int>(part * 255));
    return chunk(id, chunk(0x0011, bytes));
}

static std::string materialChunk(const char* name, const Colour& colour, const char* texture)
{
    std::string contents = chunk(0xA000, named(name)) + colourChunk(0xA010, scaled(colour, 0.3)) +
                           colourChunk(0xA020, colour) + colourChunk(0xA030, { 0.2, 0.2, 0.2 });
    if (texture)
        contents += chunk(0xA200, chunk(0xA300, named(texture)));
    return chunk(0xAFFF, contents);
}

static std::string facesChunk(const std::vector<Corners>& faces, const char* material)
{
    std::string bytes, group = named(material);
    putHalf(&bytes, static_cast<uint32_t>(faces.size()));
    putHalf(&group, static_cast<uint32_t>(faces.size()));
    for (uint32_t f = 0; f < faces.size(); ++f)
    {
        for (uint32_t corner : faces[f])
            putHalf(&bytes, corner);
        putHalf(&bytes, 7); // all edges are seen
        putHalf(&group, f);
    }
    return chunk(0x4120, bytes + chunk(0x4130, group));
}

static std::string objectChunk(const char* name, const std::vector<Place>& places, const std::vector<Corners>& faces,
                               const char* material)
{
    std::string vertices, uvs;
    putHalf(&vertices, static_cast<uint32_t>(places.size()));
    putHalf(&uvs, static_cast<uint32_t>(places.size()));
    for (const Place& at : places)
    {
        for (double value : { at.x, -at.z, at.y }) // z is up in these files
            putFloat(&vertices, static_cast<float>(value));
        for (double value : { at.x, at.z })
            putFloat(&uvs, static_cast<float>(value));
    }
    return chunk(0x4000, named(name) +
                             chunk(0x4100, chunk(0x4110, vertices) + chunk(0x4140, uvs) + facesChunk(faces, material)));
}

static std::string boxChunk(const char* name, const Box& box, const char* material)
{
    std::vector<Place> places;
    std::vector<Corners> faces;
    for (unsigned i = 0; i < 8; ++i)
        places.push_back(cornerOf(box, i));
    for (const auto& side : sides)
    {
        faces.push_back({ side[0], side[1], side[2] });
        faces.push_back({ side[0], side[2], side[3] });
    }
    return objectChunk(name, places, faces, material);
}

static std::string pyramidChunk(const char* name, double x, double z, double bottom, const char* material)
{
    std::vector<Place> places = { { x - 0.2, bottom, z - 0.2 },
                                  { x + 0.2, bottom, z - 0.2 },
                                  { x + 0.2, bottom, z + 0.2 },
                                  { x - 0.2, bottom, z + 0.2 },
                                  { x, bottom + 0.4, z } };
    return objectChunk(name, places, { { 1, 0, 4 }, { 2, 1, 4 }, { 3, 2, 4 }, { 0, 3, 4 }, { 0, 1, 2 }, { 0, 2, 3 } },
                       material);
}

static std::string scene3ds()
{
    std::string version;
    putWord(&version, 3);
    std::string contents = chunk(0x3D3E, version);
    contents +=
        materialChunk("WOOD", { 0.9, 0.9, 0.9 }, "WOOD.JPG") + materialChunk("RED", { 0.8, 0.15, 0.1 }, nullptr);
    contents += boxChunk("TOP", { { -0.9, 0.95, -0.6 }, { 0.9, 1.05, 0.6 } }, "WOOD");
    contents += boxChunk("LEG1", { { -0.85, 0, -0.55 }, { -0.75, 0.95, -0.45 } }, "WOOD");
    contents += boxChunk("LEG2", { { 0.75, 0, -0.55 }, { 0.85, 0.95, -0.45 } }, "WOOD");
    contents += boxChunk("LEG3", { { -0.85, 0, 0.45 }, { -0.75, 0.95, 0.55 } }, "WOOD");
    contents += boxChunk("LEG4", { { 0.75, 0, 0.45 }, { 0.85, 0.95, 0.55 } }, "WOOD");
    contents += boxChunk("BOX", { { -0.6, 1.05, -0.2 }, { -0.2, 1.3, 0.2 } }, "RED");
    contents += pyramidChunk("PYRAMID", 0.4, 0, 1.05, "RED");
    return chunk(0x4D4D, chunk(0x0002, version) + chunk(0x3D3D, contents));
}

int main(int count, char** arguments)
{
    if (count != 2)
    {
        fprintf(stderr, "usage: make_examples FOLDER\n");
        return 2;
    }
    const char* folder = arguments[1];
    bool ok = writeFile(folder, "chair.obj", chairObj()) && writeFile(folder, "chair.mtl", chairMtl()) &&
              writeFile(folder, "scan.ply", scanPly()) && writeFile(folder, "scene.3ds", scene3ds());
    return ok ? 0 : 1;
}
