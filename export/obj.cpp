// export/obj.cpp - the OBJ and MTL writer
#include "export/obj.h"
#include "export/face_order.h"
#include "export/file_names.h"
#include "export/output_file.h"
#include "export/save_progress.h"
#include "export/text_writer.h"
#include "platform/boxes.h"
#include "platform/dialogs.h"
#include "platform/file_names.h"
#include "platform/files.h"

#include <string>

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

static void startObjProgress(SaveProgress* progress, const Mesh* mesh)
{
    startSaveProgress(progress, int64_t{ mesh->vertexCount } + writtenUvCount(mesh) + countLiveFaces(mesh));
}

static void writeVertices(TextWriter* writer, const Mesh* mesh, SaveProgress* progress)
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
        textWritten(writer, endLine(out));
        countSaved(progress);
    }
}

static void writeUvs(TextWriter* writer, const Mesh* mesh, SaveProgress* progress)
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
        textWritten(writer, endLine(out));
        countSaved(progress);
    }
}

static void writeFace(TextWriter* writer, const Mesh* mesh, int32_t f, int withUvs)
{
    const Corners& corners = mesh->faces[f];
    const Corners& uvs = mesh->faceUvs[f];
    char* out = textRoom(writer);
    *out++ = (mesh->faceAttributes[f] & faceLine) != 0 ? 'l' : 'f';
    for (size_t k = 0; k < 4 && corners[k] != noCorner; ++k)
    {
        *out++ = ' ';
        out = formatInt(out, static_cast<int32_t>(corners[k] + 1));
        if (withUvs)
        {
            *out++ = '/';
            out = formatInt(out, static_cast<int32_t>(uvs[k] + 1));
        }
    }
    textWritten(writer, endLine(out));
}

struct FaceOutput
{
    TextWriter* writer;
    const Mesh* mesh;
    SaveProgress* progress;
    int withUvs;
    int32_t lastMaterial; // not reset between groups: the same material goes on without a line
};

static void groupMet(void* context, int32_t group)
{
    FaceOutput* output = static_cast<FaceOutput*>(context);
    if (output->mesh->groupCount > 0)
        writeLine(output->writer, "g %s", output->mesh->groupNames[group]);
}

static void faceMet(void* context, int32_t material, int32_t f)
{
    FaceOutput* output = static_cast<FaceOutput*>(context);
    if (material != output->lastMaterial && output->mesh->materialCount > 0)
    {
        output->lastMaterial = material;
        writeLine(output->writer, "usemtl %s", output->mesh->materialNames[material]);
    }
    writeFace(output->writer, output->mesh, f, output->withUvs);
    countSaved(output->progress);
}

static void writeObjText(TextWriter* writer, const Mesh* mesh, const std::string& libraryName, SaveProgress* progress)
{
    writeLine(writer, "#vertices  %d", mesh->vertexCount);
    writeLine(writer, "#tvertices %d", writtenUvCount(mesh));
    writeLine(writer, "#faces     %d", countLiveFaces(mesh));
    writeLine(writer, "#groups    %d", mesh->groupCount);
    writeLine(writer, "#materials %d", mesh->materialCount);
    writeVertices(writer, mesh, progress);
    writeUvs(writer, mesh, progress);
    if (mesh->materialCount > 0)
        writeLine(writer, "mtllib %s", libraryName.c_str());
    FaceOutput output = { writer, mesh, progress, writtenUvCount(mesh) > 0, -1 };
    visitFacesInOrder(mesh, &output, groupMet, faceMet);
}

static void writeColour(TextWriter* writer, const char* keyword, const float* colour, float level)
{
    writeLine(writer, "%s %f %f %f", keyword, colour[0] * level, colour[1] * level, colour[2] * level);
}

static void writeMtlText(TextWriter* writer, const Mesh* mesh)
{
    for (int32_t m = 0; m < mesh->materialCount; ++m)
    {
        const Material* material = &mesh->materials[m];
        writeLine(writer, "newmtl %s", mesh->materialNames[m]);
        writeLine(writer, "Ns %d", material->shininess);
        writeColour(writer, "Ka", material->ambient, material->ambientLevel);
        writeColour(writer, "Kd", material->diffuse, material->diffuseLevel);
        writeColour(writer, "Ks", material->specular, material->specularLevel);
        writeLine(writer, "d %f", 1.0f - material->transparency);
        if (*mesh->textureNames[m])
            writeLine(writer, "map_Kd %s", mesh->textureNames[m]);
        if (*mesh->opacityNames[m])
            writeLine(writer, "map_d %s", mesh->opacityNames[m]);
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

static std::string libraryNameOf(const char* fileTitle)
{
    return withoutExtension(fileTitle) + ".mtl";
}

void WriteMtlFile(const Mesh* mesh, const char* objPath)
{
    std::string path = mtlPathOf(objPath);
    if (mesh->materialCount <= 0 || path.empty())
        return;
    FILE* file = openFile(path.c_str(), "wb");
    if (!file)
        return;
    TextWriter writer;
    startText(&writer, file);
    writeMtlText(&writer, mesh);
    finishText(&writer);
    fclose(file);
}

int SaveObjFile(const Mesh* mesh, char* name, size_t nameRoomBytes)
{
    char path[saveNameRoom], title[saveNameRoom] = "";
    proposeName(path, withoutExtension(name), ".obj");
    FileDialog dialog = { .filterText = "wavefront obj files",
                          .filterPattern = "*.obj",
                          .title = "save mesh",
                          .defaultExtension = "obj",
                          .flags = dialogOverwritePrompt | dialogHideReadOnly,
                          .path = path,
                          .pathRoom = saveNameCharacters,
                          .fileTitle = title,
                          .fileTitleRoom = saveNameCharacters };
    if (!chooseFileToSave(&dialog))
        return 0;
    snprintf(name, nameRoomBytes, "%s", title);
    FILE* file = openFile(path, "wb");
    if (!file)
    {
        messageBox(path, "Error cannot create", iconStop);
        return 0;
    }
    SaveProgress progress;
    startObjProgress(&progress, mesh);
    TextWriter writer;
    startText(&writer, file);
    writeObjText(&writer, mesh, libraryNameOf(title), &progress);
    finishText(&writer);
    fclose(file);
    WriteMtlFile(mesh, path);
    closeProgress();
    return 1;
}

// Opened and written, closed but not yet in place.
static int prepareObj(OutputFile* output, const Mesh* mesh, const char* objPath, const char* fileTitle)
{
    if (!openOutput(output, objPath))
        return 0;
    SaveProgress progress;
    startObjProgress(&progress, mesh);
    TextWriter writer;
    startText(&writer, output->file);
    writeObjText(&writer, mesh, libraryNameOf(fileTitle), &progress);
    int whole = finishText(&writer);
    closeProgress();
    return closeOutput(output, whole);
}

static int prepareMtl(OutputFile* output, const Mesh* mesh, const char* mtlPath)
{
    if (!openOutput(output, mtlPath))
        return 0;
    TextWriter writer;
    startText(&writer, output->file);
    writeMtlText(&writer, mesh);
    return closeOutput(output, finishText(&writer));
}

int writeObjFiles(const Mesh* mesh, const char* objPath, const char* fileTitle)
{
    OutputFile outputs[2] = {}; // the MTL file first: no OBJ file names one that is not there
    std::string mtlPath = mtlPathOf(objPath);
    int withMtl = mesh->materialCount > 0 && !mtlPath.empty();
    if (!prepareObj(&outputs[1], mesh, objPath, fileTitle) ||
        (withMtl && !prepareMtl(&outputs[0], mesh, mtlPath.c_str())))
    {
        abandonOutputs(outputs, 2);
        return 0;
    }
    return withMtl ? commitOutputs(outputs, 2) : commitOutputs(outputs + 1, 1);
}
