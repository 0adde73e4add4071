// export/prop.h - the mesh as a Poser prop: geometry, an actor with its channels, materials, and a preview beside it
//
// All face slots are written, deleted ones and lines included, in record order. Lines end in CR LF.
#pragma once
#include "export/preview.h"
#include "model/mesh.h"

// Asks for a file, writes the prop and, when writePreview is not 0, the preview of the frame shown beside it under the
// extension "rsr". suggestedName: the current model's file name. frame null: no preview either.
//
// Returns 1, or 0 when the user cancelled or the prop could not be created (after a box). Only that is reported.
int savePoserProp(const Mesh* mesh, const char* suggestedName, int writePreview, const PreviewSource* frame);

// The prop and, when frame is not null, its preview without a dialog, in place only when both are whole. Returns 1, or
// 0 after a box with earlier files as they were.
int writePropFiles(const Mesh* mesh, const char* propPath, const PreviewSource* frame);
