// shell/scene.h - the model that is shown, the frame buffer it is drawn into, and their names in the title
#pragma once
#include "model/mesh.h"
#include "render/frame.h"

#include <string>

constexpr char programName[] = "Kestrelbox";

extern ModelList modelList;
extern FrameBuffer frameBuffer;
extern FrameState frameState;

// The file of the current model: the one it was read from, or the one it was saved to last. The path is a full one and
// empty for the built-in model; the name is without its folder. nameModel sets both.
extern std::string currentFileName;
extern std::string currentFilePath;

// Entry 0 of the list; null when it is empty.
Mesh* currentMesh();

// Free the models, and the images of the textures; the program ends in this order.
void releaseModels();
void releaseImages();

// Names the current model. path: from the root or from the current folder, "" for the built-in model.
void nameModel(const std::string& name, const std::string& path);

// Set the main window's title to "PROGRAM: NAME", and to "PROGRAM: File NAME saved" for two seconds at least.
void showFileTitle();
void showSavedTitle();
