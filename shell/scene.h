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

// Start-up: switches and menu marks, the four built-in pictures, the command line's file or the built-in model.
// fileName "" shows the built-in one. Returns 1, or 0 when the program must end with exit status 1.
int buildScene(const char* fileName);

// What the program owns, in the order of its end: the models, then the pictures.
void releaseModels();
void releasePictures();

// Makes a mesh read by a command the current one: installs it, names it, refills the panel, resets the view, sets the
// title.
void showLoadedMesh(Mesh* mesh, const char* shortName);

// "PROGRAM: NAME" and "PROGRAM: File NAME saved" in the main window's title.
void showFileTitle();
void showSavedTitle();

// The next frame is drawn whole, at the next idle moment.
void askForRedraw();
