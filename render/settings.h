// render/settings.h - what a frame is drawn with: switches, materials, lights, texture and background
#pragma once
#include "model/image.h"
#include "model/mesh.h"

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

constexpr int32_t lightCount = 3;

struct Light
{
    float direction[3]; // toward the light, in eye space; SetLight gives it unit length
    float colour[3];
    uint32_t on; // 0 is off
};

struct RenderSettings
{
    uint32_t renderFlags;
    int32_t propMaterial; // 1: each face has its mesh's own material; 0: front or behind
    Material front;       // faces turned toward the eye
    Material behind;      // faces turned away
    Light lights[lightCount];
    const Image* currentTexture; // null, or without pixels: no texture
    uint16_t backgroundColour;   // 5-6-5
};

constexpr RenderSettings startRenderSettings = {
    .renderFlags = renderBackCulled | renderVertexColour,
    .propMaterial = 0,
    .front = {},
    .behind = {},
    // clang-format off
    .lights = {
        { { -1,  1, 1 }, { 1, 1, 1 }, 1 },
        { {  2,  2, 1 }, { 1, 1, 1 }, 0 },
        { {  0, -1, 0 }, { 1, 1, 1 }, 0 },
    },
    // clang-format on
    .currentTexture = nullptr,
    .backgroundColour = 0x528A,
};
