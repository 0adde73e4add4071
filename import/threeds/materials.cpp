// import/threeds/materials.cpp - material definitions, and their places in the mesh
#include "import/threeds/parts.h"

#include "import/common/sanitize.h"

constexpr uint16_t shadingPhong = 3, shadingMetal = 4;
constexpr uint32_t selfIlluminated = 4; // in a material's first reserved word

constexpr Material chunkMaterialDefaults = {
    .ambient = { 0, 0, 0 },
    .diffuse = { 0, 0, 0 },
    .specular = { 0, 0, 0 },
    .extra = { 0, 0, 0 },
    .ambientLevel = 0.1f,
    .diffuseLevel = 1,
    .specularLevel = 0.5f,
    .shadingMode = 1,
    .shininess = 1,
    .reserved1 = { 0, 0, 0 },
    .reserved2 = 0,
    .reserved3 = 0,
    .transparency = 0,
    .reserved4 = 0,
};

static float takeUnitFloat(ThreeDsReadContext* context)
{
    float value = takeNumber<float>(&context->cursor);
    note(context->report, valuesZeroed, bytePosition(&context->cursor) - 1, !SanitizeFloat(&value));
    return value < 0 ? 0 : value > 1 ? 1 : value;
}

// Only the first child can be the colour; later children are ignored.
static int readColour(ThreeDsReadContext* context, float (&colour)[3])
{
    Chunk chunk;
    if (!readChunkHeader(context, &chunk) || (chunk.id != chunkColour24 && chunk.id != chunkColourFloat))
        return 0;
    for (float& channel : colour)
        channel = chunk.id == chunkColour24 ? static_cast<float>(takeNumber<uint8_t>(&context->cursor)) / 255.0f
                                            : takeUnitFloat(context);
    return !context->cursor.bad;
}

static int readPercentage(ThreeDsReadContext* context, float* value)
{
    Chunk chunk;
    if (!readChunkHeader(context, &chunk) || (chunk.id != chunkPercentageInt && chunk.id != chunkPercentageFloat))
        return 0;
    *value = chunk.id == chunkPercentageInt ? static_cast<float>(takeNumber<uint16_t>(&context->cursor)) * 0.01f
                                            : takeUnitFloat(context);
    return !context->cursor.bad;
}

static int readShininess(ThreeDsReadContext* context, Material* material)
{
    float value;
    if (!readPercentage(context, &value))
        return 0;
    auto exponent = static_cast<int32_t>(value * 50.0f); // at most 32,767
    material->shininess = exponent > 1 ? exponent : 1;
    return 1;
}

static int readTransparency(ThreeDsReadContext* context, Material* material)
{
    float value;
    if (!readPercentage(context, &value))
        return 0;
    material->transparency = value < 0.01f ? 0 : value > 1 ? 1 : value;
    return 1;
}

static int readSelfIllumination(ThreeDsReadContext* context, Material* material)
{
    float value;
    if (!readPercentage(context, &value))
        return 0;
    if (value != 0)
    {
        material->reserved1[0] = selfIlluminated;
        context->selfIllumination = value;
    }
    return 1;
}

// The name is all of the chunk's data, cut to the size of a slot.
static int readTextureChild(ThreeDsReadContext* context, const Chunk& child)
{
    if (child.id != chunkMapName)
        return 1;
    int64_t dataBytes = child.length > chunkHeaderBytes ? int64_t{ child.length } - chunkHeaderBytes : 0;
    if (dataBytes > bytesLeft(&context->cursor))
        return 0;
    auto kept = static_cast<size_t>(dataBytes < nameRoom ? dataBytes : nameRoom - 1);
    int64_t byte = bytePosition(&context->cursor);
    const uint8_t* data = takeBytes(&context->cursor, kept);
    if (!data)
        return 0;
    bool ends = memchr(data, 0, kept) != nullptr;
    note(context->report, namesCut, byte, !ends && static_cast<int64_t>(kept) < dataBytes);
    char* texture = context->material->texture;
    memset(texture, 0, nameRoom);
    memcpy(texture, data, strnlen(reinterpret_cast<const char*>(data), kept));
    return 1;
}

static int readMaterialChild(ThreeDsReadContext* context, const Chunk& child)
{
    Material* material = &context->material->material;
    switch (child.id)
    {
    case chunkMaterialName: return readChunkName(context, context->material->name);
    case chunkAmbient: return readColour(context, material->ambient);
    case chunkDiffuse: return readColour(context, material->diffuse);
    case chunkSpecular: return readColour(context, material->specular);
    case chunkShininess: return readShininess(context, material);
    case chunkShininessStrength: return readPercentage(context, &material->specularLevel);
    case chunkTransparency: return readTransparency(context, material);
    case chunkSelfIllumination: return readSelfIllumination(context, material);
    case chunkShading: context->shading = takeNumber<uint16_t>(&context->cursor); return !context->cursor.bad;
    case chunkTextureMap: return readChildren(context, child, emptyChildFails, readTextureChild);
    default: return 1;
    }
}

int readMaterial(ThreeDsReadContext* context, const Chunk& chunk)
{
    ThreeDsMaterial* entry = &context->materials[context->materialCount];
    note(context->report, materialsPastLimit, bytePosition(&context->cursor), context->materialsUsed == materialLimit);
    if (context->materialsUsed == context->materialCount)
        ++context->materialsUsed;
    context->materialCount += context->materialCount < materialLimit - 1;
    *entry = { -1, chunkMaterialDefaults, "", "" };
    context->material = entry;
    context->shading = shadingPhong;
    if (!readChildren(context, chunk, emptyChildFails, readMaterialChild))
        return 0;
    Material* material = &entry->material;
    if (material->reserved1[0] & selfIlluminated)
        material->diffuseLevel = context->selfIllumination; // it scales the diffuse colour: nothing glows here
    if (context->shading == shadingMetal)
        memcpy(material->specular, material->diffuse, sizeof material->specular);
    return 1;
}

static ThreeDsMaterial* findMaterial(ThreeDsReadContext* context, const char* name)
{
    for (int32_t i = 0; i < context->materialsUsed; ++i)
    {
        if (strcmp(context->materials[i].name, name) == 0)
            return &context->materials[i];
    }
    return nullptr;
}

int32_t placeMaterial(ThreeDsReadContext* context, const char* name)
{
    Mesh* mesh = context->mesh;
    ThreeDsMaterial* entry = findMaterial(context, name);
    if (!entry)
    {
        noteDetail(context->report, materialsMissing, bytePosition(&context->cursor), "the first is \"%s\"", name);
        return 0;
    }
    if (entry->slotIndex < 0)
    {
        int32_t slot = mesh->materialCount;
        mesh->materials[slot] = entry->material;
        memcpy(mesh->materialNames[slot], entry->name, nameRoom);
        memcpy(mesh->textureNames[slot], entry->texture, nameRoom);
        entry->slotIndex = slot;
        context->slotsUsed = slot + 1;
        mesh->materialCount += slot < materialLimit - 1;
    }
    return entry->slotIndex;
}
