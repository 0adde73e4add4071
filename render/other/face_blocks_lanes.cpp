// render/other/face_blocks_lanes.cpp - eight faces in two lots of four, by the places of their corners
//
// A triangle's corners are sorted by row, then by column, as numbers row << 16 | column. Call them a, b and c in that
// order. A triangle of up to two rows has these pixels:
// - row 0: when a and b both lie in it, the columns from a up to, not including, b
// - row 1: the columns between the two points where edges cross it, rounded down. One point is the middle of the edge
//   a c. The other is b, or the middle of the other edge that spans two rows
#include "render/other/kernels.h"

#include "platform/other/lanes.h"
#include "render/project.h"

#include <bit>

constexpr int32_t lot = 4;

// Which triangles have no pixel, and which have one, that of a corner.
struct SmallTriangles
{
    IntLanes empty, single, corner; // the place of the corner
};

static SmallTriangles smallTriangles(IntLanes p0, IntLanes p1, IntLanes p2)
{
    IntLanes low = lowerOf(p0, p1), high = higherOf(p0, p1);
    IntLanes a = lowerOf(low, p2), b = higherOf(low, lowerOf(high, p2)), c = higherOf(high, p2);
    IntLanes xa = a & 0xFFFF, xb = b & 0xFFFF, xc = c & 0xFFFF, ya = a >> 16;
    IntLanes dx1 = xb - xa, dx2 = xc - xa, dy1 = (b >> 16) - ya, dy2 = (c >> 16) - ya;
    IntLanes area = dx1 * dy2 - dx2 * dy1;
    IntLanes flatTop = dy1 == 0, oneRow = dy2 == 1, twoRows = dy2 == 2;
    IntLanes middleRow = twoRows & (dy1 == 1), flatBottom = twoRows & (dy1 == 2);
    IntLanes halfAC = (xa + xc) >> 1, halfAB = (xa + xb) >> 1;
    // with b left of the edge a c, the pixels of row 1 begin at b itself
    IntLanes bLeft = middleRow & (area < 0), fromB = halfAC - xb;
    IntLanes none = (bLeft & (fromB == 0)) | (flatBottom & (halfAC == halfAB)) | (~flatTop & oneRow) | (area == 0);
    IntLanes atA = flatTop & oneRow & (dx1 == 1), atB = bLeft & (fromB == 1);
    return { none, ~none & (atA | atB), (b & atB) | (a & ~atB) };
}

// Of four faces: the ones of the pass that are triangles, those of them with all corners on the screen, and the places
// of their corners. Bit k stands for face k.
struct Lot
{
    uint32_t triangles, onScreen;
    int32_t place[3][lot];
};

static bool isOnMesh(const FacePass* pass, const Corners& corners)
{
    return corners[0] <= pass->lastVertex && corners[1] <= pass->lastVertex && corners[2] <= pass->lastVertex;
}

static void readPlaces(Lot* faces, const FacePass* pass, int32_t first, uint32_t passed)
{
    for (; passed; passed &= passed - 1)
    {
        int32_t k = std::countr_zero(passed);
        const Corners& corners = pass->faces[first + k];
        if (corners[2] == noCorner || corners[3] != noCorner || pass->faceAttributes[first + k] & faceLine)
            continue;
        faces->triangles |= 1u << k;
        if (!isOnMesh(pass, corners))
            continue;
        uint32_t flags = 0;
        for (size_t i = 0; i < 3; ++i)
        {
            const ProjectedVertex& vertex = pass->projected[corners[i]];
            faces->place[i][k] = static_cast<int32_t>(vertex.xy << 16 | vertex.xy >> 16);
            flags |= vertex.flags;
        }
        faces->onScreen |= flags & vertexOffScreen ? 0 : 1u << k;
    }
}

// The faces of the pass. Adds the transparent ones to the block.
static uint32_t passedFaces(FaceBlock* block, const FacePass* pass, int32_t first, int32_t shift)
{
    uint32_t passed = 0;
    for (int32_t k = 0; k < lot; ++k)
    {
        uint32_t attributes = pass->faceAttributes[first + k];
        if (attributes & (faceHidden | faceDeleted))
            continue;
        uint32_t eyeFacing = attributes & faceEyeFacing;
        uint32_t row = (attributes & faceMaterialMask) | (eyeFacing ? 1u << sideTableShift : 0);
        uint32_t transparent = pass->transparent[row];
        block->transparent |= (transparent & 1u) << (k + shift);
        passed |= (eyeFacing == pass->side && transparent != pass->opaque ? 1u : 0) << k;
    }
    return passed;
}

static void sortLot(FaceBlock* block, const FacePass* pass, int32_t first, int32_t shift)
{
    uint32_t passed = passedFaces(block, pass, first, shift);
    if (!passed)
        return;
    Lot faces = {};
    readPlaces(&faces, pass, first, passed);
    SmallTriangles small =
        smallTriangles(loadLanes(faces.place[0]), loadLanes(faces.place[1]), loadLanes(faces.place[2]));
    uint32_t empty = bitsOf(small.empty) & faces.onScreen, single = bitsOf(small.single) & faces.onScreen;
    uint32_t drawn = passed & ~(faces.triangles & ~faces.onScreen) & ~empty & ~single;
    block->empty |= empty << shift;
    block->single |= single << shift;
    block->drawn |= drawn << shift;
    for (; single; single &= single - 1)
    {
        int32_t k = std::countr_zero(single);
        const Corners& corners = pass->faces[first + k];
        size_t corner = faces.place[0][k] == small.corner[k] ? 0 : faces.place[1][k] == small.corner[k] ? 1 : 2;
        block->vertex[k + shift] = corners[corner];
    }
}

void sortFaceBlockLanes(FaceBlock* block, const FacePass* pass, int32_t first)
{
    block->transparent = block->drawn = block->single = block->empty = 0;
    sortLot(block, pass, first, 0);
    sortLot(block, pass, first + lot, lot);
}
