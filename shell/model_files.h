// shell/model_files.h - opening, saving and exporting models by the menu
//
// All return 1 when it was done and 0 when it was not: cancelled, or failed after the reader or writer has said why.
// A failed load never disturbs the model on screen.
#pragma once

enum ExportKind
{
    exportObj,
    exportProp
};

int openMeshFile();
int readRkfFile();
int saveRkfFile(); // refused without a word for a model with lines: the format carries none
int exportMesh(ExportKind kind);
