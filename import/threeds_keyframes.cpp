// import/threeds_keyframes.cpp - the keyframer's pivots
#include "import/threeds_parts.h"

#include "import/sanitize.h"

#include <math.h>
#include <iterator>

static ThreeDsObject* findObject(ThreeDsReadContext* context, const char* name)
{
    for (int32_t i = 0; i < context->objectCount; ++i)
    {
        ThreeDsObject* object = &context->objects[i];
        if (strcmp(context->mesh->groupNames[object->groupIndex], name) == 0)
            return object;
    }
    return nullptr;
}

static int readNodeHeader(ThreeDsReadContext* context)
{
    char name[nameRoom];
    constexpr size_t flagsAndParentBytes = 6;
    if (!readChunkName(context, name) || !takeBytes(&context->source, flagsAndParentBytes))
        return 0;
    context->nodeObject = findObject(context, name);
    return 1;
}

// Only the first pivot of a node counts.
static int readPivot(ThreeDsReadContext* context)
{
    float pivot[3];
    for (float& value : pivot)
    {
        value = takeNumber<float>(&context->source);
        SanitizeFloat(&value);
    }
    if (context->source.bad)
        return 0;
    if (context->nodeObject)
        memcpy(context->nodeObject->pivot, pivot, sizeof pivot);
    context->nodeObject = nullptr;
    return 1;
}

static int readNodeChild(ThreeDsReadContext* context, const Chunk& child)
{
    switch (child.id)
    {
    case chunkNodeHeader: return readNodeHeader(context);
    case chunkPivot: return readPivot(context);
    default: return 1;
    }
}

static int readKeyframerChild(ThreeDsReadContext* context, const Chunk& child)
{
    if (child.id != chunkObjectNode)
        return 1;
    context->nodeObject = nullptr;
    return readChildren(context, child, emptyChildEndsSection, readNodeChild);
}

int readKeyframer(ThreeDsReadContext* context, const Chunk& chunk)
{
    return readChildren(context, chunk, emptyChildEndsSection, readKeyframerChild);
}

// A frame that is nearly flat can throw vertices so far that squares of lengths are no numbers any more; those go to
// the origin.
static void keepReachable(float (&position)[3])
{
    constexpr float farthest = 1e18f;
    bool reachable = fabsf(position[0]) < farthest && fabsf(position[1]) < farthest && fabsf(position[2]) < farthest;
    if (!reachable)
        position[0] = position[1] = position[2] = 0;
}

// Whether the matrix moves nothing: coordinates are finite and zeros positive, so that products with 1 and 0 keep them.
static bool isIdentity(const Matrix& matrix)
{
    bool same = true;
    for (size_t i = 0; i < std::size(matrix.m); ++i)
        same &= matrix.m[i] == identityMatrix.m[i];
    return same;
}

// An object without an inverse stays where it is.
static void applyPivot(Mesh* mesh, const ThreeDsObject& object)
{
    Matrix move, inverse, translation;
    if (!invertMatrix(&inverse, &object.matrix))
        return;
    setTranslation(&translation, -object.pivot[0], -object.pivot[1], -object.pivot[2]);
    multiplyMatrices(&move, &object.matrix, &translation);
    multiplyMatrices(&move, &move, &inverse);
    if (isIdentity(move))
        return;
    for (int32_t i = object.firstVertex; i < object.endVertex; ++i)
    {
        transformPoint(mesh->vertices[i].position, &move, mesh->vertices[i].position);
        keepReachable(mesh->vertices[i].position);
    }
}

void applyPivots(ThreeDsReadContext* context)
{
    int32_t count = context->objectCount;
    if (count == slotCount - 1)
        --count; // a full table's last record stays out, on purpose
    for (int32_t i = 0; i < count; ++i)
        applyPivot(context->mesh, context->objects[i]);
}
