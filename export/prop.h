// export/prop.h - the mesh as a Poser prop: geometry, an actor with its channels, materials, and a preview beside it
//
// All face slots are written, deleted ones and polylines included, in record order. Lines end in CR LF.
#pragma once
#include "export/output_file.h"
#include "export/preview.h"
#include "model/mesh.h"

// Writes the prop and, when frame is not null, the preview of that frame beside it, under the extension "rsr".
//
// Returns 1, or 0 when a file could not be written; then neither takes its place.
int WritePropFile(const Mesh* mesh, const char* propPath, const PreviewSource* frame);
