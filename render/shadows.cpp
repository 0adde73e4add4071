// render/shadows.cpp - the light's view of the model and the shadow marks
//
// An entry stores the depth of the face's plane at its whole column and row, where vertices are placed too, but never a
// depth nearer than the face's nearest corner. The depth is computed in 64 bits, which are enough for faces seen
// edge-on.
#include "render/shadows.h"

#include "model/matrix.h"
#include "render/face_blocks.h"
#include "render/kernels.h"
#include "render/project.h"
#include "render/shadow_rows.h"
#include "render/triangle_edges.h"

#include <math.h>
#include <string.h>
#include <algorithm>
#include <bit>

// The largest distance, in columns, between a vertex and the point whose depth its entry stores. Both are rounded to
// whole columns and rows.
constexpr float ownReach = 2;

void ProjectToLight(Mesh* mesh, const FrameTransforms* transforms)
{
    vertexKernels().projectLight(mesh, transforms);
}

// a / b in 16.16. It divides in 32 bits where they are enough, because that is faster. They do not hold -32768 / -1.
static int64_t quotient16(int64_t a, int32_t b)
{
    if (a > -32768 && a < 32768)
        return static_cast<int32_t>(a) * 65536 / b;
    return a * 65536 / b;
}

static DepthPlane depthPlaneOf(const TriangleFrame& frame)
{
    int64_t dz1 = frame.corner[1]->depth - frame.corner[0]->depth;
    int64_t dz2 = frame.corner[2]->depth - frame.corner[0]->depth;
    return { quotient16(dz1 * frame.dy2 - dz2 * frame.dy1, frame.area),
             quotient16(dz2 * frame.dx1 - dz1 * frame.dx2, frame.area) };
}

// Works in 64 bits, for faces so steep that the step per column does not fit in 32.
static void fillSteepShadowSpan(uint16_t* entry, int32_t count, int64_t depth, int64_t perColumn, int32_t highest)
{
    for (int32_t i = 0; i < count; ++i, depth += perColumn)
    {
        int64_t whole = std::clamp<int64_t>(depth >> 16, 0, highest);
        entry[i] = std::max(entry[i], static_cast<uint16_t>(whole));
    }
}

void fillShadowSpan(uint16_t* entry, int32_t count, int32_t depth, int32_t perColumn, int32_t highest)
{
    uint32_t value = static_cast<uint32_t>(depth);
    for (int32_t i = 0; i < count; ++i, value += static_cast<uint32_t>(perColumn))
    {
        int32_t whole = std::clamp(static_cast<int32_t>(value) >> 16, 0, highest);
        entry[i] = std::max(entry[i], static_cast<uint16_t>(whole));
    }
}

// With a gentle step, all depths of a span and the one a column to its left fit in 32 bits.
void fillShadowRows(uint16_t* map, int32_t side, const ShadowTriangle* triangle)
{
    const DepthPlane& plane = triangle->plane;
    bool isSteep = plane.perColumn > steepestStep || plane.perColumn < -steepestStep;
    SpanEdge left = triangle->left, right = triangle->right;
    for (int32_t y = triangle->topRow; y < std::min(triangle->bottomRow, side); ++y)
    {
        stepToSecondEdges(&left, &right, y);
        int32_t x = left.x >> 16;
        int32_t end = std::min((right.x >> 16) + 1, side);
        int64_t depth = depthAt(*triangle, x, y);
        uint16_t* entry = map + static_cast<ptrdiff_t>(y) * side + x;
        if (isSteep)
            fillSteepShadowSpan(entry, end - x, depth, plane.perColumn, triangle->highest);
        else
            fillShadowSpan(entry, end - x, static_cast<int32_t>(depth), static_cast<int32_t>(plane.perColumn),
                           triangle->highest);
        left.x += left.step;
        right.x += right.step;
    }
}

static inline void raiseEntry(uint16_t* map, int32_t side, const TriangleCorner& corner)
{
    if (corner.x >= side || corner.y >= side)
        return;
    uint16_t* entry = map + static_cast<ptrdiff_t>(corner.y) * side + corner.x;
    *entry = std::max(*entry, static_cast<uint16_t>(corner.depth));
}

// Handles a triangle of one row that covers only the entries of its corners in that row. Returns 0, with nothing
// raised, for any other triangle.
static inline int fillCornerEntries(uint16_t* map, int32_t side, const TriangleFrame& frame)
{
    if (frame.dy2 != 1 || (frame.dy1 == 0 && abs(frame.dx1) > 1))
        return 0;
    raiseEntry(map, side, *frame.corner[0]);
    if (frame.dy1 == 0)
        raiseEntry(map, side, *frame.corner[1]);
    return 1;
}

// Does the same as fillShadowRows, without its records, for a triangle of few rows and columns. Most triangles of a
// finely divided model are like that. Returns 0, with nothing raised, for a larger or steep triangle.
static inline int fillSmallTriangle(uint16_t* map, int32_t side, const TriangleFrame& frame)
{
    if (!isSmallEdge(frame.dx1, frame.dy1) || !isSmallEdge(frame.dx2, frame.dy2) ||
        !isSmallEdge(frame.dx2 - frame.dx1, frame.dy2 - frame.dy1))
        return 0;
    const DepthPlane plane = depthPlaneOf(frame);
    if (plane.perColumn > steepestStep || plane.perColumn < -steepestStep)
        return 0;
    const TriangleCorner &top = *frame.corner[0], &middle = *frame.corner[1];
    const int32_t highest = highestDepthOf(frame);
    const Slopes slopes = slopesOf(frame);
    int32_t straight = top.x << 16, bent = straight, bentStep = slopes.upper;
    int64_t rowDepth = int64_t{ top.depth } * 65536;
    uint16_t* row = map + static_cast<ptrdiff_t>(top.y) * side;
    const int32_t rows = std::min(frame.dy2, side - top.y);
    for (int32_t y = 0; y < rows; ++y, row += side)
    {
        if (y == frame.dy1)
        {
            bent = middle.x << 16;
            bentStep = slopes.lower;
        }
        int32_t x = (frame.area > 0 ? straight : bent) >> 16;
        int32_t end = std::min(((frame.area > 0 ? bent : straight) >> 16) + 1, side);
        prefetchAhead(row + x, side);
        fillShadowSpan(row + x, end - x, static_cast<int32_t>(rowDepth + plane.perColumn * (x - top.x)),
                       static_cast<int32_t>(plane.perColumn), highest);
        straight += slopes.whole;
        bent += bentStep;
        rowDepth += plane.perRow;
    }
    return 1;
}

static void fillShadowTriangle(FrameBuffer* target, const TriangleCorner* corners, ShadowFiller fillRows)
{
    TriangleFrame frame;
    SpanState edges;
    if (!frameTriangle(&frame, corners))
        return;
    if (fillCornerEntries(target->shadowMap, target->shadowSize, frame) ||
        fillSmallTriangle(target->shadowMap, target->shadowSize, frame))
        return;
    setUpEdges(&edges, frame, slopesOf(frame));
    const TriangleCorner& origin = *frame.corner[0];
    ShadowTriangle triangle = { edges.left, edges.right, edges.topRow,          edges.bottomRow, depthPlaneOf(frame),
                                origin.x,   origin.y,    highestDepthOf(frame), origin.depth };
    fillRows(target->shadowMap, target->shadowSize, &triangle);
}

// Reads the face's corners on the map. Returns their number, up to the first absent one, or 0 when one is off the map.
static int readLightCorners(TriangleCorner* out, const Mesh* mesh, const Corners& corners)
{
    int count = 0;
    for (uint32_t corner : corners)
    {
        if (corner == noCorner)
            break;
        if (corner >= static_cast<uint32_t>(mesh->vertexCount))
            return 0;
        const ProjectedVertex& vertex = mesh->projected[corner];
        if (vertex.flags & vertexOffScreen)
            return 0;
        out[count++] = projectedCorner(vertex);
    }
    return count;
}

static void fillShadowFace(FrameBuffer* target, const Mesh* mesh, int32_t index, ShadowFiller fillRows)
{
    uint32_t attributes = mesh->faceAttributes[index];
    if (attributes & (faceHidden | faceDeleted) || !(attributes & faceLit))
        return;
    TriangleCorner corner[4];
    int count = readLightCorners(corner, mesh, mesh->faces[index]);
    if (count == 4)
    {
        const TriangleCorner half[3] = { corner[0], corner[2], corner[3] };
        fillShadowTriangle(target, half, fillRows);
    }
    if (count >= 3)
        fillShadowTriangle(target, corner, fillRows);
}

void RenderShadowMap(FrameBuffer* target, const Mesh* mesh)
{
    ShadowFiller fillRows = shadowFiller();
    ShadowBlockFiller fillBlock = shadowBlockFiller();
    int32_t i = 0;
    if (fillBlock && mesh->vertexCount > 0 && mesh->vertexCount <= blockVertexLimit)
    {
        for (; i + faceBlock <= mesh->faceCount; i += faceBlock)
        {
            uint32_t left = fillBlock(target->shadowMap, target->shadowSize, mesh, i);
            for (; left; left &= left - 1)
                fillShadowFace(target, mesh, i + std::countr_zero(left), fillRows);
        }
    }
    for (; i < mesh->faceCount; ++i)
        fillShadowFace(target, mesh, i, fillRows);
}

// Whether an entry that is nearer to the light than its vertex, by excess depths, can belong to the vertex's own
// surface, whose depth rises within the entry. A surface turned away from the light lies under another side of the
// model.
static bool isOwnSurface(uint32_t excess, float towardLight)
{
    if (!(towardLight > 0))
        return false;
    constexpr float depthsPerColumn = static_cast<float>(depthLimit) / shadowMapSide;
    float across = sqrtf(std::max(1 - towardLight * towardLight, 0.0f)); // rise = across / towardLight
    return static_cast<float>(excess) * towardLight <= ownReach * depthsPerColumn * across;
}

void MarkShadowedVertices(const FrameBuffer* target, Mesh* mesh, const FrameTransforms* transforms)
{
    float light[3];
    lightDirectionInModel(light, transforms);
    const uint16_t* map = target->shadowMap;
    int32_t side = target->shadowSize;
    for (int32_t i = 0; i < mesh->vertexCount; ++i)
    {
        ProjectedVertex* vertex = &mesh->projected[i];
        int32_t column = projectedX(*vertex), row = projectedY(*vertex);
        uint32_t depth = vertex->flags & vertexDepthMask;
        bool onMap = !(vertex->flags & vertexOffScreen) && column < side && row < side;
        uint32_t entry = onMap ? map[static_cast<ptrdiff_t>(row) * side + column] : 0;
        bool hidden = entry > depth && !isOwnSurface(entry - depth, dotProduct(mesh->vertices[i].normal, light));
        vertex->flags = hidden ? vertex->flags | vertexShadowed : vertex->flags & ~vertexShadowed;
    }
}
