// tests/render/allocations_test.cpp - a frame after a turn or a zoom allocates nothing
//
// Every request of the program for memory comes here, those of the C++ library too, because the program's own malloc
// takes the place of that of the C library. The sanitizers have such functions of their own; there only pages are
// counted.
#include "render/view.h"
#include "tests/recording/blocks.h"
#include "tests/recording/recording.h"
#include "tests/render/scenes.h"

#include <stdlib.h>

static int heapRequests;

#if !defined(WATCHED) && !defined(__SANITIZE_THREAD__) && defined(__GLIBC__)
constexpr bool heapIsCounted = true;

extern "C"
{
    void* __libc_malloc(size_t size);
    void* __libc_calloc(size_t count, size_t size);
    void* __libc_realloc(void* block, size_t size);
    void* __libc_memalign(size_t alignment, size_t size);

    void* malloc(size_t size)
    {
        ++heapRequests;
        return __libc_malloc(size);
    }

    void* calloc(size_t count, size_t size)
    {
        ++heapRequests;
        return __libc_calloc(count, size);
    }

    void* realloc(void* block, size_t size)
    {
        ++heapRequests;
        return __libc_realloc(block, size);
    }

    void* aligned_alloc(size_t alignment, size_t size)
    {
        ++heapRequests;
        return __libc_memalign(alignment, size);
    }

    int posix_memalign(void** block, size_t alignment, size_t size)
    {
        ++heapRequests;
        *block = __libc_memalign(alignment, size);
        return *block ? 0 : 12; // ENOMEM
    }
}
#else
constexpr bool heapIsCounted = false;
#endif

class Allocations : public RenderTest
{
};

TEST_F(Allocations, RequestsOfTheHeapAreCounted)
{
    int before = heapRequests;
    std::vector<int> numbers(100);
    EXPECT_EQ(numbers[99], 0);
    EXPECT_EQ(heapRequests - before, heapIsCounted ? 1 : 0);
}

TEST_F(Allocations, AFrameAfterATurnOrAZoomAllocatesNothing)
{
    std::vector<uint32_t> texels(64 * 64, 0x00804020);
    Image image = { texels.data(), 64, 64 };
    renderSettings.currentTexture = &image;
    Display display(300, 200);
    installMesh(&display.list, makeSphere(16, 32));
    recorded.presented.reserve(100); // the recording itself must not grow
    for (uint32_t flags : { 0u, renderTextured, renderShadows, renderTextured | renderShadows | renderRough,
                            renderWireframe, renderTextured | renderMetallic, renderMoon | renderVertexColour })
    {
        renderSettings.renderFlags = flags | renderBackCulled;
        display.drawWhole();
        for (int frame = 0; frame < 4; ++frame)
        {
            int pagesBefore = recorded.allocations, heapBefore = heapRequests;
            Matrix turn;
            rotationAboutScreenAxes(&turn, 10, 20, 30);
            frameState.view.rotation = turn;
            frameState.view.zoom = 1 + 0.3f * static_cast<float>(frame);
            display.draw();
            EXPECT_EQ(heapRequests - heapBefore, 0) << flags;
            EXPECT_EQ(recorded.allocations - pagesBefore, 0) << flags;
        }
    }
}
