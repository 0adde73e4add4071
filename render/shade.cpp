// render/shade.cpp - the colour of a vertex: ambient, wrapped or lunar diffuse, and a highlight from each light
#include "render/materials.h"

#include "model/matrix.h"

#include <math.h>
#include <algorithm>

constexpr float shadowedShare = 0.6f; // the part of light 1 that reaches a vertex in shadow

float powerOf(float x, int32_t exponent, float level)
{
    if (x < 0)
        return 0;
    float result = level;
    for (int32_t bits = std::max(exponent, 0); bits != 0; bits >>= 1)
    {
        if (bits & 1)
            result *= x;
        x *= x;
    }
    return result;
}

// The lunar law: a full moon is as bright at its rim as in the middle.
static float moonWeight(const Material* material, float towardLight, float towardEye, float share)
{
    float divisor = fabsf(towardEye) + towardLight;
    if (!(towardLight > 0) || !(divisor > 0))
        return 0;
    return share * material->diffuseLevel * (2 * towardLight) / divisor;
}

// Reaches zero only where the normal points straight away from the light, so that the dark side keeps its shape.
static float wrappedWeight(const Material* material, float towardLight, float share)
{
    float wrapped = (1 + towardLight) * (1 + towardLight) * 0.25f;
    return powerOf(wrapped, material->shadingMode, material->diffuseLevel) * share;
}

// The reflected light along the eye's axis is its z.
static float highlightWeight(const Material* material, const Light& light, const float* normal, float towardLight,
                             float share)
{
    float towardEye = 2 * towardLight * normal[2] - light.direction[2];
    if (!(towardEye > 0))
        return 0;
    return powerOf(towardEye, material->shininess, material->specularLevel) * share;
}

static uint32_t channelByte(float channel)
{
    float scaled = channel * 255;
    return scaled > 0 ? static_cast<uint32_t>(std::min(scaled, 255.0f)) : 0;
}

// Multiplies a channel by the byte of the colour at shift, and leaves the product there.
static uint32_t multiplyByte(uint32_t value, uint32_t colour, int shift)
{
    return value * (colour >> shift & 0xFF) / 255 << shift;
}

uint32_t shadeVertex(const Material* material, const Light* lights, const float* normal, int inShadow, uint32_t flags,
                     uint32_t vertexColour)
{
    float k = material->transparency > 0 ? 1 - material->transparency : 1;
    float colour[3];
    for (int c = 0; c < 3; ++c)
        colour[c] = material->ambientLevel * material->ambient[c] * k;
    for (int i = 0; i < lightCount; ++i)
    {
        const Light& light = lights[i];
        if (!light.on)
            continue;
        float share = i == 0 && inShadow ? shadowedShare : 1; // only light 1 casts shadows
        float towardLight = dotProduct(light.direction, normal);
        float diffuse = flags & renderMoon ? moonWeight(material, towardLight, normal[2], share * k)
                                           : wrappedWeight(material, towardLight, share * k);
        float highlight = highlightWeight(material, light, normal, towardLight, share);
        for (int c = 0; c < 3; ++c)
            colour[c] += light.colour[c] * (diffuse * material->diffuse[c] + highlight * material->specular[c]);
    }
    uint32_t multiplier = flags & renderVertexColour ? vertexColour : opaqueWhite;
    uint32_t packed = material->transparency > 0 ? 0xFF000000u : 0;
    packed |= multiplyByte(channelByte(colour[0]), multiplier, 16);
    packed |= multiplyByte(channelByte(colour[1]), multiplier, 8);
    packed |= multiplyByte(channelByte(colour[2]), multiplier, 0);
    return packed;
}
