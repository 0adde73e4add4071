// cli/arguments.h - the command line of kbx as a record
#pragma once
#include "tools/tools.h"

#include <stdint.h>
#include <array>
#include <optional>
#include <string>
#include <vector>

enum class Command
{
    none, // answered already: help, version or wrong usage
    info,
    dump,
    convert,
    render,
    decode,
};

// What happens to a file between the disk and the use of it.
struct LoadArguments
{
    bool keyframes = true;
    std::vector<const MeshTool*> tools; // in the order given
    std::optional<int> filter;          // the tool panel's list index with "By Group" on
};

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
    std::array<float, 3> rotateDegrees = { 0, 0, 0 }; // about the screen's axes, x first
    std::optional<std::array<float, 9>> view;         // the rotation, row by row
    float zoom = 1;
    int32_t width = 620;
    int32_t height = 520;
    std::optional<int32_t> frames; // how many; their speed is reported when it is given
};

struct Arguments
{
    Command command = Command::none;
    int exitStatus = 0; // with Command::none
    bool json = false;
    bool normals = false;
    LoadArguments load;
    ViewArguments view;
    std::vector<std::string> inputs;
    std::string output;
};

// Takes the arguments apart. Help and version go to standard output; wrong usage gets a line on standard error that
// says what was expected and exit status 2.
Arguments parseArguments(const std::vector<std::string>& words);
