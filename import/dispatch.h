// import/dispatch.h - the reader for a file, by the last three letters of its name
#pragma once
#include "model/mesh.h"

constexpr size_t shortNameRoom = 256;

// Reads a file into a fresh mesh. shortName receives the path's file name, cut to fit.
// Returns the reader's result. 0 without a message for a path of fewer than 5 characters or without a '.' before its
// last three; 0 for an unknown extension, after "Not supported file format" when reportErrors is set. Readers report
// their own failures; the mesh is then only good for freeMesh.
int readModelFile(Mesh* mesh, const char* path, char (&shortName)[shortNameRoom], int reportErrors);
