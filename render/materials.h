// render/materials.h - lights, material presets, and the colour that they give a vertex
#pragma once
#include "model/mesh.h"
#include "model/settings.h"

#include <stdint.h>

constexpr int32_t lightCount = 3;

struct Light
{
    float direction[3]; // toward the light, in eye space; of unit length once the light has been switched
    float colour[3];
    uint32_t on; // 0 is off
};

struct MaterialPreset
{
    float ambientLevel, diffuseLevel, specularLevel;
    float colour[3]; // ambient and diffuse
    float specularColour[3];
    int32_t shadingMode, shininess; // 0 in every preset: two plain tones, on purpose
    float transparency;
};

extern Light lights[lightCount];
extern const MaterialPreset materialPresets[presetCount];

// What ApplyPreset sets. With renderSettings.propMaterial, each face has its mesh's own material instead.
struct RendererMaterials
{
    Material front;  // faces turned toward the eye
    Material behind; // faces turned away
};

extern RendererMaterials rendererMaterials;

// Light 0..2 on (not 0) or off; its direction is normalised. Another index does nothing.
void SetLight(int32_t index, uint32_t on);

// Fills both materials from presets 0..10; preset 10 in front sets renderSettings.propMaterial, any other
// clears it. An index out of range does nothing.
void ApplyPreset(int32_t preset, int32_t secondPreset);

// The colour of a vertex: the ambient term, and from each light that is on a diffuse and a specular one. With N the
// normal and L, E and R the directions toward the light, toward the eye and of the mirrored light
//   diffuse   ((1 + N.L)^2 / 4) ^ shadingMode, or with renderMoon 2 N.L / (|N.E| + N.L)
//   specular  (R.E) ^ shininess
// each by its level; a transparent material scales its ambient and diffuse terms by its opacity.
//
// In:     normal of unit length in eye space, toward the side that is seen; flags: renderSettings.renderFlags;
//         vertexColour multiplies when they ask for it
// Out:    packed bytes fourth << 24 | red << 16 | green << 8 | blue; fourth is 255 for a transparent material, else 0
// Source: the highlight is that of Phong, "Illumination for Computer Generated Pictures", 1975; the lunar law that of
//         Lommel and Seeliger
uint32_t shadeVertex(const Material* material, const float* normal, int inShadow, uint32_t flags,
                     uint32_t vertexColour);

// x^exponent x level by repeated squaring; 0 for a negative x, the level itself for exponents below 1.
float powerOf(float x, int32_t exponent, float level);

// The transparency byte that faces of the material are blended with: the whole part of transparency x 255, 0..255.
uint32_t transparencyByte(const Material* material);
