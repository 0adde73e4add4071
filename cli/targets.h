// cli/targets.h - the files that a call for many files writes into its folder
#pragma once
#include "cli/arguments.h"

struct Target
{
    std::string input, output;
};

// For each input its output: the name of the input in the folder, with the extension of the format.
std::vector<Target> targetsOf(const Arguments& arguments);

// A line for each two inputs of which one would replace a file of the other, as far as the names show that: also the
// library of an OBJ file, the preview of a prop and the parts of a scene. Letter case counts where it does in the
// folder.
std::vector<std::string> collisionsOf(const std::vector<Target>& targets, const std::string& folder);
