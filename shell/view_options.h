// shell/view_options.h - how a model is drawn, chosen by words: the options of kbx render and the attributes of a view
// in a page
#pragma once
#include "render/view.h"
#include "shell/choices.h"

#include <stdint.h>
#include <array>
#include <optional>
#include <string>

struct ViewArguments
{
    std::optional<int32_t> preset;
    std::optional<std::string> texture; // wood, metal, pattern, or a JPEG file
    uint32_t lightMask = 1;
    bool shadows = false;
    bool vertexColour = true;
    bool backCulled = true;
    bool wireframe = false;
    bool rough = false;
    bool metallic = false;
    bool moon = false;
    int32_t background = 0;
    std::array<float, 3> rotateDegrees = { 0, 0, 0 }; // about the axes of the screen, x first
    std::optional<std::array<float, 9>> view;         // the rotation, row by row
    float zoom = 1;
    int32_t width = 620;
    int32_t height = 520;
    std::optional<int32_t> frames; // how many to draw; when given, their speed is reported
};

struct ViewOption
{
    const char* name;
    const char* values; // what it takes, for people; null: nothing, it is a switch
    const char* help;
    bool (*set)(ViewArguments* view, const std::string& text); // returns whether the text is one of the values
};

// All options but the number of frames, in the order in which the help shows them.
extern const std::array<ViewOption, 15> viewOptions;

// The words that two of the options take, by their index.
inline constexpr const char* presetNames[] = { "brass", "wood",  "pewter",  "silver", "gold",         "green",
                                               "chalk", "brick", "crystal", "white",  "prop material" };
inline constexpr const char* backgroundNames[] = { "grey1", "grey2", "black" };

// The slot of the texture (image/textures.h) with that name: that of the user for everything but the built-in ones.
int32_t textureSlotOf(const std::string& name);

// Makes the choices in the order in which the options count. The slot's image and the reflection image have to be
// loaded where they are used. textureSlot: -1 for no texture; builtIn: whether the model is the built-in one.
void chooseByOptions(Choices* chosen, const ViewArguments& view, bool builtIn, int32_t textureSlot);

// The view that the options ask for, with a spin of one degree a frame.
ViewState viewByOptions(const ViewArguments& view);
