// import/threeds/threeds.cpp - reading the sections of a 3DS file and completing the mesh
#include "import/threeds/threeds.h"

#include "import/threeds/parts.h"
#include "model/memory.h"
#include "model/normals.h"
#include "platform/boxes.h"
#include "platform/files.h"
#include "tools/uvs.h"

#include <algorithm>

// Cosine and sine of the turn about x. The angle is 1.57075 rather than a right angle, because exported files hold
// coordinates turned by 1.57075, and reading a model again must give the same coordinates.
constexpr float turnCosine = 0x1.84a222p-15f, turnSine = 1.0f;

static int readEditorChild(ThreeDsReadContext* context, const Chunk& child)
{
    switch (child.id)
    {
    case chunkObject: return readObject(context, child);
    case chunkMaterial: return readMaterial(context, child);
    default: return 1;
    }
}

static int readEditor(ThreeDsReadContext* context, const Chunk& chunk)
{
    return readChildren(context, chunk, emptyChildEndsSection, readEditorChild);
}

static int readMainChild(ThreeDsReadContext* context, const Chunk& child)
{
    switch (child.id)
    {
    case chunkEditor: return readEditor(context, child);
    case chunkKeyframer: return readKeyframer(context, child);
    default: return 1;
    }
}

static int readChunks(ThreeDsReadContext* context)
{
    Chunk first;
    if (!readChunkHeader(context, &first))
        return failReading(context->report, 0, "the file is shorter than a chunk");
    switch (first.id)
    {
    case chunkEditor: return readEditor(context, first);
    case chunkMain: return readChildren(context, first, emptyChildFails, readMainChild);
    default: return failReading(context->report, 0, "the first chunk is %04X, not 4D4D or 3D3D", first.id);
    }
}

// The file's z axis becomes the display's y axis.
static void turnUpright(Mesh* mesh)
{
    for (int32_t i = 0; i < mesh->vertexCount; ++i)
    {
        float* position = mesh->vertices[i].position;
        float y = position[1], z = position[2];
        position[1] = turnCosine * y + turnSine * z;
        position[2] = -turnSine * y + turnCosine * z;
    }
}

static int read3ds(ThreeDsReadContext* context, bool keyframes, bool normals)
{
    Mesh* mesh = context->mesh;
    if (!readChunks(context))
        return 0;
    if (mesh->vertexCount == 0)
        return failForLackOf(context->report, "no vertex");
    mesh->liveFaceCount = mesh->faceCount;
    mesh->lineCount = 0;
    mesh->groupCount = std::max(mesh->groupCount, context->groupsUsed);
    mesh->materialCount = std::max(mesh->materialCount, context->slotsUsed);
    if (keyframes && context->objectCount > 0)
        applyPivots(context);
    turnUpright(mesh);
    if (normals)
    {
        addFaceNormals(mesh, 0, mesh->faceCount);
        finishNormals(mesh);
    }
    computeBounds(mesh);
    return mesh->uvCount > 0 || addPlaceholderUv(mesh);
}

int Load3dsFile(Mesh* mesh, const char* path, bool keyframes, Report* report, bool normals)
{
    auto* context = static_cast<ThreeDsReadContext*>(tableAlloc(sizeof(ThreeDsReadContext)));
    FILE* file = context ? openFile(path, "rb") : nullptr;
    int64_t sizeBytes = file ? measureFile(file) : 0;
    int ok = 0;
    if (sizeBytes > 0)
    {
        context->mesh = mesh;
        context->report = report;
        startBytes(&context->cursor, file);
        showProgress("LOADING 3DS.....");
        ok = read3ds(context, keyframes, normals);
        closeProgress();
    }
    else if (file)
        failReading(report, -1, "the file is empty");
    if (file)
        fclose(file);
    tableFree(context);
    if (sizeBytes > 0 && !ok)
        messageBox("Unable to read file", "Error", iconNone);
    return ok;
}
