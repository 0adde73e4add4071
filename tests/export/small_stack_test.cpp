// tests/export/small_stack_test.cpp - the writers keep no large arrays on the stack
#include "export/bmp.h"
#include "export/lux.h"
#include "export/obj.h"
#include "export/prop.h"
#include "export/rkf.h"
#include "export/stl.h"
#include "tests/export/build.h"

#include <alloca.h>
#include <pthread.h>
#include <unistd.h>
#include <algorithm>

using SmallStack = InOwnFolder;

static MeshPointer oneTriangle()
{
    MeshPointer mesh = buildMesh({ { 0, 0, 0 }, { 1, 0, 0 }, { 0, 1, 0 } }, { { 0, 0 }, { 1, 0 } },
                                 { { { 0, 1, 2, noCorner }, { 0, 1, 0, 0 }, 0, 0, 0 } }, 1, 1);
    copyName(mesh->materialNames[0], "red");
    copyName(mesh->groupNames[0], "one");
    return mesh;
}

struct WriterRun
{
    const Mesh* mesh;
    std::string folder;
    size_t surplus; // bytes of the stack that the writers must do without
    int written;
};

static bool fillGrey(uint8_t* row, int32_t, const BmpPicture* picture)
{
    memset(row, 0x80, bmpRowBytes(picture->width));
    return true;
}

static void* runWriters(void* context)
{
    auto* run = static_cast<WriterRun*>(context);
    auto* surplus = static_cast<volatile char*>(alloca(run->surplus + 1));
    surplus[0] = 0;
    const Mesh* mesh = run->mesh;
    std::vector<uint8_t> pixels(200 * 100 * 3);
    PreviewSource frame = { pixels.data(), 200, 100, 200 * 3 };
    BmpPicture picture = {};
    picture.width = picture.height = 300;
    picture.fillRow = fillGrey;
    run->written += WriteObjFile(mesh, (run->folder + "a.obj").c_str(), "a.obj");
    run->written += WritePropFile(mesh, (run->folder + "a.pp2").c_str(), &frame);
    run->written += WriteRkfFile(mesh, (run->folder + "a.rkf").c_str(), false);
    run->written += WriteStlFile(mesh, (run->folder + "a.stl").c_str());
    run->written += WriteLuxFiles(mesh, (run->folder + "a.obj").c_str());
    run->written += WriteBmpFile((run->folder + "a.bmp").c_str(), &picture);
    return nullptr;
}

// A thread with a stack of 64 KiB, twice what the writers and the libraries they call need. Where no thread can have so
// little, such as on ARM64, the rest is taken away first.
TEST_F(SmallStack, OfSixtyFourKiBIsEnoughForEveryWriter)
{
    MeshPointer mesh = oneTriangle();
    const size_t stackBytes = size_t{ 64 } * 1024;
    const size_t threadBytes = std::max(stackBytes, static_cast<size_t>(sysconf(_SC_THREAD_STACK_MIN)));
    WriterRun run = { mesh.get(), folder, threadBytes - stackBytes, 0 };
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, threadBytes), 0);
    pthread_t thread;
    ASSERT_EQ(pthread_create(&thread, &attributes, runWriters, &run), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
    EXPECT_EQ(run.written, 6);
    EXPECT_EQ(filesInFolder().size(), 11u);
}

// The blocks come from the heap instead, which may refuse them.
TEST_F(SmallStack, ARefusedBlockIsToldAndTouchesNoFile)
{
    MeshPointer mesh = oneTriangle();
    for (const char* name : { "a.obj", "a.pp2", "a.rkf", "a.stl" })
    {
        std::string path = folder + name;
        putFile(path, "earlier");
        recorded.boxes.clear();
        recorded.allocations = 0;
        recorded.refuseFrom = 1;
        int done = path.back() == 'j'   ? WriteObjFile(mesh.get(), path.c_str(), name)
                   : path.back() == 'l' ? WriteStlFile(mesh.get(), path.c_str())
                   : path.back() == '2' ? WritePropFile(mesh.get(), path.c_str(), nullptr)
                                        : WriteRkfFile(mesh.get(), path.c_str(), false);
        recorded.refuseFrom = 0;
        EXPECT_EQ(done, 0) << name;
        EXPECT_EQ(recorded.boxes, (Boxes{ { "Out of memory", "(default)", iconStop } })) << name;
        EXPECT_EQ(contents(path), "earlier");
    }
    EXPECT_EQ(filesInFolder(), (Names{ "a.obj", "a.pp2", "a.rkf", "a.stl" }));
}
