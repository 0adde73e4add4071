// render/faces.cpp - the face drawer: the faces of each pass, and the colours and texture coordinates of their corners
#include "render/faces.h"

#include "render/triangle_edges.h"
#include "render/face_blocks.h"
#include "render/kernels.h"
#include "render/materials.h"
#include "render/project.h"
#include "render/raster.h"
#include "render/reflect.h"

#include <algorithm>
#include <bit>

enum TextureKind
{
    textureNone,
    textureCoordinates, // the mesh's own
    textureReflection
};

// The state that all passes of a frame share.
struct FaceDrawer
{
    Mesh* mesh;
    const FrameTransforms* transforms;
    const RenderSettings* settings;
    uint32_t flags; // of the settings
    TextureKind texture;
    RasterKernels kernels;
    FaceBlockSorter sortBlock; // null where there is none
    FillState fill;
    uint32_t polygons;                       // drawn so far
    int32_t shadings;                        // vertex shadings so far
    uint32_t transparent[2 * materialLimit]; // of a FacePass
};

// A material as a pass uses it.
struct FaceMaterial
{
    const Material* material;
    uint32_t key; // of the vertices that are shaded with it on the side of the pass
};

static TextureKind textureKindOf(const Mesh* mesh, const RenderSettings* settings)
{
    const Image* image = settings->currentTexture;
    if (!image || !image->pixels || image->width <= 0 || image->height <= 0)
        return textureNone;
    if (settings->renderFlags & renderMetallic)
        return textureReflection;
    // One texture coordinate alone is the placeholder of files that have none.
    return settings->renderFlags & renderTextured && mesh->uvCount > 1 ? textureCoordinates : textureNone;
}

static FillState fillStateOf(const FrameBuffer* target, const RenderSettings* settings)
{
    FillState fill = {};
    fill.cells = target->cells;
    fill.pitch = target->pitch;
    fill.texture = settings->currentTexture;
    constexpr int32_t fieldStep[4] = { 2048, 1024, 2048, 0 }; // one step of a cell's field in a 16-bit lane
    constexpr int32_t roughness = 4096;
    for (int k = 0; k < 4; ++k)
        fill.noiseAmplitude[k] = fieldStep[k] + (settings->renderFlags & renderRough ? roughness : 0);
    return fill;
}

static FaceMaterial materialOf(const FaceDrawer* drawer, uint32_t attributes)
{
    uint32_t eyeFacing = attributes & faceEyeFacing;
    uint32_t key = vertexShaded | (eyeFacing ? vertexEyeFacing : 0);
    const RenderSettings* settings = drawer->settings;
    if (!settings->propMaterial)
        return { eyeFacing ? &settings->front : &settings->behind, key };
    uint32_t index = faceMaterial(attributes);
    return { &drawer->mesh->materials[index], key | index << vertexMaterialShift };
}

// Shades a vertex on the visible side. The vertex keeps the colour and its key for the other faces that share it.
static void shadeProjected(FaceDrawer* drawer, uint32_t index, const FaceMaterial& face)
{
    const MeshVertex& vertex = drawer->mesh->vertices[index];
    ProjectedVertex* projected = &drawer->mesh->projected[index];
    float normal[3];
    transformDirection(normal, &drawer->transforms->normal, vertex.normal);
    if (!(face.key & vertexEyeFacing))
        for (float& n : normal)
            n = -n;
    int inShadow = drawer->flags & renderShadows && projected->flags & vertexShadowed;
    projected->colour =
        shadeVertex(face.material, drawer->settings->lights, normal, inShadow, drawer->flags, vertex.colour);
    if (drawer->texture == textureReflection)
        projected->texture = reflectionOf(normal);
    projected->flags = (projected->flags & ~vertexKeyMask) | face.key;
    ++drawer->shadings;
}

// Reads the place and depth of a face's corners. Returns their number, or 0 when a corner is off the screen or its
// index is past the last vertex.
static int readCorners(const Mesh* mesh, TriangleCorner* out, int32_t faceIndex)
{
    const Corners& corners = mesh->faces[faceIndex];
    int count = cornerCount(corners);
    for (int k = 0; k < count; ++k)
    {
        uint32_t index = corners[static_cast<size_t>(k)];
        if (index >= static_cast<uint32_t>(mesh->vertexCount))
            return 0;
        const ProjectedVertex& vertex = mesh->projected[index];
        if (vertex.flags & vertexOffScreen)
            return 0;
        out[k] = projectedCorner(vertex);
    }
    return count;
}

// Gives the corners their colours and texture coordinates.
static void shadeCorners(FaceDrawer* drawer, TriangleCorner* out, int count, int32_t faceIndex,
                         const FaceMaterial& face)
{
    const Mesh* mesh = drawer->mesh;
    for (int k = 0; k < count; ++k)
    {
        uint32_t index = mesh->faces[faceIndex][static_cast<size_t>(k)];
        const ProjectedVertex& vertex = mesh->projected[index];
        if ((vertex.flags & vertexKeyMask) != face.key)
            shadeProjected(drawer, index, face);
        out[k].colour = vertex.colour;
        if (drawer->texture == textureCoordinates)
        {
            uint32_t uv = mesh->faceUvs[faceIndex][static_cast<size_t>(k)];
            uv = uv < static_cast<uint32_t>(mesh->uvCount) ? uv : 0;
            out[k].row = mesh->uvs[uv].v;
            out[k].column = mesh->uvs[uv].u;
        }
        else if (drawer->texture == textureReflection)
        {
            out[k].row = static_cast<float>(vertex.texture & 0xFFFF) / reflectionPeriod;
            out[k].column = static_cast<float>(vertex.texture >> 16) / reflectionPeriod;
        }
    }
}

static void fillFace(FaceDrawer* drawer, const TriangleCorner* corners)
{
    bool blended = static_cast<int32_t>(drawer->fill.transparency) >= 1;
    bool textured = drawer->texture != textureNone;
    AttributeSet set = textured ? texturedAttributes : blended ? transparentAttributes : opaqueAttributes;
    SpanState state;
    if (!drawer->kernels.setUp(&state, corners, set))
        return;
    const RasterKernels& kernels = drawer->kernels;
    TriangleFiller filler = textured ? kernels.textured : blended ? kernels.transparent : kernels.opaque;
    filler(&drawer->fill, &state);
}

// Draws the lines between a polyline's points; with closed set, also the last side of a polygon.
static void drawOutline(FaceDrawer* drawer, const TriangleCorner* corners, int count, bool closed)
{
    ++drawer->polygons;
    for (int k = 0; k + 1 < count; ++k)
        drawLine(&drawer->fill, corners[k], corners[k + 1]);
    if (closed)
        drawLine(&drawer->fill, corners[count - 1], corners[0]);
}

// The half of a quad without corner 1. It is drawn before the half without corner 3.
static const TriangleCorner* secondHalfOf(TriangleCorner* half, const TriangleCorner* quad)
{
    half[0] = quad[0];
    half[1] = quad[2];
    half[2] = quad[3];
    return half;
}

// sorted means that a sorter has already passed the face; a triangle then needs no second test for pixels.
static void drawFace(FaceDrawer* drawer, int32_t index, const FaceMaterial& face, bool sorted)
{
    TriangleCorner corner[4];
    int count = readCorners(drawer->mesh, corner, index);
    if (count == 0)
        return;
    bool isLine = drawer->mesh->faceAttributes[index] & faceLine || count == 2;
    if (isLine || drawer->flags & renderWireframe)
    {
        shadeCorners(drawer, corner, count, index, face);
        return drawOutline(drawer, corner, count, !isLine);
    }
    drawer->polygons += static_cast<uint32_t>(count - 2);
    TriangleCorner half[3];
    bool secondHalf = count == 4 && mayCoverPixels(secondHalfOf(half, corner));
    bool firstHalf = (sorted && count == 3) || mayCoverPixels(corner);
    if (!firstHalf && !secondHalf)
        return;
    shadeCorners(drawer, corner, count, index, face);
    drawer->fill.transparency = transparencyByte(face.material) * 0x010101u;
    if (secondHalf)
        fillFace(drawer, secondHalfOf(half, corner));
    if (firstHalf)
        fillFace(drawer, corner);
}

// Draws a triangle that covers one pixel, that of a corner, in an opaque pass without a texture.
static void drawSingle(FaceDrawer* drawer, int32_t faceIndex, uint32_t vertexIndex)
{
    ++drawer->polygons;
    const ProjectedVertex& vertex = drawer->mesh->projected[vertexIndex];
    FillState* fill = &drawer->fill;
    uint32_t* cell = fill->cells + static_cast<ptrdiff_t>(projectedY(vertex)) * fill->pitch + projectedX(vertex);
    int32_t depth = static_cast<int32_t>(vertex.flags & vertexDepthMask);
    if (static_cast<uint32_t>(depth) > *cell >> 16)
    {
        FaceMaterial face = materialOf(drawer, drawer->mesh->faceAttributes[faceIndex]);
        if ((vertex.flags & vertexKeyMask) != face.key)
            shadeProjected(drawer, vertexIndex, face);
        *cell = opaqueCell(fill, depth, vertex.colour);
    }
    fill->noiseCounter += noiseStep;
}

// Draws the faces of the pass that lie in first..end - 1. Returns 1 when any face in that range is transparent and not
// hidden, whichever way it faces.
static int drawFaceRange(FaceDrawer* drawer, const FacePass* pass, int32_t first, int32_t end)
{
    const Mesh* mesh = drawer->mesh;
    int anyTransparent = 0;
    for (int32_t i = first; i < end; ++i)
    {
        uint32_t attributes = mesh->faceAttributes[i];
        if (attributes & (faceHidden | faceDeleted))
            continue;
        FaceMaterial face = materialOf(drawer, attributes);
        bool transparent = face.material->transparency > 0;
        anyTransparent |= transparent ? 1 : 0;
        if ((attributes & faceEyeFacing) == pass->side && transparent == !pass->opaque)
            drawFace(drawer, i, face, false);
    }
    return anyTransparent;
}

// Draws the same faces in the same order, eight at a time.
static int drawFaceBlocks(FaceDrawer* drawer, const FacePass* pass)
{
    const Mesh* mesh = drawer->mesh;
    bool singles = pass->opaque && drawer->texture == textureNone;
    int anyTransparent = 0;
    int32_t i = 0;
    for (; i + faceBlock <= mesh->faceCount; i += faceBlock)
    {
        FaceBlock block;
        drawer->sortBlock(&block, pass, i);
        anyTransparent |= block.transparent ? 1 : 0;
        drawer->polygons += static_cast<uint32_t>(std::popcount(block.empty));
        for (uint32_t left = block.drawn | block.single; left; left &= left - 1)
        {
            int32_t k = std::countr_zero(left);
            if (singles && block.single >> k & 1)
                drawSingle(drawer, i + k, block.vertex[k]);
            else
                drawFace(drawer, i + k, materialOf(drawer, mesh->faceAttributes[i + k]), true);
        }
    }
    return drawFaceRange(drawer, pass, i, mesh->faceCount) | anyTransparent;
}

// Draws the opaque or the transparent faces of one side. Returns what drawFaceRange does.
static int drawFaces(FaceDrawer* drawer, uint32_t side, bool opaque)
{
    const Mesh* mesh = drawer->mesh;
    FacePass pass = { side,
                      opaque ? ~0u : 0,
                      drawer->transparent,
                      mesh->projected,
                      mesh->faces,
                      mesh->faceAttributes,
                      static_cast<uint32_t>(mesh->vertexCount) - 1 };
    bool inBlocks = drawer->sortBlock && !(drawer->flags & renderWireframe) && mesh->vertexCount > 0 &&
                    mesh->vertexCount <= blockVertexLimit;
    return inBlocks ? drawFaceBlocks(drawer, &pass) : drawFaceRange(drawer, &pass, 0, mesh->faceCount);
}

// Fills the table of transparent materials, by side and index.
static void findTransparent(FaceDrawer* drawer)
{
    for (uint32_t index = 0; index < 2 * materialLimit; ++index)
    {
        uint32_t side = index & materialLimit ? faceEyeFacing : 0;
        bool transparent = materialOf(drawer, side | index % materialLimit).material->transparency > 0;
        drawer->transparent[index] = transparent ? ~0u : 0;
    }
}

static void drawPasses(FaceDrawer* drawer, bool drawAway)
{
    int anyTransparent = drawFaces(drawer, faceEyeFacing, true);
    if (drawAway)
        drawFaces(drawer, 0, true);
    if (!anyTransparent)
        return;
    if (drawAway)
        drawFaces(drawer, 0, false);
    drawFaces(drawer, faceEyeFacing, false);
}

void drawMesh(FrameBuffer* target, Mesh* mesh, const FrameTransforms* transforms, const RenderSettings* settings,
              FrameStatistics* statistics)
{
    FaceDrawer drawer = {
        .mesh = mesh,
        .transforms = transforms,
        .settings = settings,
        .flags = settings->renderFlags,
        .texture = textureKindOf(mesh, settings),
        .kernels = rasterKernels(),
        .sortBlock = faceSorter(),
        .fill = fillStateOf(target, settings),
        .polygons = 0,
        .shadings = 0,
        .transparent = {},
    };
    findTransparent(&drawer);
    drawPasses(&drawer, !(settings->renderFlags & renderBackCulled));
    statistics->framePolygons += drawer.polygons;
    statistics->litVertices += drawer.shadings;
}
