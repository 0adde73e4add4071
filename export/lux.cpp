// export/lux.cpp - the scene's view, its list of pictures, and writing the four files
#include "export/lux.h"
#include "export/lux_parts.h"
#include "export/written_names.h"
#include "model/memory.h"
#include "platform/file_names.h"

static void writeCamera(TextWriter* writer, const LuxScene* scene)
{
    float scale = scene->mesh->radius > 1.0f ? scene->mesh->radius : 1.0f;
    writeLine(writer, "# Global Settings");
    writeBlankLine(writer);
    writeLine(writer, "LookAt %f %f %f", 0.0f, -1.94f * scale, 0.36f * scale);
    writeLine(writer, "       %f %f %f", 0.0f, 0.0f, 0.36f * scale);
    writeLine(writer, "       %f %f %f", 0.0f, 0.0f, 1.0f);
    writeBlankLine(writer);
    writeLine(writer, R"(Camera "perspective")");
    writeLine(writer, R"(   "float fov" [28.0])");
    writeBlankLine(writer);
}

static void writeFilm(TextWriter* writer, const LuxScene* scene)
{
    writeLine(writer, R"(Film "fleximage")");
    writeLine(writer, R"( "integer xresolution" [%d])", 800);
    writeLine(writer, R"( "integer yresolution" [%d])", 600);
    writeLine(writer, R"( "string filename" ["%s_img"])", scene->baseName.c_str());
    writeLine(writer, R"( "bool write_png" ["true"])");
    writeLine(writer, R"( "string tonemapkernel" ["maxwhite"])");
    writeBlankLine(writer);
    writeLine(writer, R"(PixelFilter "gaussian")");
    writeLine(writer, R"( "float xwidth" [1.3])");
    writeLine(writer, R"( "float ywidth" [1.3])");
    writeBlankLine(writer);
    writeLine(writer, R"(Sampler "lowdiscrepancy")");
    writeBlankLine(writer);
    writeLine(writer, R"(SurfaceIntegrator "path")");
    writeLine(writer, R"( "integer maxdepth" [10])");
    writeBlankLine(writer);
    writeLine(writer, R"(Accelerator "kdtree")");
    writeBlankLine(writer);
}

// Writes a lamp, and a sky as a comment that users may enable.
static void writeLights(TextWriter* writer)
{
    writeLine(writer, R"(LightGroup "directional")");
    writeLine(writer, R"(LightSource "distant")");
    writeLine(writer, R"( "color L" [0.8 0.7 0.4])");
    writeLine(writer, R"( "float gain" [1])");
    writeLine(writer, R"( "point from" [%f %f %f])", 0.2f, -2.0f, 0.7f);
    writeLine(writer, R"( "point to" [%f %f %f])", 0.0f, 0.0f, 0.0f);
    writeBlankLine(writer);
    writeLine(writer, R"(#LightGroup "sky")");
    writeLine(writer, R"(#LightSource "sunsky")");
    writeLine(writer, R"(#   "float gain" [0.00100])");
    writeLine(writer, R"(#   "vector sundir" [%f %f %f])", -0.5f, -2.0f, 1.0f);
    writeLine(writer, R"(#   "float relsize" [1.00000])");
    writeLine(writer, R"(#   "float turbidity" [2.00000])");
}

void writeLuxView(TextWriter* writer, LuxScene* scene)
{
    writeCamera(writer, scene);
    writeFilm(writer, scene);
    writeLine(writer, "# The Scene");
    writeLine(writer, "WorldBegin");
    writeLine(writer, "AttributeBegin");
    writeBlankLine(writer);
    writeLights(writer);
    writeLine(writer, "AttributeEnd");
    writeBlankLine(writer);
    writeLine(writer, R"(Include "%s.lxm")", scene->baseName.c_str());
    writeLine(writer, R"(Include "%s.lxo")", scene->baseName.c_str());
    writeBlankLine(writer);
    writeLine(writer, "WorldEnd");
}

// Lists each name once; names are compared byte for byte.
static void writeDistinctNames(TextWriter* writer, const char (*names)[nameRoom], int32_t count)
{
    for (int32_t i = 0; i < count; ++i)
    {
        int32_t earlier = 0;
        while (strcmp(names[earlier], names[i]) != 0) // stops at i at the latest
            ++earlier;
        if (*names[i] && nameFits(names[i], lineBreakers) && earlier == i)
            writeLine(writer, "%s", names[i]);
    }
}

void writeLuxTextures(TextWriter* writer, LuxScene* scene)
{
    writeDistinctNames(writer, scene->mesh->textureNames, scene->materials);
    writeDistinctNames(writer, scene->mesh->opacityNames, scene->materials);
}

struct LuxFile
{
    const char* ending;
    void (*write)(TextWriter* writer, LuxScene* scene);
};

static const LuxFile luxFiles[] = {
    { ".lxo", writeLuxGeometry },
    { ".lxm", writeLuxMaterials },
    { ".lxs", writeLuxView },
    { "_textures.txt", writeLuxTextures },
};
constexpr int luxFileCount = sizeof luxFiles / sizeof luxFiles[0];

struct LuxText
{
    LuxScene scene;
    const LuxFile* file; // the file being written
};

static void writeLuxText(TextWriter* writer, void* context)
{
    LuxText* text = static_cast<LuxText*>(context);
    text->file->write(writer, &text->scene);
}

std::string luxBaseName(const char* path)
{
    std::string name = upToFirstDot(fileNameOf(path));
    for (char& c : name)
        if (strchr(quoteBreakers, c)) // the scene includes its parts by name
            c = '_';
    return name;
}

int WriteLuxFiles(const Mesh* mesh, const char* path)
{
    LuxText text;
    OutputFile outputs[luxFileCount] = {};
    std::string base = folderOf(path) + luxBaseName(path);
    int ok = openLuxScene(&text.scene, mesh, luxBaseName(path));
    if (!ok)
        reportOutOfMemory();
    for (int i = 0; ok && i < luxFileCount; ++i)
    {
        text.file = &luxFiles[i];
        ok = writeTextOutput(&outputs[i], base + text.file->ending, writeLuxText, &text);
    }
    closeLuxScene(&text.scene);
    return commitOutputs(outputs, luxFileCount, ok != 0);
}
