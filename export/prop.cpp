// export/prop.cpp - the Poser prop writer
#include "export/prop.h"
#include "export/file_names.h"
#include "export/output_file.h"
#include "export/save_progress.h"
#include "export/text_writer.h"
#include "platform/boxes.h"
#include "platform/dialogs.h"
#include "platform/file_names.h"
#include "platform/files.h"

#include <string>

struct Channel
{
    const char* kindAndName;
    const char* label; // Poser resolves "GetStringRes" itself
    const char* min;
    const char* trackingScale;
    int isStatic;
    int hidden;
    int initialValue;
    int withStaticValue;
};

// clang-format off
static const Channel channels[] = {
    { "xOffsetA OriginX", "GetStringRes(1028,44)", "-10000",  "0.004", 1, 1, 0, 1 },
    { "yOffsetA OriginY", "GetStringRes(1028,45)", "-10000",  "0.004", 1, 1, 0, 1 },
    { "zOffsetA OriginZ", "GetStringRes(1028,46)", "-10000",  "0.004", 1, 1, 0, 1 },
    { "rotateX xRotate",  "xrot",                  "-10000",  "1",     0, 0, 0, 0 },
    { "rotateY yRotate",  "yrot",                  "-10000",  "1",     0, 0, 0, 0 },
    { "rotateZ zRotate",  "zrot",                  "-10000",  "1",     0, 0, 0, 0 },
    { "scale Scale",      "GetStringRes(1028,5)",  "0.001",   "0.004", 0, 0, 1, 0 },
    { "scaleX xScale",    "GetStringRes(1028,6)",  "0.001",   "0.004", 0, 0, 1, 0 },
    { "scaleY yScale",    "GetStringRes(1028,7)",  "0.001",   "0.004", 0, 0, 1, 0 },
    { "scaleZ zScale",    "GetStringRes(1028,8)",  "0.001",   "0.004", 0, 0, 1, 0 },
    { "translateX xTran", "GetStringRes(1028,12)", "-100000", "0.001", 0, 0, 0, 0 },
    { "translateY yTran", "GetStringRes(1028,13)", "-100000", "0.001", 0, 0, 0, 0 },
    { "translateZ zTran", "GetStringRes(1028,14)", "-100000", "0.001", 0, 0, 0, 0 },
    { "xOffsetB xOffB",   "xOffB",                 "-100000", "0.004", 1, 1, 0, 1 },
    { "yOffsetB yOffB",   "yOffB",                 "-100000", "0.004", 1, 1, 0, 1 },
    { "zOffsetB zOffB",   "zOffB",                 "-100000", "0.004", 1, 1, 0, 1 },
};
// clang-format on

static int64_t countCorners(const Mesh* mesh)
{
    int64_t corners = 4 * int64_t{ mesh->faceCount };
    for (int32_t f = 0; f < mesh->faceCount; ++f)
        corners -= mesh->faces[f][3] == noCorner;
    return corners;
}

// Past two thousand million corners the count no longer fits a "%d".
static void writeCount(TextWriter* writer, const char* keyword, int64_t count)
{
    writeLine(writer, "      %s %s", keyword, std::to_string(count).c_str());
}

static void writeHeader(TextWriter* writer, const Mesh* mesh)
{
    int64_t corners = countCorners(mesh);
    writeLine(writer, "{");
    writeLine(writer, "// Prop exported by Kestrelbox3 - mesh viewer and converter");
    writeLine(writer, "version");
    writeLine(writer, "   {");
    writeLine(writer, "   number 4.01");
    writeLine(writer, "   }");
    writeLine(writer, "prop %s", mesh->name);
    writeLine(writer, "   {");
    writeLine(writer, "   geomCustom");
    writeLine(writer, "      {");
    writeCount(writer, "numbVerts ", mesh->vertexCount);
    writeCount(writer, "numbTVerts", mesh->uvCount);
    writeCount(writer, "numbTSets ", corners);
    writeCount(writer, "numbElems ", mesh->faceCount);
    writeCount(writer, "numbSets  ", corners);
}

static void writePoints(TextWriter* writer, const Mesh* mesh, SaveProgress* progress)
{
    for (int32_t i = 0; i < mesh->vertexCount; ++i)
    {
        char* out = textRoom(writer);
        memcpy(out, "      v", 7);
        out += 7;
        for (int k = 0; k < 3; ++k)
        {
            *out++ = ' ';
            out = formatSix(out, mesh->vertices[i].position[k]);
        }
        *out++ = ' ';
        textWritten(writer, endLine(out));
        countSaved(progress);
    }
    for (int32_t i = 0; i < mesh->uvCount; ++i)
    {
        char* out = textRoom(writer);
        memcpy(out, "      vt ", 9);
        out = formatSix(out + 9, mesh->uvs[i].u);
        *out++ = ' ';
        out = formatSix(out, mesh->uvs[i].v);
        *out++ = ' ';
        textWritten(writer, endLine(out));
        countSaved(progress);
    }
}

static void writeFace(TextWriter* writer, const Mesh* mesh, int32_t f)
{
    const Corners& corners = mesh->faces[f];
    char* out = textRoom(writer);
    memcpy(out, "      f", 7);
    out += 7;
    for (size_t k = 0; k < 4 && corners[k] != noCorner; ++k)
    {
        *out++ = ' ';
        out = formatInt(out, static_cast<int32_t>(corners[k] + 1));
        if (mesh->uvCount > 0)
        {
            *out++ = '/';
            out = formatInt(out, static_cast<int32_t>(mesh->faceUvs[f][k] + 1));
        }
    }
    textWritten(writer, endLine(out));
}

static void writeFaces(TextWriter* writer, const Mesh* mesh, SaveProgress* progress)
{
    constexpr uint32_t noIndex = UINT32_MAX;
    uint32_t lastMaterial = noIndex, lastGroup = noIndex;
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        uint32_t material = faceMaterial(mesh->faceAttributes[f]);
        uint32_t group = faceGroup(mesh->faceAttributes[f]);
        if (material != lastMaterial)
            writeLine(writer, "      usemtl %s", mesh->materialNames[material]);
        if (group != lastGroup)
            writeLine(writer, "      g %s", mesh->groupNames[group]);
        lastMaterial = material;
        lastGroup = group;
        writeFace(writer, mesh, f);
        countSaved(progress);
    }
}

static void writeChannel(TextWriter* writer, const Channel* channel)
{
    writeLine(writer, "      %s", channel->kindAndName);
    writeLine(writer, "         {");
    writeLine(writer, "         name %s", channel->label);
    writeLine(writer, "         initValue %d", channel->initialValue);
    writeLine(writer, "         hidden %d", channel->hidden);
    writeLine(writer, "         forceLimits 0");
    writeLine(writer, "         min %s", channel->min);
    writeLine(writer, "         max 100000");
    writeLine(writer, "         trackingScale %s", channel->trackingScale);
    writeLine(writer, "         keys");
    writeLine(writer, "            {");
    writeLine(writer, "            static  %d", channel->isStatic);
    writeLine(writer, "            k  0  %d", channel->initialValue);
    writeLine(writer, "            }");
    writeLine(writer, "         interpStyleLocked 0");
    if (channel->withStaticValue)
        writeLine(writer, "         staticValue 0");
    writeLine(writer, "         }");
}

static void writeActor(TextWriter* writer, const Mesh* mesh)
{
    writeLine(writer, "prop %s", mesh->name);
    writeLine(writer, "   {");
    writeLine(writer, "   name    %s", mesh->name);
    writeLine(writer, "   on");
    writeLine(writer, "   bend              1");
    writeLine(writer, "   dynamicsLock      1");
    writeLine(writer, "   hidden            0");
    writeLine(writer, "   addToMenu         1");
    writeLine(writer, "   castsShadow       1");
    writeLine(writer, "   includeInDepthCue 1");
    writeLine(writer, "   parent UNIVERSE");
    writeLine(writer, "   channels");
    writeLine(writer, "      {");
    for (const Channel& channel : channels)
        writeChannel(writer, &channel);
    writeLine(writer, "      }");
    writeLine(writer, "   endPoint 0 0.1 0");
    writeLine(writer, "   origin %f %f %f", mesh->centre[0], mesh->centre[1], mesh->centre[2]);
    writeLine(writer, "   orientation 0 0 0");
    writeLine(writer, "   displayOrigin   0");
    writeLine(writer, "   displayMode USEPARENT");
    writeLine(writer, "   customMaterial 32");
}

static void writeColour(TextWriter* writer, const char* keyword, const float* colour, float level)
{
    writeLine(writer, "       %s %f %f %f 1", keyword, colour[0] * level, colour[1] * level, colour[2] * level);
}

static void writeMap(TextWriter* writer, const char* keyword, const char* fileName)
{
    if (!*fileName)
    {
        writeLine(writer, "       %s NO_MAP", keyword);
        return;
    }
    writeLine(writer, "       %s \"%s\"", keyword, fileName);
    writeLine(writer, "                  0 0");
}

// What every material has between its tMax and its end.
static void writeMaterialRest(TextWriter* writer, const char* texture, const char* opacity)
{
    writeLine(writer, "       tExpo 0.6");
    writeLine(writer, "       bumpStrength 1");
    writeLine(writer, "       ksIgnoreTexture 0");
    writeLine(writer, "       reflectThruLights 0");
    writeLine(writer, "       reflectThruKd 0");
    writeMap(writer, "textureMap", texture);
    writeLine(writer, "       bumpMap NO_MAP");
    writeLine(writer, "       reflectionMap NO_MAP");
    writeMap(writer, "transparencyMap", opacity);
    writeLine(writer, "       ReflectionColor 0 0 0 1");
    writeLine(writer, "       reflectionStrength 0");
    writeLine(writer, "       }");
}

static void writeMaterial(TextWriter* writer, const Mesh* mesh, int32_t m)
{
    const Material* material = &mesh->materials[m];
    writeLine(writer, "   material %s", mesh->materialNames[m]);
    writeLine(writer, "       {");
    writeColour(writer, "KdColor", material->diffuse, material->diffuseLevel);
    writeColour(writer, "KaColor", material->ambient, material->ambientLevel);
    writeColour(writer, "KsColor", material->specular, material->specularLevel);
    writeLine(writer, "       TextureColor 0.8 0.8 0.8 1");
    writeLine(writer, "       NsExponent %d", material->shininess);
    writeLine(writer, "       tMin 0");
    writeLine(writer, "       tMax %f", material->transparency);
    writeMaterialRest(writer, mesh->textureNames[m], mesh->opacityNames[m]);
}

// Poser looks for a material of this name in every prop.
static void writePreviewMaterial(TextWriter* writer)
{
    writeLine(writer, "   material Preview");
    writeLine(writer, "       {");
    writeLine(writer, "       KdColor 1 1 1 1");
    writeLine(writer, "       KaColor 0 0 0 1");
    writeLine(writer, "       KsColor 0.5 0.5 0.5 1");
    writeLine(writer, "       TextureColor 0.8 0.8 0.8 1");
    writeLine(writer, "       NsExponent 10");
    writeLine(writer, "       tMin 0");
    writeLine(writer, "       tMax 0");
    writeMaterialRest(writer, "", "");
}

static void writeMaterials(TextWriter* writer, const Mesh* mesh)
{
    int previewWritten = 0;
    for (int32_t m = 0; m < mesh->materialCount; ++m)
    {
        writeMaterial(writer, mesh, m);
        previewWritten |= strcmp(mesh->materialNames[m], "Preview") == 0;
    }
    if (!previewWritten)
        writePreviewMaterial(writer);
}

static void writePropText(TextWriter* writer, const Mesh* mesh, SaveProgress* progress)
{
    writeHeader(writer, mesh);
    writePoints(writer, mesh, progress);
    writeFaces(writer, mesh, progress);
    writeLine(writer, "      }");
    writeLine(writer, "   }");
    writeBlankLine(writer);
    writeActor(writer, mesh);
    writeMaterials(writer, mesh);
    writeLine(writer, "   locked 0");
    writeLine(writer, "   }");
    writeLine(writer, "doc");
    writeLine(writer, "  {");
    writeLine(writer, "  addActor %s", mesh->name);
    writeLine(writer, "  }");
    writeLine(writer, "}");
}

static int writeProp(FILE* file, const Mesh* mesh)
{
    SaveProgress progress;
    startSaveProgress(&progress, int64_t{ mesh->vertexCount } + mesh->uvCount + mesh->faceCount);
    TextWriter writer;
    startText(&writer, file);
    writePropText(&writer, mesh, &progress);
    return finishText(&writer); // the bar stays up for the preview
}

static std::string previewPathOf(const char* propPath)
{
    return folderOf(propPath) + upToLastDot(fileNameOf(propPath)) + ".rsr";
}

static int writePreviewTo(FILE* file, const PreviewSource* frame)
{
    std::string bytes = previewFile(frame);
    TextWriter writer;
    startText(&writer, file);
    writeBytes(&writer, bytes.data(), bytes.size());
    return finishText(&writer);
}

int savePoserProp(const Mesh* mesh, const char* suggestedName, int writePreview, const PreviewSource* frame)
{
    char path[saveNameRoom];
    proposeName(path, upToLastDot(suggestedName), ".pp2");
    FileDialog dialog = { .filterText = "Poser prop (*.pp2)",
                          .filterPattern = "*.pp2",
                          .title = "save mesh",
                          .defaultExtension = "pp2",
                          .flags = dialogOverwritePrompt | dialogHideReadOnly,
                          .path = path,
                          .pathRoom = saveNameCharacters,
                          .fileTitle = nullptr,
                          .fileTitleRoom = 0 };
    if (!chooseFileToSave(&dialog))
        return 0;
    FILE* file = openFile(path, "wb");
    if (!file)
    {
        messageBox(path, "Error cannot create", iconStop);
        return 0;
    }
    writeProp(file, mesh);
    fclose(file);
    FILE* preview = writePreview && frame ? openFile(previewPathOf(path).c_str(), "wb") : nullptr;
    if (preview)
    {
        writePreviewTo(preview, frame);
        fclose(preview);
    }
    closeProgress();
    return 1;
}

static int prepareProp(OutputFile* output, const Mesh* mesh, const char* propPath)
{
    if (!openOutput(output, propPath))
        return 0;
    int whole = writeProp(output->file, mesh);
    closeProgress();
    return closeOutput(output, whole);
}

static int preparePreview(OutputFile* output, const char* propPath, const PreviewSource* frame)
{
    return openOutput(output, previewPathOf(propPath).c_str()) &&
           closeOutput(output, writePreviewTo(output->file, frame));
}

int writePropFiles(const Mesh* mesh, const char* propPath, const PreviewSource* frame)
{
    OutputFile outputs[2] = {};
    if (!prepareProp(&outputs[1], mesh, propPath) || (frame && !preparePreview(&outputs[0], propPath, frame)))
    {
        abandonOutputs(outputs, 2);
        return 0;
    }
    return frame ? commitOutputs(outputs, 2) : commitOutputs(outputs + 1, 1);
}
