// import/obj/mtl.cpp - material libraries
//
// Each line is a keyword, one blank and a value. A keyword after a blank or tab is an unknown one.
#include "import/common/names.h"
#include "import/common/numbers.h"
#include "import/obj/obj.h"
#include "import/common/sanitize.h"
#include "platform/files.h"

#include <string.h>

constexpr int mtlLineRoom = 256;                       // the rest of a longer line is read as another line
constexpr int64_t mtlBytesLimit = int64_t{ 64 } << 20; // of a library; a model can name any file on the computer

// Where the values of a library are stored.
struct MtlTarget
{
    Material* material;
    char (*texture)[nameRoom];
    char (*opacity)[nameRoom];
};

// Receives the values when all material slots are in use.
struct MtlScratch
{
    Material material;
    char texture[nameRoom];
    char opacity[nameRoom];
};

static MtlTarget targetOf(Mesh* mesh, int32_t slot, MtlScratch* scratch)
{
    if (slot >= materialLimit)
        return { &scratch->material, &scratch->texture, &scratch->opacity };
    return { &mesh->materials[slot], &mesh->textureNames[slot], &mesh->opacityNames[slot] };
}

// The slot of the material with this name, or the slot after the last material when there is none.
static int32_t slotOf(const Mesh* mesh, const NameTable& names, const char* name)
{
    int32_t slot = findName(&names, name);
    return slot >= 0 ? slot : mesh->materialCount;
}

// Checks numbers of a library, each by itself.
template <size_t count>
static void checkValues(Report* report, float (&values)[count])
{
    note(report, valuesZeroed, -1, sanitizeEach(values));
}

static void readColour(float* colour, const char* value, Report* report)
{
    float read[3];
    if (scanFloats(value, read, 3) < 3)
        return;
    checkValues(report, read);
    memcpy(colour, read, sizeof read);
}

static void readShininess(Material* material, const char* value, Report* report)
{
    float shininess[1];
    if (scanFloats(value, shininess, 1) < 1)
        return;
    checkValues(report, shininess);
    material->shininess = static_cast<int32_t>(shininess[0]);
}

static void readOpacity(Material* material, const char* value, Report* report)
{
    float opacity[1];
    if (scanFloats(value, opacity, 1) < 1)
        return;
    checkValues(report, opacity);
    if (!(opacity[0] >= 0.01f))
        opacity[0] = 0;
    if (opacity[0] > 1)
        opacity[0] = 1;
    material->transparency = 1 - opacity[0];
}

static void readTexture(char (&slot)[nameRoom], const char* value, Report* report)
{
    note(report, namesCut, -1, isNameCut(value));
    copyNameFromText(slot, value);
}

static void readValue(const MtlTarget& target, const char* keyword, const char* value, Report* report)
{
    if (strcmp(keyword, "Ns") == 0)
        readShininess(target.material, value, report);
    else if (strcmp(keyword, "Ka") == 0)
        readColour(target.material->ambient, value, report);
    else if (strcmp(keyword, "Kd") == 0)
        readColour(target.material->diffuse, value, report);
    else if (strcmp(keyword, "Ks") == 0)
        readColour(target.material->specular, value, report);
    else if (strcmp(keyword, "d") == 0)
        readOpacity(target.material, value, report);
    else if (strcmp(keyword, "map_Kd") == 0)
        readTexture(*target.texture, value, report);
    else if (strcmp(keyword, "map_d") == 0)
        readTexture(*target.opacity, value, report);
}

static void readLibrary(Mesh* mesh, FILE* file, Report* report)
{
    NameTable names;
    startNames(&names, mesh->materialNames);
    addFoundNames(&names, mesh->materialCount);
    MtlScratch scratch = {};
    MtlTarget target = targetOf(mesh, mesh->materialCount, &scratch);
    char line[mtlLineRoom];
    while (fgets(line, sizeof line, file))
    {
        if (strlen(line) == sizeof line - 1 && !strchr(line, '\n'))
            noteDetail(report, linesTooLong, -1, "in the material library, longer than %d bytes", mtlLineRoom - 2);
        char* value = strchr(line, ' ');
        if (!value)
            continue;
        *value++ = 0;
        value[strcspn(value, "\r\n")] = 0;
        if (strcmp(line, "newmtl") == 0)
            target = targetOf(mesh, slotOf(mesh, names, value), &scratch);
        else
            readValue(target, line, value, report);
    }
}

void ReadMtlFile(Mesh* mesh, const char* path, Report* report)
{
    FILE* file = *path ? openFile(path, "rb") : nullptr;
    if (!file)
        return;
    int64_t sizeBytes = measureFile(file);
    if (sizeBytes >= 0 && sizeBytes <= mtlBytesLimit)
        readLibrary(mesh, file, report);
    else
        noteDetail(report, libraryMissing, -1, "it is larger than 64 MiB or has no size");
    fclose(file);
}
