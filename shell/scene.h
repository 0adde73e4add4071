// shell/scene.h - the model list, the frame buffer, and how the program starts and ends
#pragma once
#include "model/mesh.h"
#include "render/frame.h"

constexpr char programName[] = "Kestrelbox";

extern ModelList modelList;
extern FrameBuffer frameBuffer;
extern FrameState frameState;

// Entry 0 of the list; null when it is empty.
Mesh* currentMesh();

// Returns 1 for the feature bits (platform/processor.h) of a processor that has MMX and SSE; else shows a message box
// and returns 0.
int acceptProcessor(uint32_t features);

// Starts the program's state: the choices with their ticks in the menu, the built-in textures, and the model. That is
// the file of this name, or the teapot for "" and for a file that cannot be read. Returns 1, or 0 when the program must
// end with exit status 1.
int buildScene(const char* fileName);

// Free the models, and the images of the textures; the program ends in this order.
void releaseModels();
void releaseImages();

// Makes a mesh that a command has read the current one, which the list then owns: installs and names it, refills the
// panel, resets the view's rotations and sets the title.
void showLoadedMesh(Mesh* mesh, const char* shortName);

// Set the main window's title to "PROGRAM: NAME" and "PROGRAM: File NAME saved".
void showFileTitle();
void showSavedTitle();

// Lets the next frame be drawn at the next idle moment, and whole.
void askForRedraw();
