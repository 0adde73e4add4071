// render/materials.h - material presets, switching lights, and the colour that both give a vertex
#pragma once
#include "render/settings.h"

#include <stdint.h>

constexpr int32_t presetBrass = 0;
constexpr int32_t presetBrick = 7;
constexpr int32_t presetWhite = 9;
constexpr int32_t presetProp = 10; // the model's own materials
constexpr int32_t presetCount = 11;

struct MaterialPreset
{
    float ambientLevel, diffuseLevel, specularLevel;
    float colour[3]; // ambient and diffuse
    float specularColour[3];
    int32_t shadingMode, shininess; // 0 in every preset: the diffuse and specular terms are then flat tones
    float transparency;
};

extern const MaterialPreset materialPresets[presetCount];

// Switches light 0..2 on (not 0) or off and normalises its direction. Another index does nothing.
void SetLight(RenderSettings* settings, int32_t index, uint32_t on);

// Fills the front material from one preset and the one behind from the other. Preset 10 in front sets propMaterial, any
// other clears it. An index outside 0..10 does nothing.
void ApplyPreset(RenderSettings* settings, int32_t preset, int32_t secondPreset);

// The colour of a vertex: the ambient term, plus a diffuse and a specular term of each light that is on. With N the
// normal, L the direction toward the light, E toward the eye, and R that of the mirrored light:
//   diffuse   ((1 + N.L)^2 / 4) ^ shadingMode, or with renderMoon 2 N.L / (|N.E| + N.L)
//   specular  (R.E) ^ shininess
// Each term is multiplied by its level. A transparent material also scales its ambient and diffuse terms by its
// opacity.
//
// In:     lights, and flags as in RenderSettings; normal of unit length in eye space, toward the side that is seen;
//         vertexColour multiplies the result when the flags ask for it
// Out:    packed bytes fourth << 24 | red << 16 | green << 8 | blue; fourth is 255 for a transparent material, else 0
// Source: the highlight is that of Phong, "Illumination for Computer Generated Pictures", 1975; the lunar law that of
//         Lommel and Seeliger
uint32_t shadeVertex(const Material* material, const Light* lights, const float* normal, int inShadow, uint32_t flags,
                     uint32_t vertexColour);

// level times x^exponent by repeated squaring; 0 for a negative x, the level itself for exponents below 1.
float powerOf(float x, int32_t exponent, float level);

// The byte that blends the faces of the material: the whole part of transparency times 255, clamped to 0..255.
uint32_t transparencyByte(const Material* material);
