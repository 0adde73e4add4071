// tests/samples.cpp - the bytes of the small files
#include "tests/samples.h"

#include "import/threeds/parts.h"

template <typename... T>
static std::string bytesOf(T... values)
{
    std::string bytes;
    (bytes.append(reinterpret_cast<const char*>(&values), sizeof values), ...);
    return bytes;
}

static std::string swapped(float value)
{
    std::string bytes = bytesOf(value);
    return { bytes.rbegin(), bytes.rend() };
}

// ----- text

Samples objSamples()
{
    return {
        "mtllib a.mtl\nv 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nvt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\nvn 0 0 1\n"
        "g left arm\nusemtl red\nf 1/1/1 2/2/1 3/3/1 4/4/1\nusemtl blue\nf -4//-1 -3//-1 -2//-1\nl 1 2 3\n",
        "# a comment\r\nv 1e3 -2.5E-2 .5\r\nv 0x1p3 nan inf\r\nv 1 2 3 0.5 0.5 0.5\r\nv 9 9 9\r\nv 7 1 2\r\n"
        "o thing\r\ns off\r\nf 1 2 3 4 5\r\nf 1/ 2/ \\\r\n3/\r\nl 1/1 2/2 3 4 5 1 2\r\np 1\r\n",
        "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nv 0 0 1\nv 1 0 1\nv 1 1 1\nv 0 1 1\n"
        "f 1 4 3 2\nf 5 6 7 8\nf 1 2 6 5\nf 2 3 7 6\nf 3 4 8 7\nf 4 1 5 8\n",
    };
}

Samples mtlSamples()
{
    return {
        "newmtl red\nNs 30\nKa 0.1 0 0\nKd 1 0.5 0\nKs 1 1 1\nd 0.75\nmap_Kd wood.jpg\nmap_d holes.jpg\n"
        "newmtl a b\nKd 0 0 1\nTr 0.5\nillum 2\n",
        "# nothing\r\n\r\nnewmtl blue\r\n\tKd 1e9 nan -1\r\n  Ns -1000000\r\nnewmtl new\r\nd 2\r\n",
    };
}

Samples offSamples()
{
    return {
        "OFF\n4 3 0\n0 0 0\n1 0 0\n1 1 0\n0 1 0\n4 0 1 2 3\n3 0 1 2 255 0 0\n2 0 1\n",
        "# first\nOFF\n\n5 2 7\n0 0 0 # a point\n1e5 0 0\n1 -1.5 0\n0 1 0\n.5 .5 1\n5 0 1 2 3 4\n3 4 3 9\n",
    };
}

static std::string dxfFace(const char* layer, const float (&corners)[4][3])
{
    std::string text = "  0\n3DFACE\n  8\n" + std::string(layer) + "\n 62\n5\n";
    for (int k = 0; k < 4; ++k)
        for (int axis = 0; axis < 3; ++axis)
            text += " " + std::to_string(10 * (axis + 1) + k) + "\n" + std::to_string(corners[k][axis]) + "\n";
    return text;
}

Samples dxfSamples()
{
    std::string quad = dxfFace("wing", { { 0, 0, 0 }, { 1, 0, 0 }, { 1, 1, 0 }, { 0, 1, 0 } });
    std::string triangle = dxfFace("tail", { { 1, 0, 0 }, { 2, 0, 0.5f }, { 1, 1, 0 }, { 1, 1, 0 } });
    std::string start = "999\ncomment\n  0\nSECTION\n  2\nENTITIES\n", end = "  0\nENDSEC\n  0\nEOF\n";
    return { start + quad + triangle + end, start + triangle + "  0\nLINE\n  8\nwing\n 10\n1.0\n" + quad + end };
}

Samples poserSamples()
{
    std::string geometry = "geomCustom\n{\nnumbVerts 4\nnumbTVerts 4\nnumbElems 2\nv 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\n"
                           "vt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\ng part\nusemtl red\nf 1/1 2/2 3/3 4/4\nf 1/1 2/2 3/3\n}\n";
    std::string material = "material red\n{\nKdColor 1 0 0 1\nKaColor 0 0 0 1\nKsColor 1 1 1 1\nNsExponent 30\n"
                           "tMin 0\ntMax 0.5\ntextureMap \":Runtime:wood.jpg\" 0 0\ntransparencyMap NO_MAP\n}\n";
    std::string head = "{\nversion\n{\nnumber 4.01\n}\n";
    return { head + "prop box:1\n{\n" + geometry + material + "}\n}\n",
             head + "actor hip:1\n{\n" + geometry + "}\nactor chest:1\n{\nname chest\n" + geometry + "}\nfigure\n{\n" +
                 material + "}\n}\n",
             head + "hairProp hair\n{\n" + material + geometry + "}\n}\n" };
}

// ----- binary

Samples plySamples()
{
    std::string elements = "comment made here\nelement vertex 3\nproperty float x\nproperty float y\nproperty float z\n"
                           "property uchar red\nproperty uchar green\nproperty uchar blue\nproperty uchar alpha\n"
                           "element face 1\nproperty list uchar int vertex_indices\nend_header\n";
    std::string rgba = "\x10\x20\x30\xFF";
    std::string little = "ply\nformat binary_little_endian 1.0\n" + elements,
                big = "ply\nformat binary_big_endian 1.0\n" + elements;
    for (int k = 0; k < 3; ++k)
    {
        float x = k == 1 ? 1.0f : 0.0f, y = k == 2 ? 1.0f : 0.0f, z = 0;
        little += bytesOf(x, y, z) + rgba;
        big += swapped(x) + swapped(y) + swapped(z) + rgba;
    }
    little += bytesOf(uint8_t{ 3 }, 0, 1, 2);
    big += std::string("\x03\0\0\0\0\0\0\0\1\0\0\0\2", 13);
    return {
        little,
        big,
        "ply\nformat ascii 1.0\n" + elements + "0 0 0 1 2 3 4\n1 0 0 1 2 3 4\n0 1 0 255 255 255 255\n3 0 1 2\n",
        "ply\r\nformat ascii 1.0\r\nobj_info x\r\nelement vertex 5\r\nproperty double x\r\nproperty int16 y\r\n"
        "property float32 z\r\nproperty string note\r\nelement other 1\r\nproperty list int8 float64 v\r\nelement face "
        "2\r\n"
        "property uint8 flag\r\nproperty list ushort uint vertex_index\r\nend_header\r\n0 0 0 \"a b\"\r\n1 0 0 c\r\n"
        "1 1 0 d\r\n0 1 0 e\r\n2 2 2 f\r\n2 0.5 0.5\r\n7 5 0 1 2 3 4\r\n1 4 0 1 2 3\r\n",
    };
}

static std::string chunk(int id, const std::string& data)
{
    return bytesOf(static_cast<uint16_t>(id), static_cast<uint32_t>(6 + data.size())) + data;
}

static std::string text(const std::string& name)
{
    return name + std::string(1, '\0');
}

static std::string words(const std::vector<int>& values)
{
    std::string bytes;
    for (int value : values)
        bytes += bytesOf(static_cast<uint16_t>(value));
    return bytes;
}

static std::string colour(int id, int r, int g, int b)
{
    return chunk(
        id, chunk(chunkColour24, bytesOf(static_cast<uint8_t>(r), static_cast<uint8_t>(g), static_cast<uint8_t>(b))));
}

Samples threeDsSamples()
{
    std::string percent = chunk(chunkPercentageInt, words({ 30 }));
    std::string material =
        chunk(chunkMaterial, chunk(chunkMaterialName, text("red")) + colour(chunkAmbient, 51, 0, 0) +
                                 chunk(chunkDiffuse, chunk(chunkColourFloat, bytesOf(1.0f, 0.5f, 0.0f))) +
                                 colour(chunkSpecular, 255, 255, 255) + chunk(chunkShininess, percent) +
                                 chunk(chunkShininessStrength, chunk(chunkPercentageFloat, bytesOf(0.5f))) +
                                 chunk(chunkTransparency, percent) + chunk(chunkShading, words({ 3 })) +
                                 chunk(chunkTextureMap, percent + chunk(chunkMapName, text("WOOD.JPG"))));
    std::string vertices =
        chunk(chunkVertices, words({ 4 }) + bytesOf(0.f, 0.f, 0.f, 1.f, 0.f, 0.f, 1.f, 1.f, 0.f, 0.f, 1.f, 0.f));
    std::string mapping = chunk(chunkMappingCoords, words({ 4 }) + bytesOf(0.f, 0.f, 1.f, 0.f, 1.f, 1.f, 0.f, 1.f));
    std::string matrix = chunk(chunkMatrix, bytesOf(1.f, 0.f, 0.f, 0.f, 1.f, 0.f, 0.f, 0.f, 1.f, 5.f, 6.f, 7.f));
    std::string faces = chunk(chunkFaces, words({ 2, 0, 1, 2, 7, 0, 2, 3, 7 }) +
                                              chunk(chunkFaceMaterial, text("red") + words({ 1, 1 })));
    std::string box = chunk(chunkObject, text("box") + chunk(chunkTrimesh, vertices + mapping + matrix + faces));
    std::string node = chunk(chunkObjectNode, chunk(0xB030, words({ 1 })) +
                                                  chunk(chunkNodeHeader, text("box") + words({ 1, 2, 0xFFFF })) +
                                                  chunk(chunkPivot, bytesOf(0.f, 0.f, 3.f)));
    std::string head = chunk(2, bytesOf(3)), keyframer = chunk(chunkKeyframer, chunk(0xB00A, words({ 0 })) + node);
    return { chunk(chunkMain, head + chunk(chunkEditor, material + box) + keyframer),
             chunk(chunkMain, chunk(chunkEditor, box + box)) };
}

static std::string stlFacet(float x)
{
    return bytesOf(0.f, 0.f, 1.f, x, 0.f, 0.f, x + 1, 0.f, 0.f, x, 1.f, -2.5f) + std::string(2, '\0');
}

// Binary, binary that begins like text, binary with bytes behind its triangles, and text.
Samples stlSamples()
{
    std::string head = "solid in name only", text = "solid left wing\n";
    for (const char* x : { "0", "1.5e1" })
        text += "  facet normal 0 0 1\n    outer loop\n      vertex " + std::string(x) +
                " 0 0\n      vertex 1 0 -.5\n      vertex 0 1 0\n    endloop\n  endfacet\n";
    return { std::string(80, ' ') + bytesOf(3) + stlFacet(0) + stlFacet(1) + stlFacet(1e30f),
             head + std::string(80 - head.size(), '\0') + bytesOf(2) + stlFacet(4) + stlFacet(5),
             "binary" + std::string(74, 'x') + bytesOf(1) + stlFacet(4) + "more",
             text + "endsolid left wing\nSOLID\nFACET VERTEX 0 0 0 vertex nan 1 1 Vertex 0 1 1\r\nENDLOOP\n" };
}

// Also the built-in model's format.
Samples rkfSamples()
{
    Material material = {};
    material.diffuse[0] = material.diffuseLevel = 1;
    material.shininess = 10;
    std::string points = bytesOf(0.f, 0.f, 0.f, 1.f, 0.f, 0.f, 1.f, 1.f, 0.f, 0.f, 1.f, 0.f);
    std::string faces = bytesOf(0, 1, 2, 3, 1 << 20, 2, 3, -1),
                coords = bytesOf(0, 0x7FFF0000, 0x7FFF7FFF, 0x7FFF, 1, 2, 3, 4);
    return { bytesOf(4, 2, 2, 96) + points + faces + coords + bytesOf(material, material),
             bytesOf(4, 2, 0, 0) + points + faces + coords };
}
