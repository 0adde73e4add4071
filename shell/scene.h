// shell/scene.h - the model list, the frame buffer, and how the program starts and ends
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

// Returns 1 for the feature bits (platform/processor.h) of a processor that has MMX and SSE; else shows a message box
// and returns 0.
int acceptProcessor(uint32_t features);

// Starts the program's state: the choices with their ticks in the menu, the built-in textures, and the model. That is
// the file at this path, or the teapot for "" and for a file that cannot be read. Returns 1, or 0 when the program must
// end with exit status 1.
int buildScene(const char* path);

// Free the models, and the images of the textures; the program ends in this order.
void releaseModels();
void releaseImages();

// Names the current model. path: from the root or from the current folder, "" for the built-in model.
void nameModel(const std::string& name, const std::string& path);

// Makes a mesh that has been read from a file the current one, which the list then owns: installs it, names it by the
// path, refills the panel, resets the view's rotations and sets the title.
void showLoadedMesh(Mesh* mesh, const char* path);

// Set the main window's title to "PROGRAM: NAME" and "PROGRAM: File NAME saved".
void showFileTitle();
void showSavedTitle();

// Lets the next frame be drawn at the next idle moment, and whole.
void askForRedraw();
