// model/settings.h - the switches of the whole program: what the menu and the tool panel set and everything below reads
#pragma once
#include "model/image.h"

#include <stdint.h>

// renderFlags
constexpr uint32_t renderBackCulled = 0x1;
constexpr uint32_t renderWireframe = 0x10;
constexpr uint32_t renderVertexColour = 0x20;
constexpr uint32_t renderTextured = 0x40;
constexpr uint32_t renderShadows = 0x80;
constexpr uint32_t renderRough = 0x100;
constexpr uint32_t renderMetallic = 0x200;
constexpr uint32_t renderMoon = 0x400;

constexpr int32_t presetBrass = 0;
constexpr int32_t presetBrick = 7;
constexpr int32_t presetWhite = 9;
constexpr int32_t presetProp = 10; // the model's own materials
constexpr int32_t presetCount = 11;

struct RenderSettings
{
    uint32_t renderFlags;
    int32_t materialPreset; // front material, 0..10
    int32_t backPreset;     // for the back material when a command names none
    int32_t propMaterial;   // 1 exactly when the front preset applied last is presetProp
    int32_t textureIndex;   // 0 wood, 1 metal, 2 pattern, 3 the user's
    const Image* currentTexture;
    int32_t backgroundIndex;   // 0..2
    uint16_t backgroundColour; // 5-6-5
    uint32_t lightMask;        // bit i: light i + 1 is on
    int32_t keyframes3ds;      // the 3DS reader moves objects by their keyframer pivots
    int32_t exactWeld;         // weld by equality, else within 0.00001
    float zoom;                // never below 1
};

constexpr uint16_t backgroundColours[3] = { 0x528A, 0x9492, 0x0000 };

constexpr RenderSettings startSettings = {
    .renderFlags = renderBackCulled | renderVertexColour,
    .materialPreset = presetBrass,
    .backPreset = presetBrass,
    .propMaterial = 0,
    .textureIndex = 0,
    .currentTexture = nullptr,
    .backgroundIndex = 0,
    .backgroundColour = backgroundColours[0],
    .lightMask = 1,
    .keyframes3ds = 1,
    .exactWeld = 1,
    .zoom = 1.0f,
};

// What drawing a frame needs to know of the display and what it leaves to be done.
struct DisplayState
{
    int32_t displayWidth; // pixels
    int32_t displayHeight;
    int32_t useSse2;          // the processor has SSE2
    int32_t appRunning;       // the message loop runs
    int32_t redrawPending;    // a frame is wanted at the next idle moment
    int32_t continuousRedraw; // the model spins: the step rotation is applied before every frame
    int32_t fullRedraw;       // the next frame clears the whole display
};

constexpr DisplayState startDisplay = {
    .displayWidth = 620,
    .displayHeight = 520,
    .useSse2 = 0,
    .appRunning = 0,
    .redrawPending = 0,
    .continuousRedraw = 0,
    .fullRedraw = 1,
};

constexpr char programName[] = "Kestrelbox";
constexpr int32_t fileNameRoom = 512;

extern RenderSettings renderSettings;
extern DisplayState displayState;
extern int32_t usePlainKernels;            // forces the plain version of what has a fast one; for comparison
extern char currentFileName[fileNameRoom]; // name of the model shown, without its folder
