// export/lux_parts.h - the texts of a LuxRender scene, one function for each file
#pragma once
#include "export/text_writer.h"
#include "model/mesh.h"

#include <string>

// A vertex as it is written: a mesh vertex with one of its texture coordinates.
struct LuxVertex
{
    uint32_t vertex;
    float u, v;
};

// A scene being written. A slot is one of the mesh's material slots.
struct LuxScene
{
    const Mesh* mesh;
    std::string baseName;
    int32_t materials; // slots written, at least 1

    // Work memory of the geometry
    int32_t slotStarts[materialLimit + 1]; // faces of material m: slotFaces[slotStarts[m]] up to the next start
    int32_t* slotFaces;                    // faces by material slot, in record order
    int32_t* newIndex;                     // of a mesh vertex among the slot's vertices; -1: not met yet
    LuxVertex* vertices; // of the slot: those met, by order of first use, then those added for other uvs
    int32_t* others;     // hash table of the added ones: index + 1, 0: free; null without texture coordinates
};

// Sorts the faces and allocates the work memory. Returns 1, or 0 without a box when memory was refused. Call
// closeLuxScene in either case.
int openLuxScene(LuxScene* scene, const Mesh* mesh, const std::string& baseName);
void closeLuxScene(LuxScene* scene);

// Each writes the text of one file: .lxo, .lxm, .lxs and _textures.txt.
void writeLuxGeometry(TextWriter* writer, LuxScene* scene);
void writeLuxMaterials(TextWriter* writer, LuxScene* scene);
void writeLuxView(TextWriter* writer, LuxScene* scene);
void writeLuxTextures(TextWriter* writer, LuxScene* scene);
