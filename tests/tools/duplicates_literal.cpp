// tests/tools/duplicates_literal.cpp - Dup Faces in its literal form: chains by the sum, an overflow of faceCount - 1
// entries
#include "tests/tools/literal.h"

#include <gtest/gtest.h>

#include <vector>

struct FaceEntry
{
    int32_t face = -1;
    size_t next = 0;
};

static bool repeats(const Corners& a, const Corners& b)
{
    auto isIn = [&b](uint32_t word) { return word == b[0] || word == b[1] || word == b[2] || word == b[3]; };
    return isIn(a[0]) && isIn(a[1]) && isIn(a[2]) && isIn(a[3]);
}

int literalRemoveDuplicates(Mesh* mesh)
{
    size_t first = static_cast<size_t>(mesh->vertexCount) * 4, used = 0;
    size_t faceCount = static_cast<size_t>(mesh->faceCount);
    std::vector<FaceEntry> table(first + faceCount);
    int removed = 0;
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        if (mesh->faceAttributes[f] & (faceDeleted | faceLine))
            continue;
        const Corners& a = mesh->faces[f];
        size_t index = 1 + a[0] + a[1] + a[2] + a[3];
        while (table[index].face != -1 && !repeats(a, mesh->faces[table[index].face]))
        {
            if (table[index].next == 0)
            {
                EXPECT_LT(used, faceCount - 1); // never runs out
                table[index].next = first + used++;
            }
            index = table[index].next;
        }
        if (table[index].face == -1)
        {
            table[index].face = f;
            continue;
        }
        mesh->faceAttributes[f] |= faceDeleted;
        --mesh->liveFaceCount;
        ++removed;
    }
    return removed;
}
