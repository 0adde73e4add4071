// import/dispatch.h - the reader for a file, by the last three letters of its name
#pragma once
#include "model/mesh.h"
#include "model/report.h"

// What the user can choose about reading.
struct ReadOptions
{
    bool keyframes3ds = true;      // the 3DS reader moves each object by its keyframer pivot
    const char* plyList = nullptr; // the list of a PLY face that has its corners; null: the last list of each face
    Report* report = nullptr;      // receives what was left out or changed; null: nobody wants to know
    const char* format = nullptr;  // the extension that says how to read, such as "obj"; null: that of the path
    bool normals = true;           // planes and vertex normals are computed
};

// Whether readModelFile has a reader for a path: its length and its extension, whatever stands at it.
int isModelName(const char* path);

// Reads a file into a fresh mesh.
// Returns the reader's result. 0 without a message for a path of fewer than 5 characters or without a '.' before its
// last three; 0 for an unknown extension, after "Not supported file format" with the file name as the caption. Readers
// report their own failures; the mesh is then only good for freeMesh. The report gets the lines of its positions.
//
// Without `normals` the planes have any content and the normals of the vertices are 0, until somebody calls
// computeNormals. Everything else is the same. A DXF file has them nevertheless, because its texture coordinates are
// made from them.
int readModelFile(Mesh* mesh, const char* path, const ReadOptions& options);
