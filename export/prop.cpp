// export/prop.cpp - the Poser prop writer
#include "export/prop.h"
#include "export/save_progress.h"
#include "export/text_writer.h"
#include "export/written_names.h"
#include "platform/file_names.h"

struct Channel
{
    const char* kindAndName;
    const char* label; // Poser resolves "GetStringRes" itself
    const char* min;
    const char* trackingScale;
    int isStatic;
    int hidden;
    int initialValue;
    bool withStaticValue;
};

// clang-format off
static const Channel channels[] = {
    { "xOffsetA OriginX", "GetStringRes(1028,44)", "-10000",  "0.004", 1, 1, 0, true },
    { "yOffsetA OriginY", "GetStringRes(1028,45)", "-10000",  "0.004", 1, 1, 0, true },
    { "zOffsetA OriginZ", "GetStringRes(1028,46)", "-10000",  "0.004", 1, 1, 0, true },
    { "rotateX xRotate",  "xrot",                  "-10000",  "1",     0, 0, 0, false },
    { "rotateY yRotate",  "yrot",                  "-10000",  "1",     0, 0, 0, false },
    { "rotateZ zRotate",  "zrot",                  "-10000",  "1",     0, 0, 0, false },
    { "scale Scale",      "GetStringRes(1028,5)",  "0.001",   "0.004", 0, 0, 1, false },
    { "scaleX xScale",    "GetStringRes(1028,6)",  "0.001",   "0.004", 0, 0, 1, false },
    { "scaleY yScale",    "GetStringRes(1028,7)",  "0.001",   "0.004", 0, 0, 1, false },
    { "scaleZ zScale",    "GetStringRes(1028,8)",  "0.001",   "0.004", 0, 0, 1, false },
    { "translateX xTran", "GetStringRes(1028,12)", "-100000", "0.001", 0, 0, 0, false },
    { "translateY yTran", "GetStringRes(1028,13)", "-100000", "0.001", 0, 0, 0, false },
    { "translateZ zTran", "GetStringRes(1028,14)", "-100000", "0.001", 0, 0, 0, false },
    { "xOffsetB xOffB",   "xOffB",                 "-100000", "0.004", 1, 1, 0, true },
    { "yOffsetB yOffB",   "yOffB",                 "-100000", "0.004", 1, 1, 0, true },
    { "zOffsetB zOffB",   "zOffB",                 "-100000", "0.004", 1, 1, 0, true },
};
// clang-format on

static int64_t countPropCorners(const Mesh* mesh)
{
    int64_t corners = 4 * int64_t{ mesh->faceCount };
    for (int32_t f = 0; f < mesh->faceCount; ++f)
        corners -= mesh->faces[f][3] == noCorner;
    return corners;
}

// The count of corners may exceed the range of "%d".
static void writeCount(TextWriter* writer, const char* keyword, int64_t count)
{
    writeLine(writer, "      %s %s", keyword, std::to_string(count).c_str());
}

static void writePropHeader(TextWriter* writer, const Mesh* mesh)
{
    int64_t corners = countPropCorners(mesh);
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

static void writePropPoints(TextWriter* writer, const Mesh* mesh, SaveProgress* progress)
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
        textWritten(writer, putLineEnd(out));
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
        textWritten(writer, putLineEnd(out));
        countSaved(progress);
    }
}

static void writePropFace(TextWriter* writer, const Mesh* mesh, int32_t f)
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
    textWritten(writer, putLineEnd(out));
}

static void writePropFaces(TextWriter* writer, const Mesh* mesh, SaveProgress* progress)
{
    constexpr uint32_t noIndex = UINT32_MAX;
    uint32_t lastMaterial = noIndex, lastGroup = noIndex;
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        uint32_t material = faceMaterial(mesh->faceAttributes[f]);
        uint32_t group = faceGroup(mesh->faceAttributes[f]);
        WrittenName written;
        if (material != lastMaterial)
            writeLine(writer, "      usemtl %s",
                      writtenName(mesh->materialNames, static_cast<int32_t>(material), lineBreakers, &written));
        if (group != lastGroup)
            writeLine(writer, "      g %s",
                      writtenName(mesh->groupNames, static_cast<int32_t>(group), lineBreakers, &written));
        lastMaterial = material;
        lastGroup = group;
        writePropFace(writer, mesh, f);
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

static void writePropColour(TextWriter* writer, const char* keyword, const float* colour, float level)
{
    writeLine(writer, "       %s %f %f %f 1", keyword, colour[0] * level, colour[1] * level, colour[2] * level);
}

static void writePropMap(TextWriter* writer, const char* keyword, const char* fileName)
{
    if (!*fileName || !nameFits(fileName, quoteBreakers))
    {
        writeLine(writer, "       %s NO_MAP", keyword);
        return;
    }
    writeLine(writer, "       %s \"%s\"", keyword, fileName);
    writeLine(writer, "                  0 0");
}

// Writes the lines of a material that follow its tMax.
static void writePropMaterialRest(TextWriter* writer, const char* texture, const char* opacity)
{
    writeLine(writer, "       tExpo 0.6");
    writeLine(writer, "       bumpStrength 1");
    writeLine(writer, "       ksIgnoreTexture 0");
    writeLine(writer, "       reflectThruLights 0");
    writeLine(writer, "       reflectThruKd 0");
    writePropMap(writer, "textureMap", texture);
    writeLine(writer, "       bumpMap NO_MAP");
    writeLine(writer, "       reflectionMap NO_MAP");
    writePropMap(writer, "transparencyMap", opacity);
    writeLine(writer, "       ReflectionColor 0 0 0 1");
    writeLine(writer, "       reflectionStrength 0");
    writeLine(writer, "       }");
}

static void writePropMaterial(TextWriter* writer, const Mesh* mesh, int32_t m)
{
    const Material* material = &mesh->materials[m];
    WrittenName written;
    writeLine(writer, "   material %s", writtenName(mesh->materialNames, m, lineBreakers, &written));
    writeLine(writer, "       {");
    writePropColour(writer, "KdColor", material->diffuse, material->diffuseLevel);
    writePropColour(writer, "KaColor", material->ambient, material->ambientLevel);
    writePropColour(writer, "KsColor", material->specular, material->specularLevel);
    writeLine(writer, "       TextureColor 0.8 0.8 0.8 1");
    writeLine(writer, "       NsExponent %d", material->shininess);
    writeLine(writer, "       tMin 0");
    writeLine(writer, "       tMax %f", material->transparency);
    writePropMaterialRest(writer, mesh->textureNames[m], mesh->opacityNames[m]);
}

// Poser expects a material of this name in every prop.
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
    writePropMaterialRest(writer, "", "");
}

static void writePropMaterials(TextWriter* writer, const Mesh* mesh)
{
    int previewWritten = 0;
    for (int32_t m = 0; m < mesh->materialCount; ++m)
    {
        writePropMaterial(writer, mesh, m);
        previewWritten |= strcmp(mesh->materialNames[m], "Preview") == 0;
    }
    if (!previewWritten)
        writePreviewMaterial(writer);
}

// What the prop is made of, and how far it has come.
struct PropText
{
    const Mesh* mesh;
    SaveProgress progress;
};

static void writePropText(TextWriter* writer, void* context)
{
    PropText* text = static_cast<PropText*>(context);
    const Mesh* mesh = text->mesh;
    startSaveProgress(&text->progress, int64_t{ mesh->vertexCount } + mesh->uvCount + mesh->faceCount);
    writePropHeader(writer, mesh);
    writePropPoints(writer, mesh, &text->progress);
    writePropFaces(writer, mesh, &text->progress);
    writeLine(writer, "      }");
    writeLine(writer, "   }");
    writeBlankLine(writer);
    writeActor(writer, mesh);
    writePropMaterials(writer, mesh);
    writeLine(writer, "   locked 0");
    writeLine(writer, "   }");
    writeLine(writer, "doc");
    writeLine(writer, "  {");
    writeLine(writer, "  addActor %s", mesh->name);
    writeLine(writer, "  }");
    writeLine(writer, "}");
}

static void writePreviewBytes(TextWriter* writer, void* context)
{
    std::string bytes = previewFile(*static_cast<const PreviewSource**>(context));
    writeBytes(writer, bytes.data(), bytes.size());
}

static std::string previewPathOf(const char* propPath)
{
    return folderOf(propPath) + upToLastDot(fileNameOf(propPath)) + ".rsr";
}

int WritePropFile(const Mesh* mesh, const char* propPath, const PreviewSource* frame)
{
    OutputFile outputs[2] = {}; // the preview takes its place first
    PropText text = { mesh, {} };
    int ok = writeTextOutput(&outputs[1], propPath, writePropText, &text);
    if (ok && frame)
        ok = writeTextOutput(&outputs[0], previewPathOf(propPath), writePreviewBytes, &frame);
    endSaveProgress(&text.progress);
    return commitOutputs(outputs, 2, ok != 0);
}
