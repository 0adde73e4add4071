// render/materials.cpp - the table of presets, and the materials they become
#include "render/materials.h"

#include "model/matrix.h"

#include <string.h>
#include <algorithm>

// clang-format off
// ambient, diffuse, specular level; colour; specular colour; shading mode, shininess; transparency
const MaterialPreset materialPresets[presetCount] = {
    { 0.1f,  0.4f, 0.5f, { 0.8f,  0.4f,  0.1f  }, { 1.0f, 0.8f, 0.4f }, 0, 0, 0    }, // Brass
    { 0.1f,  1.0f, 1.0f, { 0.84f, 0.61f, 0.53f }, { 0.5f, 0.5f, 0.5f }, 0, 0, 0    }, // Wood
    { 0.1f,  0.3f, 0.5f, { 0.7f,  0.7f,  0.9f  }, { 1.0f, 1.0f, 1.0f }, 0, 0, 0    }, // Pewter
    { 0.2f,  0.6f, 1.0f, { 0.8f,  0.8f,  0.85f }, { 0.8f, 0.9f, 0.9f }, 0, 0, 0    }, // Silver
    { 0.15f, 0.6f, 0.5f, { 0.95f, 0.55f, 0.1f  }, { 1.0f, 0.8f, 0.3f }, 0, 0, 0    }, // Gold
    { 0.1f,  1.0f, 1.0f, { 0.73f, 0.88f, 0.61f }, { 0.5f, 0.5f, 0.5f }, 0, 0, 0    }, // Green
    { 0.3f,  0.6f, 0.0f, { 1.0f,  1.0f,  1.0f  }, { 1.0f, 1.0f, 1.0f }, 0, 0, 0    }, // Chalk
    { 0.1f,  1.0f, 1.0f, { 1.0f,  0.54f, 0.5f  }, { 0.2f, 0.2f, 0.2f }, 0, 0, 0    }, // Brick
    { 0.3f,  0.2f, 0.6f, { 0.6f,  0.6f,  1.0f  }, { 1.0f, 1.0f, 1.0f }, 0, 0, 0.6f }, // Crystal
    { 0.1f,  1.0f, 0.8f, { 1.0f,  1.0f,  1.0f  }, { 1.0f, 1.0f, 1.0f }, 0, 0, 0    }, // White
    { 0.0f,  1.0f, 0.5f, { 1.0f,  1.0f,  1.0f  }, { 1.0f, 1.0f, 1.0f }, 0, 0, 0    }, // Prop Material
};
// clang-format on

void SetLight(RenderSettings* settings, int32_t index, uint32_t on)
{
    if (index < 0 || index >= lightCount)
        return;
    normalise(settings->lights[index].direction);
    settings->lights[index].on = on;
}

// reserved2 and reserved4 keep their values: no preset has any for them.
static void fillMaterial(Material* material, const MaterialPreset& preset)
{
    for (int k = 0; k < 3; ++k)
    {
        material->ambient[k] = material->diffuse[k] = preset.colour[k];
        material->specular[k] = preset.specularColour[k];
        material->extra[k] = 0;
        material->reserved1[k] = 0;
    }
    material->ambientLevel = preset.ambientLevel;
    material->diffuseLevel = preset.diffuseLevel;
    material->specularLevel = preset.specularLevel;
    material->shadingMode = preset.shadingMode;
    material->shininess = preset.shininess;
    material->reserved3 = 0;
    material->transparency = preset.transparency;
}

void ApplyPreset(RenderSettings* settings, int32_t preset, int32_t secondPreset)
{
    if (preset < 0 || preset >= presetCount || secondPreset < 0 || secondPreset >= presetCount)
        return;
    settings->propMaterial = preset == presetProp;
    fillMaterial(&settings->front, materialPresets[preset]);
    fillMaterial(&settings->behind, materialPresets[secondPreset]);
}

uint32_t transparencyByte(const Material* material)
{
    return static_cast<uint32_t>(std::clamp(floorToInt(material->transparency * 255), 0, 255));
}
