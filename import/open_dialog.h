// import/open_dialog.h - asking for a model of one format
#pragma once
#include "model/mesh.h"

// Asks for a file and reads it by a reader of this format into a fresh mesh. filterText: the description of the files;
// filterPattern: their patterns, separated by ';'. Returns the reader's result, 0 also when the user cancels.
int openByDialog(Mesh* mesh, const char* filterText, const char* filterPattern,
                 int (*load)(Mesh* mesh, const char* path));
