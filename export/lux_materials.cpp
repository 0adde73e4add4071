// export/lux_materials.cpp - glossy materials with pictures; transparent ones are mixed with nothing
#include "export/lux_parts.h"
#include "export/written_names.h"

static void writeImageMap(TextWriter* writer, const char* fileName)
{
    writeLine(writer, R"(    "string wrap" ["repeat"])");
    writeLine(writer, R"(    "string filename" ["%s"])", fileName);
    writeLine(writer, R"(    "float gamma" [%f])", 2.2f);
    writeLine(writer, R"(    "float gain" [1.000000])");
    writeLine(writer, R"(    "string filtertype" ["bilinear"])");
    writeLine(writer, R"(    "string mapping" ["uv"])");
    writeLine(writer, R"(    "float uscale" [1.000000])");
    writeLine(writer, R"(    "float vscale" [-1.000000])");
    writeLine(writer, R"(    "float udelta" [0.000000])");
    writeLine(writer, R"(    "float vdelta" [-0.000000])");
}

// Multiplies the slot's picture by a colour.
static void writeScaledMap(TextWriter* writer, const char* name, const char* kind, const float* colour)
{
    writeLine(writer, R"(Texture "%s_%s" "color" "scale" "texture tex1" ["%s_map"] "color tex2" [%f %f %f])", name,
              kind, name, colour[0], colour[1], colour[2]);
}

struct LuxColours
{
    float diffuse[3], specular[3];
    float roughness;
};

static LuxColours coloursOf(const Material* material)
{
    LuxColours colours;
    for (int c = 0; c < 3; ++c)
    {
        colours.diffuse[c] = material->diffuse[c] * material->diffuseLevel;
        colours.specular[c] = material->specular[c] * material->specularLevel;
    }
    int sharp = material->shininess >= 5;
    colours.roughness = sharp ? 2.0f / static_cast<float>(material->shininess) : 0.4f;
    return colours;
}

static void writeGlossy(TextWriter* writer, const char* name, const std::string& glossyName, bool textured,
                        const LuxColours* colours)
{
    const float* kd = colours->diffuse;
    const float* ks = colours->specular;
    if (textured)
    {
        writeScaledMap(writer, name, "Kd", kd);
        writeScaledMap(writer, name, "Ks", ks);
        writeBlankLine(writer);
    }
    writeLine(writer, R"(MakeNamedMaterial "%s")", glossyName.c_str());
    writeLine(writer, R"(    "string type" ["glossy"])");
    if (textured)
    {
        writeLine(writer, R"(    "texture Kd" ["%s_Kd"])", name);
        writeLine(writer, R"(    "texture Ks" ["%s_Ks"])", name);
    }
    else
    {
        writeLine(writer, R"(    "color Kd" [%f %f %f])", kd[0], kd[1], kd[2]);
        writeLine(writer, R"(    "color Ks" [%f %f %f])", ks[0], ks[1], ks[2]);
    }
    writeLine(writer, R"(    "float index" [0.0] "float uroughness" [%f] "float vroughness" [%f])", colours->roughness,
              colours->roughness);
}

// Writes the named material, which mixes the glossy one with nothing.
static void writeMix(TextWriter* writer, const char* name, const std::string& glossyName, bool masked,
                     float transparency)
{
    writeLine(writer, R"(MakeNamedMaterial "%s")", name);
    writeLine(writer, R"(    "string type" ["mix"])");
    writeLine(writer, R"(    "string namedmaterial1" ["%s_null"])", name);
    writeLine(writer, R"(    "string namedmaterial2" ["%s"])", glossyName.c_str());
    if (masked)
        writeLine(writer, R"(    "texture amount" ["%s_trans"])", name);
    else
        writeLine(writer, R"(    "float amount" [%f])", transparency);
}

static bool isLuxTexture(const char* fileName)
{
    return *fileName && nameFits(fileName, quoteBreakers);
}

static void writeLuxMaterial(TextWriter* writer, const Mesh* mesh, int32_t m)
{
    const Material* material = &mesh->materials[m];
    WrittenName written;
    const char* name = writtenName(mesh->materialNames, m, quoteBreakers, &written);
    bool masked = isLuxTexture(mesh->opacityNames[m]), textured = isLuxTexture(mesh->textureNames[m]);
    bool transparent = masked || material->transparency > 0;
    std::string glossyName = transparent ? std::string(name) + "_tmp" : name;
    LuxColours colours = coloursOf(material);

    writeLine(writer, "#***** Material '%s'", name);
    writeBlankLine(writer);
    if (transparent)
    {
        writeLine(writer, R"(MakeNamedMaterial "%s_null")", name);
        writeLine(writer, R"(    "string type" ["null"])");
    }
    if (masked)
    {
        writeLine(writer, R"(Texture "%s_trans" "float" "imagemap")", name);
        writeImageMap(writer, mesh->opacityNames[m]);
    }
    if (textured)
    {
        writeLine(writer, R"(Texture "%s_map" "color" "imagemap")", name);
        writeImageMap(writer, mesh->textureNames[m]);
    }
    writeGlossy(writer, name, glossyName, textured, &colours);
    if (transparent)
        writeMix(writer, name, glossyName, masked, material->transparency);
    writeBlankLine(writer);
}

void writeLuxMaterials(TextWriter* writer, LuxScene* scene)
{
    for (int32_t m = 0; m < scene->materials; ++m)
        writeLuxMaterial(writer, scene->mesh, m);
}
