// cli/dump.cpp - kbx dump: the whole mesh as text, a line for each vertex, face, name and so on
#include "cli/commands.h"
#include "cli/load.h"
#include "cli/output.h"
#include "cli/steps.h"

static void putFloats(Output* out, const float* values, int count)
{
    for (int i = 0; i < count; ++i)
    {
        put(out, " ");
        putFloat(out, values[i]);
    }
}

static void putWords(Output* out, const uint32_t* words, int count)
{
    for (int i = 0; i < count; ++i)
    {
        put(out, " ");
        putHex(out, words[i]);
    }
}

static void putLine(Output* out, const char* keyword, const float* values, int count)
{
    put(out, keyword);
    putFloats(out, values, count);
    endLine(out);
}

static void dumpHead(Output* out, const Mesh* mesh)
{
    put(out, "mesh ");
    putName(out, mesh->name);
    endLine(out);

    put(out, "counts");
    for (int32_t count : { mesh->vertexCount, mesh->uvCount, mesh->lineCount, mesh->liveFaceCount, mesh->faceCount,
                           mesh->materialCount, mesh->groupCount })
    {
        put(out, " ");
        putInteger(out, count);
    }
    endLine(out);

    put(out, "bounds");
    putFloats(out, mesh->boundsMin, 3);
    putFloats(out, mesh->boundsMax, 3);
    putFloats(out, mesh->centre, 3);
    putFloats(out, &mesh->radius, 1);
    endLine(out);
}

static void dumpVertices(Output* out, const Mesh* mesh, bool normals)
{
    for (int32_t i = 0; i < mesh->vertexCount; ++i)
    {
        put(out, "vertex");
        putFloats(out, mesh->vertices[i].position, 3);
        putWords(out, &mesh->vertices[i].colour, 1);
        endLine(out);
    }
    for (int32_t i = 0; normals && i < mesh->vertexCount; ++i)
        putLine(out, "normal", mesh->vertices[i].normal, 3);
    for (int32_t i = 0; i < mesh->uvCount; ++i)
        putLine(out, "uv", &mesh->uvs[i].u, 2);
}

static void dumpFaces(Output* out, const Mesh* mesh, bool planes)
{
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        put(out, "face");
        for (const Corners* corners : { &mesh->faces[f], &mesh->faceUvs[f] })
        {
            for (uint32_t corner : *corners)
            {
                put(out, " ");
                putInteger(out, static_cast<int32_t>(corner));
            }
        }
        uint32_t attributes = mesh->faceAttributes[f] & ~(faceLit | faceEyeFacing); // which only frames set
        putWords(out, &attributes, 1);
        endLine(out);
    }
    for (int32_t f = 0; planes && f < mesh->faceCount; ++f)
    {
        put(out, "plane");
        putFloats(out, mesh->facePlanes[f].normal, 3);
        putFloats(out, &mesh->facePlanes[f].distance, 1);
        endLine(out);
    }
}

static void dumpNames(Output* out, const Mesh* mesh)
{
    for (int32_t g = 0; g < mesh->groupCount; ++g)
    {
        put(out, "group ");
        putName(out, mesh->groupNames[g]);
        endLine(out);
    }
    for (int32_t m = 0; m < mesh->materialCount; ++m)
    {
        const Material& material = mesh->materials[m];
        put(out, "material ");
        putName(out, mesh->materialNames[m]);
        put(out, " ");
        putName(out, mesh->textureNames[m]);
        put(out, " ");
        putName(out, mesh->opacityNames[m]);
        for (const float* colour : { material.ambient, material.diffuse, material.specular, material.extra })
            putFloats(out, colour, 3);
        putFloats(out, &material.ambientLevel, 1);
        putFloats(out, &material.diffuseLevel, 1);
        putFloats(out, &material.specularLevel, 1);
        put(out, " ");
        putInteger(out, material.shadingMode);
        put(out, " ");
        putInteger(out, material.shininess);
        putWords(out, material.reserved1, 3);
        putWords(out, &material.reserved2, 1);
        putWords(out, &material.reserved3, 1);
        putFloats(out, &material.transparency, 1);
        putWords(out, &material.reserved4, 1);
        endLine(out);
    }
}

int runDump(const Arguments& arguments)
{
    Mesh* mesh = loadForWriting(arguments.inputs[0], arguments.load, arguments.normals);
    if (!mesh)
        return 1;
    Step step = { arguments.load.verbose };
    Output out;
    dumpHead(&out, mesh);
    dumpVertices(&out, mesh, arguments.normals);
    dumpFaces(&out, mesh, arguments.normals);
    dumpNames(&out, mesh);
    freeMesh(mesh);
    if (!finishOutput(&out))
        return 1;
    endStep(&step, arguments.inputs[0], "printed");
    return 0;
}
