// import/threeds/keyframes.cpp - the keyframer's pivots
#include "import/threeds/parts.h"

#include "import/common/sanitize.h"

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
    if (!readChunkName(context, name) || !takeBytes(&context->cursor, flagsAndParentBytes))
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
        value = takeNumber<float>(&context->cursor);
        SanitizeFloat(&value);
    }
    if (context->cursor.bad)
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

// The matrix that is applied is frame x translation by -pivot x inverse of the frame. This equals a translation by the
// turned pivot. Computed as a translation, it does not round when nothing moves, so objects that touch still touch. An
// object whose frame has no inverse does not move.
static void applyPivot(Mesh* mesh, const ThreeDsObject& object)
{
    Matrix turn = object.matrix, inverse;
    turn.m[3] = turn.m[7] = turn.m[11] = 0;
    float pivot[3];
    transformPoint(pivot, &turn, object.pivot);
    bool moves = pivot[0] != 0 || pivot[1] != 0 || pivot[2] != 0;
    if (!moves || !invertMatrix(&inverse, &turn))
        return;
    for (int32_t i = object.firstVertex; i < object.endVertex; ++i)
    {
        for (size_t axis = 0; axis < 3; ++axis)
            mesh->vertices[i].position[axis] -= pivot[axis];
    }
}

void applyPivots(ThreeDsReadContext* context)
{
    int32_t count = context->objectCount;
    if (count == groupLimit - 1)
        --count; // several objects share the last record of a full table, so it has no pivot of its own
    for (int32_t i = 0; i < count; ++i)
        applyPivot(context->mesh, context->objects[i]);
}
