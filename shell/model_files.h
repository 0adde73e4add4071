// shell/model_files.h - opening, saving and exporting models
//
// All return 1 when it was done and 0 when it was not: cancelled, or failed after the reader or writer has said why.
// A failed load never disturbs the model on screen; a failed save leaves title and file name as they were.
#pragma once
#include "model/mesh.h"

enum ExportKind
{
    exportObj,
    exportProp
};

// Opens a model file without asking and makes it the current model: its path is remembered, the panel filled, the view
// reset and the title set. Every way of opening a file but RKF ends here.
int openMeshAt(const char* path);

// The same, read into a fresh mesh, which becomes the current model or is freed.
int openMeshInto(Mesh* mesh, const char* path);

// Opens an RKF file in the same way.
int openRkfMeshAt(const char* path);

// Enters the current model's file in the desktop's list of recent files: for a file that the user has named, not for
// one that is read again or found by paging through a folder.
void rememberModel();

int openMeshFile(); // asks for the file
int readRkfFile();  // asks, and chooses the model's own materials when it has some
int readRkfFileAt(const char* path);
int saveRkfFile(); // refused without a word for a model with polylines: the format carries none
int exportMesh(ExportKind kind);
