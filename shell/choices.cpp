// shell/choices.cpp - how each choice changes the record
#include "shell/choices.h"

#include "image/textures.h"

Choices choices = startChoices;

static void setFlag(Choices* chosen, uint32_t flag, bool on)
{
    uint32_t* flags = &chosen->render.renderFlags;
    *flags = on ? *flags | flag : *flags & ~flag;
}

void showTexture(Choices* chosen, int32_t slot)
{
    chosen->textureIndex = slot;
    chosen->render.currentTexture = &TextureSlots[slot];
    chooseRenderFlag(chosen, renderTextured, true);
}

void chooseTexture(Choices* chosen, int32_t slot)
{
    showTexture(chosen, slot);
    chosen->materialPreset = presetWhite;
    ApplyPreset(&chosen->render, presetWhite, presetBrick);
}

void chooseMetallic(Choices* chosen, bool on)
{
    setFlag(chosen, renderMetallic, on);
    chosen->render.currentTexture = on ? &ReflectionImage : &TextureSlots[chosen->textureIndex];
    if (on)
        needTexture(chosen->render.currentTexture);
    ApplyPreset(&chosen->render, on ? presetWhite : chosen->materialPreset, presetBrick);
}

void choosePreset(Choices* chosen, int32_t preset)
{
    chosen->materialPreset = preset;
    setFlag(chosen, renderWireframe, false);
    ApplyPreset(&chosen->render, preset, chosen->backPreset);
}

void chooseLight(Choices* chosen, int32_t light, bool on)
{
    uint32_t bit = 1u << light;
    chosen->lightMask = on ? chosen->lightMask | bit : chosen->lightMask & ~bit;
    SetLight(&chosen->render, light, chosen->lightMask & bit);
}

void chooseBackground(Choices* chosen, int32_t index)
{
    chosen->backgroundIndex = index;
    chosen->render.backgroundColour = backgroundColours[index];
}

void chooseRenderFlag(Choices* chosen, uint32_t flag, bool on)
{
    setFlag(chosen, flag, on);
    if (flag == renderTextured && on)
    {
        setFlag(chosen, renderWireframe, false);
        needTexture(chosen->render.currentTexture);
    }
}

void chooseKeyframes3ds(Choices* chosen, bool on)
{
    chosen->keyframes3ds = on;
}

void chooseExactWeld(Choices* chosen, bool on)
{
    chosen->exactWeld = on;
}
