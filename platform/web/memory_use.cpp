// platform/web/memory_use.cpp - the size of the heap, which never shrinks
#include "platform/memory_use.h"

#include <emscripten/heap.h>

MemoryUse memoryUse()
{
    auto bytes = static_cast<int64_t>(emscripten_get_heap_size());
    return { bytes, bytes };
}
