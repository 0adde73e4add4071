// export/obj.cpp - the OBJ and MTL writer
#include "export/obj.h"
#include "export/face_order.h"
#include "export/number_texts.h"
#include "export/save_progress.h"
#include "export/text_writer.h"
#include "export/written_names.h"
#include "platform/file_names.h"

// A single texture coordinate is the placeholder (0, 0) that readers give a mesh without any.
static int32_t writtenUvCount(const Mesh* mesh)
{
    return mesh->uvCount == 1 ? 0 : mesh->uvCount;
}

static int32_t countLiveFaces(const Mesh* mesh)
{
    int32_t count = 0;
    for (int32_t f = 0; f < mesh->faceCount; ++f)
        count += (mesh->faceAttributes[f] & faceDeleted) == 0;
    return count;
}

static void writeObjVertices(TextWriter* writer, const Mesh* mesh, SaveProgress* progress)
{
    for (int32_t i = 0; i < mesh->vertexCount; ++i)
    {
        const float* position = mesh->vertices[i].position;
        char* out = textRoom(writer);
        *out++ = 'v';
        for (int k = 0; k < 3; ++k)
        {
            *out++ = ' ';
            out = formatEight(out, position[k]);
        }
        *out++ = ' ';
        textWritten(writer, putLineEnd(out));
        countSaved(progress);
    }
}

static void writeObjUvs(TextWriter* writer, const Mesh* mesh, SaveProgress* progress)
{
    int32_t count = writtenUvCount(mesh);
    for (int32_t i = 0; i < count; ++i)
    {
        char* out = textRoom(writer);
        memcpy(out, "vt ", 3);
        out = formatSix(out + 3, mesh->uvs[i].u);
        *out++ = ' ';
        out = formatSix(out, mesh->uvs[i].v);
        *out++ = ' ';
        textWritten(writer, putLineEnd(out));
        countSaved(progress);
    }
}

static void writeObjFace(TextWriter* writer, const Mesh* mesh, const NumberTexts& numbers, int32_t f, bool withUvs)
{
    const Corners& corners = mesh->faces[f];
    const Corners& uvs = mesh->faceUvs[f];
    char* out = textRoom(writer);
    *out++ = (mesh->faceAttributes[f] & faceLine) != 0 ? 'l' : 'f';
    for (size_t k = 0; k < 4 && corners[k] != noCorner; ++k)
    {
        *out++ = ' ';
        out = formatRepeated(numbers, out, static_cast<int32_t>(corners[k] + 1));
        if (withUvs)
        {
            *out++ = '/';
            out = formatRepeated(numbers, out, static_cast<int32_t>(uvs[k] + 1));
        }
    }
    textWritten(writer, putLineEnd(out));
}

// What the OBJ file is made of, and how far it has come.
struct ObjText
{
    const Mesh* mesh;
    const FaceOrder* order;
    NumberTexts numbers; // of corners and their texture coordinates
    std::string libraryName;
    SaveProgress progress;
    TextWriter* writer;
    bool withUvs;
    int32_t lastMaterial; // kept from one group to the next: a group that goes on with it needs no "usemtl" line
};

static void groupMet(void* context, int32_t group)
{
    ObjText* text = static_cast<ObjText*>(context);
    WrittenName written;
    if (text->mesh->groupCount > 0)
        writeLine(text->writer, "g %s", writtenName(text->mesh->groupNames, group, lineBreakers, &written));
}

static void faceMet(void* context, int32_t material, int32_t f)
{
    ObjText* text = static_cast<ObjText*>(context);
    if (material != text->lastMaterial && text->mesh->materialCount > 0)
    {
        text->lastMaterial = material;
        WrittenName written;
        writeLine(text->writer, "usemtl %s", writtenName(text->mesh->materialNames, material, lineBreakers, &written));
    }
    writeObjFace(text->writer, text->mesh, text->numbers, f, text->withUvs);
    countSaved(&text->progress);
}

static void writeObjText(TextWriter* writer, void* context)
{
    ObjText* text = static_cast<ObjText*>(context);
    const Mesh* mesh = text->mesh;
    int32_t uvs = writtenUvCount(mesh), faces = countLiveFaces(mesh);
    startSaveProgress(&text->progress, int64_t{ mesh->vertexCount } + uvs + faces);
    writeLine(writer, "#vertices  %d", mesh->vertexCount);
    writeLine(writer, "#tvertices %d", uvs);
    writeLine(writer, "#faces     %d", faces);
    writeLine(writer, "#groups    %d", mesh->groupCount);
    writeLine(writer, "#materials %d", mesh->materialCount);
    writeObjVertices(writer, mesh, &text->progress);
    writeObjUvs(writer, mesh, &text->progress);
    if (mesh->materialCount > 0 && nameFits(text->libraryName.c_str(), lineBreakers))
        writeLine(writer, "mtllib %s", text->libraryName.c_str());
    text->writer = writer;
    text->withUvs = uvs > 0;
    text->lastMaterial = -1;
    visitFaces(text->order, text, groupMet, faceMet);
}

static void writeMtlColour(TextWriter* writer, const char* keyword, const float* colour, float level)
{
    writeLine(writer, "%s %f %f %f", keyword, colour[0] * level, colour[1] * level, colour[2] * level);
}

static void writeMtlMap(TextWriter* writer, const char* keyword, const char* fileName)
{
    if (*fileName && nameFits(fileName, lineBreakers))
        writeLine(writer, "%s %s", keyword, fileName);
}

static void writeMtlText(TextWriter* writer, void* context)
{
    const Mesh* mesh = *static_cast<const Mesh**>(context);
    for (int32_t m = 0; m < mesh->materialCount; ++m)
    {
        const Material* material = &mesh->materials[m];
        WrittenName written;
        writeLine(writer, "newmtl %s", writtenName(mesh->materialNames, m, lineBreakers, &written));
        writeLine(writer, "Ns %d", material->shininess);
        writeMtlColour(writer, "Ka", material->ambient, material->ambientLevel);
        writeMtlColour(writer, "Kd", material->diffuse, material->diffuseLevel);
        writeMtlColour(writer, "Ks", material->specular, material->specularLevel);
        writeLine(writer, "d %f", 1.0f - material->transparency);
        writeMtlMap(writer, "map_Kd", mesh->textureNames[m]);
        writeMtlMap(writer, "map_d", mesh->opacityNames[m]);
    }
}

// Empty when the path is too short to have an extension.
static std::string mtlPathOf(const std::string& objPath)
{
    constexpr size_t extensionBytes = 4;
    if (objPath.size() <= extensionBytes)
        return "";
    return objPath.substr(0, objPath.size() - extensionBytes) + ".mtl";
}

// Returns 1 also when there is no library to be written; the output then stays cleared.
static int writeMtlOutput(OutputFile* output, const Mesh* mesh, const char* objPath)
{
    std::string path = mtlPathOf(objPath);
    if (mesh->materialCount <= 0 || path.empty())
        return 1;
    return writeTextOutput(output, path, writeMtlText, &mesh);
}

int WriteMtlFile(const Mesh* mesh, const char* objPath)
{
    OutputFile output = {};
    return commitOutputs(&output, 1, writeMtlOutput(&output, mesh, objPath) != 0);
}

// Every face has three corners or more, with or without texture coordinates.
static int makeObjNumbers(NumberTexts* numbers, const Mesh* mesh)
{
    int32_t uvs = writtenUvCount(mesh);
    int64_t uses = int64_t{ mesh->faceCount } * (uvs > 0 ? 6 : 3);
    return makeNumberTexts(numbers, mesh->vertexCount > uvs ? mesh->vertexCount : uvs, uses);
}

int WriteObjFile(const Mesh* mesh, const char* path, const char* fileTitle)
{
    OutputFile outputs[2] = {}; // the MTL file first: no OBJ file names one that is not there
    FaceOrder order;
    if (!makeFaceOrder(&order, mesh))
        return 0;
    ObjText text = { mesh, &order, {}, withoutExtension(fileTitle) + ".mtl", {}, nullptr, false, -1 };
    int ok = makeObjNumbers(&text.numbers, mesh) && writeTextOutput(&outputs[1], path, writeObjText, &text);
    if (ok)
        ok = writeMtlOutput(&outputs[0], mesh, path);
    endSaveProgress(&text.progress);
    freeNumberTexts(&text.numbers);
    freeFaceOrder(&order);
    return commitOutputs(outputs, 2, ok != 0);
}
