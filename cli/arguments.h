// cli/arguments.h - the command line of kbx as a record
#pragma once
#include "shell/view_options.h"
#include "tools/tools.h"

#include <stdint.h>
#include <optional>
#include <string>
#include <vector>

enum class Command
{
    none, // help, version or wrong usage: there is nothing to run
    info,
    dump,
    convert,
    render,
    decode,
    formats,
};

// How a model is read, and what is done to it before the command uses it.
struct LoadArguments
{
    bool keyframes = true;
    std::vector<const MeshTool*> tools; // in the order given
    std::optional<int> filter;          // index in the filter list of the tool panel
    std::string format;                 // how every file is read; empty: as its name says
    std::string plyList;                // the list of a PLY face that counts; empty: the last one
    std::optional<int> maxSize;         // MiB of the largest file that is read
    bool strict = false;                // warnings are failures
    bool quiet = false;                 // no warnings and no notices
    bool verbose = false;               // the time and memory of each step
};

// Whether an input is standard input.
inline bool isStandardInput(const std::string& path)
{
    return path == "-";
}

struct Arguments
{
    Command command = Command::none;
    int exitStatus = 0; // with Command::none
    bool json = false;
    bool jsonLines = false;
    bool check = false;
    bool normals = false;
    LoadArguments load;
    ViewArguments view;
    bool copyTextures = false; // convert
    bool builtIn = false;      // convert: the built-in model instead of an input
    std::vector<std::string> inputs;
    std::string output;

    // Many files at once.
    std::string outputDir; // empty: one file
    std::string to;        // the format of the files in it
    int jobs = 0;          // how many files at a time; 0: as many as there are processors
    bool noClobber = false;
    std::vector<std::string> options; // those that every file gets, as words of a command line
};

// Parses the arguments. Prints help and version on standard output. For wrong usage it prints a line on standard error
// that says what was expected, and sets exit status 2.
Arguments parseArguments(const std::vector<std::string>& words);
