// tests/import/obj_loading.h - scratch folders for tests, and reading an OBJ file in them
#pragma once
#include "import/obj/obj.h"
#include "model/mesh.h"
#include "tests/clean_test.h"

#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

// A folder for one test, removed when the test ends.
struct TestFolder
{
    std::filesystem::path path;

    TestFolder()
    {
        std::string pattern = testing::TempDir() + "kestrelboxXXXXXX";
        if (mkdtemp(pattern.data()))
            path = pattern;
    }
    ~TestFolder()
    {
        std::filesystem::remove_all(path);
    }
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;

    std::string write(const std::string& name, const std::string& bytes) const
    {
        std::filesystem::path file = path / name;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << bytes;
        return file.string();
    }
};

inline std::string fileBytes(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

// A mesh read from OBJ text; freed with the record.
struct LoadedObj
{
    Mesh* mesh;
    int ok;

    explicit LoadedObj(const std::string& path)
    {
        mesh = createMesh("prop");
        ok = LoadObjFile(mesh, path.c_str());
    }
    ~LoadedObj()
    {
        freeMesh(mesh);
    }
    LoadedObj(const LoadedObj&) = delete;
    LoadedObj& operator=(const LoadedObj&) = delete;
};

// A clean test with a folder of its own and the mesh read last.
class ObjFolderTest : public CleanTest
{
protected:
    TestFolder folder;
    LoadedObj* loaded = nullptr;

    void TearDown() override
    {
        delete loaded;
        CleanTest::TearDown();
    }
};

inline std::string facesText(const Mesh* mesh)
{
    std::string text;
    char line[200];
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        const Corners& v = mesh->faces[f];
        const Corners& t = mesh->faceUvs[f];
        auto index = [](uint32_t i) { return static_cast<int32_t>(i); };
        snprintf(line, sizeof line, "%d %d %d %d  %d %d %d %d  %x\n", index(v[0]), index(v[1]), index(v[2]),
                 index(v[3]), index(t[0]), index(t[1]), index(t[2]), index(t[3]), mesh->faceAttributes[f]);
        text += line;
    }
    return text;
}

// Floats by their bits, so that two meshes compare exactly.
inline std::string geometryText(const Mesh* mesh)
{
    std::string text;
    char line[200];
    auto bits = [](float value)
    {
        uint32_t word;
        memcpy(&word, &value, sizeof word);
        return word;
    };
    for (int32_t i = 0; i < mesh->vertexCount; ++i)
    {
        const MeshVertex& v = mesh->vertices[i];
        snprintf(line, sizeof line, "v %x %x %x %x\n", bits(v.position[0]), bits(v.position[1]), bits(v.position[2]),
                 v.colour);
        text += line;
    }
    for (int32_t i = 0; i < mesh->uvCount; ++i)
    {
        snprintf(line, sizeof line, "vt %x %x\n", bits(mesh->uvs[i].u), bits(mesh->uvs[i].v));
        text += line;
    }
    text += facesText(mesh);
    for (int32_t i = 0; i < mesh->groupCount; ++i)
        text.append("group ").append(mesh->groupNames[i]).append("\n");
    for (int32_t i = 0; i < mesh->materialCount; ++i)
        text.append("material ").append(mesh->materialNames[i]).append("\n");
    snprintf(line, sizeof line, "lines %d polygons %d\n", mesh->lineCount, mesh->liveFaceCount);
    return text + line;
}
