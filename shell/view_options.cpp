// shell/view_options.cpp - the words of the options, and the choices that they stand for
#include "shell/view_options.h"

#include "image/textures.h"
#include "model/ascii.h"
#include "render/frame_buffer.h"

#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <algorithm>
#include <vector>

// ---- texts ----

static std::vector<std::string> splitAtCommas(const std::string& text)
{
    std::vector<std::string> parts(1);
    for (char c : text)
    {
        if (c == ',')
            parts.emplace_back();
        else
            parts.back() += c;
    }
    return parts;
}

static bool parseNumber(const std::string& text, float* value)
{
    char* end = nullptr;
    *value = strtof(text.c_str(), &end);
    return !text.empty() && *end == 0 && isfinite(*value);
}

template <size_t N>
static bool parseNumbers(const std::string& text, std::array<float, N>* values)
{
    std::vector<std::string> parts = splitAtCommas(text);
    if (parts.size() != N)
        return false;
    for (size_t i = 0; i < N; ++i)
    {
        if (!parseNumber(parts[i], &(*values)[i]))
            return false;
    }
    return true;
}

// Takes a name of a list, in any letter case and with '-' for a blank, or an index into the list.
template <size_t N>
static bool parseChoice(const std::string& text, const char* const (&names)[N], int32_t* index)
{
    std::string wanted = text;
    for (char& c : wanted)
        c = c == '-' ? ' ' : asciiLower(c);
    for (size_t i = 0; i < N; ++i)
    {
        if (wanted == names[i] || text == std::to_string(i))
        {
            *index = static_cast<int32_t>(i);
            return true;
        }
    }
    return false;
}

// ---- the options ----

static bool setPreset(ViewArguments* view, const std::string& text)
{
    int32_t index;
    bool ok = parseChoice(text, presetNames, &index);
    if (ok)
        view->preset = index;
    return ok;
}

static bool setTexture(ViewArguments* view, const std::string& text)
{
    view->texture = text;
    return true;
}

static bool setLights(ViewArguments* view, const std::string& text)
{
    view->lightMask = 0;
    if (text == "none")
        return true;
    for (const std::string& part : splitAtCommas(text))
    {
        if (part.size() != 1 || part[0] < '1' || part[0] > '3')
            return false;
        view->lightMask |= 1u << (part[0] - '1');
    }
    return true;
}

// A switch sets its member to one value, whatever the text is.
template <bool ViewArguments::*member, bool value>
static bool setSwitch(ViewArguments* view, const std::string&)
{
    view->*member = value;
    return true;
}

static bool setBackground(ViewArguments* view, const std::string& text)
{
    return parseChoice(text, backgroundNames, &view->background);
}

static bool setRotate(ViewArguments* view, const std::string& text)
{
    return parseNumbers(text, &view->rotateDegrees);
}

static bool setView(ViewArguments* view, const std::string& text)
{
    std::array<float, 9> rows;
    bool ok = parseNumbers(text, &rows);
    if (ok)
        view->view = rows;
    return ok;
}

static bool setZoom(ViewArguments* view, const std::string& text)
{
    return parseNumber(text, &view->zoom) && view->zoom >= 1;
}

static bool setSize(ViewArguments* view, const std::string& text)
{
    int width = 0, height = 0, used = 0;
    if (text.size() > 20 || sscanf(text.c_str(), "%9dx%9d%n", &width, &height, &used) != 2 ||
        static_cast<size_t>(used) != text.size())
        return false;
    if (std::min(width, height) < displaySideLeast || std::max(width, height) > displaySideLimit)
        return false;
    view->width = width;
    view->height = height;
    return true;
}

const std::array<ViewOption, 15> viewOptions = { {
    { "preset", "NAME|0..10",
      "front material: brass, wood, pewter, silver, gold, green, chalk, brick, crystal, white or prop-material; "
      "unless given, prop-material for a file and brass for the built-in model",
      setPreset },
    { "texture", "NAME|FILE.jpg", "wood, metal, pattern, or a JPEG file; none unless given", setTexture },
    { "lights", "1,2,3|none", "the lights that are on, 1 unless given", setLights },
    { "shadows", nullptr, "shadows of light 1", setSwitch<&ViewArguments::shadows, true> },
    { "no-vertex-color", nullptr, "leave the vertices' own colours out",
      setSwitch<&ViewArguments::vertexColour, false> },
    { "no-backcull", nullptr, "draw faces turned away, too", setSwitch<&ViewArguments::backCulled, false> },
    { "wireframe", nullptr, "outlines instead of surfaces", setSwitch<&ViewArguments::wireframe, true> },
    { "rough", nullptr, "grainy surface", setSwitch<&ViewArguments::rough, true> },
    { "metallic", nullptr, "reflections of a studio", setSwitch<&ViewArguments::metallic, true> },
    { "moon", nullptr, "lunar shading", setSwitch<&ViewArguments::moon, true> },
    { "background", "grey1|grey2|black", "what lies behind the model, grey1 unless given", setBackground },
    { "rotate", "X,Y,Z", "degrees about the screen's axes, X first; 0,0,0 unless given", setRotate },
    { "view", "M00,...,M22", "the rotation itself, row by row", setView },
    { "zoom", "Z>=1", "magnification, 1 unless given", setZoom },
    { "size", "WxH, each 10..16384", "pixels, 620x520 unless given", setSize },
} };

// ---- choices ----

int32_t textureSlotOf(const std::string& name)
{
    int32_t slot = 0;
    while (slot < textureUser && name != builtInTextures[slot])
        ++slot;
    return slot;
}

static void chooseFlags(Choices* chosen, const ViewArguments& view)
{
    chooseRenderFlag(chosen, renderBackCulled, view.backCulled);
    chooseRenderFlag(chosen, renderVertexColour, view.vertexColour);
    chooseRenderFlag(chosen, renderWireframe, view.wireframe);
    chooseRenderFlag(chosen, renderShadows, view.shadows);
    chooseRenderFlag(chosen, renderRough, view.rough);
    chooseRenderFlag(chosen, renderMoon, view.moon);
}

// The flags come last, because choosing a texture or a preset switches wireframe off.
void chooseByOptions(Choices* chosen, const ViewArguments& view, bool builtIn, int32_t textureSlot)
{
    chooseBackground(chosen, view.background);
    choosePreset(chosen, builtIn ? presetBrass : presetProp);
    if (textureSlot >= 0)
        chooseTexture(chosen, textureSlot);
    if (view.metallic)
        chooseMetallic(chosen, true);
    if (view.preset)
        choosePreset(chosen, *view.preset);
    for (int32_t light = 0; light < lightCount; ++light)
        chooseLight(chosen, light, view.lightMask & (1u << light));
    chooseFlags(chosen, view);
}

ViewState viewByOptions(const ViewArguments& arguments)
{
    ViewState view = startView;
    if (arguments.view)
    {
        for (size_t i = 0; i < 9; ++i)
            view.rotation.m[i / 3 * 4 + i % 3] = (*arguments.view)[i];
    }
    const auto& degrees = arguments.rotateDegrees;
    Matrix turn;
    rotationAboutScreenAxes(&turn, degrees[0], degrees[1], degrees[2]);
    multiplyMatrices(&view.rotation, &turn, &view.rotation);
    rotationAboutScreenAxes(&view.step, 0, 1, 0);
    view.zoom = arguments.zoom;
    return view;
}
