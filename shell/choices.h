// shell/choices.h - what the user has chosen, and how each choice changes it
//
// The functions change the record they are given, and decode a built-in image when it is shown for the first time. They
// touch no menu, no panel and no window. The menu, the tool panel and the command line choose through them, so that a
// choice means the same everywhere.
#pragma once
#include "render/materials.h"
#include "render/settings.h"

#include <stdint.h>

constexpr int32_t backgroundCount = 3;
constexpr uint16_t backgroundColours[backgroundCount] = { 0x528A, 0x9492, 0x0000 }; // 5-6-5

struct Choices
{
    RenderSettings render;   // what frames are drawn with
    int32_t materialPreset;  // front material, 0..10
    int32_t backPreset;      // back material where a choice names none
    int32_t textureIndex;    // texture slot (image/textures.h): 0 wood, 1 metal, 2 pattern, 3 the user's
    int32_t backgroundIndex; // 0..2
    uint32_t lightMask;      // bit i: light i + 1 is on
    int32_t keyframes3ds;    // the 3DS reader moves objects by their keyframer pivots
    int32_t exactWeld;       // "Weld" merges equal positions only, else those within 0.00001
};

constexpr Choices startChoices = {
    .render = startRenderSettings,
    .materialPreset = presetBrass,
    .backPreset = presetBrass,
    .textureIndex = 0,
    .backgroundIndex = 0,
    .lightMask = 1,
    .keyframes3ds = 1,
    .exactWeld = 1,
};

// The choices of the running window.
extern Choices choices;

// Covers the model with the texture of a slot: textured on, wireframe off. The materials stay.
void showTexture(Choices* chosen, int32_t slot);

// The same, on a White front and a Brick back.
void chooseTexture(Choices* chosen, int32_t slot);

// On: the reflection image on a White front. Off: the chosen texture and the chosen preset again. The back is Brick
// either way. materialPreset and textureIndex stay, so that off finds them.
void chooseMetallic(Choices* chosen, bool on);

// Preset 0..10 in front, backPreset behind, and wireframe off.
void choosePreset(Choices* chosen, int32_t preset);

// Light 0..2 on or off.
void chooseLight(Choices* chosen, int32_t light, bool on);

// Background 0..2.
void chooseBackground(Choices* chosen, int32_t index);

// One of the flags of RenderSettings, except renderMetallic, on or off. Switching textured on switches wireframe off,
// not the other way round.
void chooseRenderFlag(Choices* chosen, uint32_t flag, bool on);

// The options of the 3DS reader and of "Weld".
void chooseKeyframes3ds(Choices* chosen, bool on);
void chooseExactWeld(Choices* chosen, bool on);
