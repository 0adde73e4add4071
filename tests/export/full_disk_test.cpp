// tests/export/full_disk_test.cpp - what happens when files cannot grow
#include "export/lux.h"
#include "export/obj.h"
#include "export/prop.h"
#include "tests/export/build.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <functional>

using FullDisk = InOwnFolder;

// Runs a writer in a process whose files are limited to limitBytes. Returns 0 when it failed and showed the text of a
// failed write for that path.
static int failsUnderLimit(rlim_t limitBytes, const std::string& path, const std::function<int()>& write)
{
    pid_t child = fork();
    if (child == 0)
    {
        rlimit limit = { limitBytes, limitBytes };
        setrlimit(RLIMIT_FSIZE, &limit);
        int result = write();
        bool closed = recorded.progress.empty() || recorded.progress.back().closed;
        bool told = recorded.boxes == Boxes{ { path, "Error cannot write", iconStop } };
        _exit(result == 0 && told && closed ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 2;
}

static MeshPointer bigMesh()
{
    MeshPointer mesh = buildMesh(std::vector<Point>(20000, { 1, 2, 3 }), { { 0, 0 } },
                                 std::vector<FaceSpec>(20000, { { 0, 1, 2, none }, {}, 0, 0, 0 }), 1, 1);
    return mesh;
}

TEST_F(FullDisk, ObjKeepsTheEarlierFiles)
{
    MeshPointer mesh = bigMesh();
    std::string path = folder + "a.obj";
    putFile(path, "earlier");
    putFile(folder + "a.mtl", "earlier too");
    for (unsigned limit : { 0u, 1u, 5000u, 400000u })
        EXPECT_EQ(failsUnderLimit(limit, path, [&] { return WriteObjFile(mesh.get(), path.c_str(), "a.obj"); }), 0);
    EXPECT_EQ(contents(path), "earlier");
    EXPECT_EQ(contents(folder + "a.mtl"), "earlier too");
    EXPECT_EQ(filesInFolder(), (Names{ "a.mtl", "a.obj" }));
}

// The OBJ file fits, but the library with its 512 materials does not. Neither file is replaced.
TEST_F(FullDisk, AnObjFileWhoseLibraryDoesNotFitIsNotReplaced)
{
    MeshPointer mesh = buildMesh({ { 0, 0, 0 } }, {}, {}, 512, 1);
    std::string path = folder + "a.obj", library = folder + "a.mtl";
    putFile(path, "earlier");
    EXPECT_EQ(failsUnderLimit(5000, library, [&] { return WriteObjFile(mesh.get(), path.c_str(), "a.obj"); }), 0);
    EXPECT_EQ(contents(path), "earlier");
    EXPECT_EQ(filesInFolder(), Names{ "a.obj" });
}

TEST_F(FullDisk, PropKeepsTheEarlierFiles)
{
    MeshPointer mesh = bigMesh();
    std::string path = folder + "a.pp2", preview = folder + "a.rsr";
    putFile(path, "earlier");
    putFile(preview, "earlier too");
    uint8_t pixel[3] = { 1, 2, 3 };
    PreviewSource frame = { pixel, 1, 1, 3 };
    for (unsigned limit : { 0u, 5000u, 400000u })
        EXPECT_EQ(failsUnderLimit(limit, path, [&] { return WritePropFile(mesh.get(), path.c_str(), &frame); }), 0);
    EXPECT_EQ(contents(path), "earlier");
    EXPECT_EQ(contents(preview), "earlier too");
    EXPECT_EQ(filesInFolder(), (Names{ "a.pp2", "a.rsr" }));
}

// The material file with its 512 blocks does not fit. The geometry is complete by then, but it is not put in place.
TEST_F(FullDisk, SceneKeepsTheEarlierFiles)
{
    MeshPointer mesh = buildMesh({ { 0, 0, 0 } }, {}, {}, 512, 1);
    const char* const names[] = { "a.lxm", "a.lxo", "a.lxs", "a_textures.txt" };
    for (const char* name : names)
        putFile(folder + name, "earlier");
    EXPECT_EQ(
        failsUnderLimit(5000, folder + "a.lxm", [&] { return WriteLuxFiles(mesh.get(), (folder + "a.lxs").c_str()); }),
        0);
    for (const char* name : names)
        EXPECT_EQ(contents(folder + name), "earlier") << name;
    EXPECT_EQ(filesInFolder(), Names(std::begin(names), std::end(names)));
}
