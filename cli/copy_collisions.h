// cli/copy_collisions.h - convert --copy-textures of many files: pictures that would take each other's place
#pragma once
#include "cli/targets.h"

// A line for each picture that would be copied to the name of another picture of an earlier input, or of a file that an
// input becomes. The same picture may be copied for many inputs. Reads every input, in processes of their own; one that
// fails has no pictures here, and says why when it is converted.
std::vector<std::string> copyCollisionsOf(const std::vector<Target>& targets, const Arguments& arguments);
