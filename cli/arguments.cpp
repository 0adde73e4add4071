// cli/arguments.cpp - the commands and options of kbx
#include "cli/arguments.h"
#include "cli/formats.h"
#include "cli/usage.h"
#include "cli/version.h"
#include "image/textures.h"
#include "platform/processes.h"

#include <CLI/CLI.hpp>
#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <algorithm>
#include <iostream>

constexpr char footerEnd[] =
    "\n"
    "Exit status:\n"
    "  0 done; 1 a file could not be read or written; 2 wrong usage; 3 not sound (info --check)\n"
    "\n"
    "Examples:\n"
    "  kbx info *.3ds\n"
    "  kbx convert --tool weld --tool fix-normals scan.ply scan.obj\n"
    "  kbx convert *.3ds --to obj --output-dir converted\n"
    "  kbx convert scan.ply - --to stl | gzip >scan.stl.gz\n"
    "  kbx render chair.obj --rotate 20,30,0 --shadows -o chair.png\n"
    "  kbx render --preset gold -o teapot.bmp";

// The end of the help: a line for each tool with its name and what it does, the exit status and examples.
static std::string makeFooter()
{
    constexpr size_t nameColumns = 13;
    std::string footer = "Tools:\n";
    for (const MeshTool& tool : meshTools)
    {
        std::string name = tool.name;
        name.resize(nameColumns, ' ');
        footer += "  " + name + tool.help + "\n";
    }
    return footer + footerEnd;
}

// "a, b or c"
static std::string alternatives(const std::vector<std::string>& words)
{
    std::string text = words[0];
    for (size_t i = 1; i < words.size(); ++i)
        text += (i + 1 == words.size() ? " or " : ", ") + words[i];
    return text;
}

static std::vector<std::string> toolNames()
{
    std::vector<std::string> names(std::size(meshTools));
    std::transform(std::begin(meshTools), std::end(meshTools), names.begin(),
                   [](const MeshTool& tool) { return tool.name; });
    return names;
}

// Adds an option whose text is parsed by one of the functions above. Where that fails, the user reads what was
// expected.
template <typename Parse>
static void addParsed(CLI::App* command, const std::string& name, const char* typeName, const char* help, Parse parse)
{
    command
        ->add_option_function<std::string>(
            name,
            [name, typeName, parse](const std::string& text)
            {
                if (!parse(text))
                    throw CLI::ValidationError(name, "expected " + std::string(typeName) + ", not " + text);
            },
            help)
        ->option_text(typeName);
}

// Adds an option that takes one of some words.
static void addWord(CLI::App* command, const std::string& name, std::string* word,
                    const std::vector<std::string>& words, const char* typeName, const std::string& help)
{
    command
        ->add_option_function<std::string>(
            name,
            [=](const std::string& text)
            {
                *word = CLI::detail::to_lower(text);
                if (std::find(words.begin(), words.end(), *word) == words.end())
                    throw CLI::ValidationError(name, "expected " + alternatives(words) + ", not " + text);
            },
            help)
        ->option_text(typeName);
}

// Adds a switch that turns a value off.
static void addOffSwitch(CLI::App* command, const char* name, bool* value, const char* help)
{
    command->add_flag_callback(
        name, [value] { *value = false; }, help);
}

// The options about what is printed on standard error.
static void addLineOptions(CLI::App* command, LoadArguments* load)
{
    command->add_flag("--strict", load->strict, "exit with status 1 after a warning, and write nothing");
    CLI::Option* quiet = command->add_flag("--quiet", load->quiet, "print no notices and no warnings");
    command->add_flag("--verbose", load->verbose, "print the time and the memory of each step")->excludes(quiet);
}

static void addLoadOptions(CLI::App* command, LoadArguments* load, bool withFilter)
{
    addOffSwitch(command, "--no-keyframes", &load->keyframes, "3DS: leave the objects where their vertices stand");
    command
        ->add_option_function<std::vector<std::string>>(
            "--tool",
            [load](const std::vector<std::string>& names)
            {
                for (const std::string& name : names)
                {
                    const MeshTool* tool = findToolByName(name);
                    if (!tool)
                        throw CLI::ValidationError("--tool", "expected " + alternatives(toolNames()) + ", not " + name);
                    load->tools.push_back(tool);
                }
            },
            alternatives(toolNames()) + "; may be repeated, applied in order; none unless given")
        ->option_text("TOOL")
        ->allow_extra_args(false);
    addWord(command, "--format", &load->format, formatNames(FormatUse::modelRead), "FORMAT",
            "read the file as this, whatever its name is: " + alternatives(formatNames(FormatUse::modelRead)) +
                "; standard input, the file -, needs it");
    command
        ->add_option("--ply-list", load->plyList,
                     "PLY: the list of a face that has its corners, the last one unless given")
        ->option_text("NAME");
    command->add_option("--max-size", load->maxSize, "read no file of more than N MiB")
        ->option_text("N")
        ->check(CLI::Range(1, 1 << 20));
    addLineOptions(command, load);
    if (withFilter)
        command
            ->add_option(
                "--filter", load->filter,
                "show only this entry of the list, 0 unless given: 0 all, from 1 on the groups, then 'All Materials', "
                "then the materials")
            ->option_text("N")
            ->check(CLI::NonNegativeNumber);
}

// The options of shell/view_options.h: switches, words of which any text will do, and texts that are parsed.
static void addViewOptions(CLI::App* command, ViewArguments* view)
{
    for (const ViewOption& option : viewOptions)
    {
        std::string name = std::string("--") + option.name;
        auto set = [view, &option](const std::string& text) { return option.set(view, text); };
        if (option.values)
            addParsed(command, name, option.values, option.help, set);
        else
            command->add_flag_callback(
                name, [set] { set(""); }, option.help);
    }
    command
        ->add_option("--frames", view->frames,
                     "draw N frames, turning one degree before each but the first; 1 unless given")
        ->option_text("N")
        ->check(CLI::Range(1, 1000000));
}

static void addJobs(CLI::App* command, Arguments* arguments, const char* help)
{
    command->add_option("--jobs", arguments->jobs, help)->option_text("N")->check(CLI::Range(1, programLimit));
}

// The options for many files at once, and those about the file to write.
static void addTargetOptions(CLI::App* command, Arguments* arguments, FormatUse use, const char* toHelp)
{
    command
        ->add_option("--output-dir", arguments->outputDir,
                     "read any number of files and write each into this folder, which is made where it is missing")
        ->option_text("DIR");
    addWord(command, "--to", &arguments->to, formatNames(use), "FORMAT", alternatives(formatNames(use)) + toHelp);
    addJobs(command, arguments, "with --output-dir: how many files at a time, one for each processor unless given");
    command->add_flag("--no-clobber", arguments->noClobber, "replace no file, and leave out what is there already");
}

static CLI::App* addCommand(CLI::App* app, Arguments* arguments, Command command, const char* name, const char* help)
{
    CLI::App* added = app->add_subcommand(name, help)->group("Commands");
    added->set_help_flag("-h,--help", "this help");
    added->final_callback([=] { arguments->command = command; });
    return added;
}

// The end of a command's help. Set for every command, because it would inherit that of the program.
static void addExamples(CLI::App* command, const std::vector<std::string>& lines)
{
    std::string footer = "Examples:";
    for (const std::string& line : lines)
        footer += "\n  kbx " + command->get_name() + (line.empty() ? "" : " " + line);
    command->footer(footer);
}

static CLI::Option* addInput(CLI::App* command, Arguments* arguments, const char* name, const char* help)
{
    return command
        ->add_option_function<std::string>(
            name, [=](const std::string& path) { arguments->inputs.push_back(path); }, help)
        ->option_text(" ");
}

// A command takes one or any number of files, which the check after parsing knows.
static void addInputs(CLI::App* command, Arguments* arguments, const char* help)
{
    command->add_option("IN", arguments->inputs, help)->option_text(" ");
}

std::vector<std::string> valuesOf(const std::string& option)
{
    std::vector<std::string> values;
    if (option == "tool")
    {
        values = toolNames();
        std::sort(values.begin(), values.end());
    }
    else if (option == "format")
        values = formatNames(FormatUse::modelRead);
    else if (option == "to")
    {
        values = formatNames(FormatUse::modelWritten);
        for (const std::string& name : formatNames(FormatUse::pictureWritten))
            values.push_back(name);
    }
    else if (option == "preset")
        values.assign(std::begin(presetNames), std::end(presetNames));
    else if (option == "background")
        values.assign(std::begin(backgroundNames), std::end(backgroundNames));
    else if (option == "texture")
        values.assign(std::begin(builtInTextures), std::end(builtInTextures));
    else if (option == "lights")
        values = { "none", "1", "2", "3", "1,2", "1,3", "2,3", "1,2,3" };
    for (std::string& value : values)
        std::replace(value.begin(), value.end(), ' ', '-');
    return values;
}

static void addSmallCommands(CLI::App* app, Arguments* arguments)
{
    CLI::App* decode = addCommand(app, arguments, Command::decode, "decode", "decode a JPEG file into a picture");
    addInput(decode, arguments, "IN", "JPEG file to read")->required();
    decode->add_option("OUT", arguments->output, "picture to write: PNG when the name ends in .png, else BMP")
        ->option_text(" ")
        ->required();
    addLineOptions(decode, &arguments->load);
    addExamples(decode, { "wood.jpg wood.png" });

    CLI::App* formats =
        addCommand(app, arguments, Command::formats, "formats", "the formats that are read and written");
    addExamples(formats, { "" });
}

void describeUsage(CLI::App* app, Arguments* arguments)
{
    app->name("kbx");
    app->description("kbx - inspect, repair, convert and render 3D polygon models");
    app->set_help_flag("-h,--help", "this help; kbx COMMAND --help shows the options of a command");
    app->get_formatter()->label("SUBCOMMAND", "COMMAND");
    app->allow_windows_style_options(false); // "/models/a.obj" is a file on every operating system
    app->require_subcommand(1);
    app->set_version_flag("--version", versionLine, "version and build");

    CLI::App* info = addCommand(app, arguments, Command::info, "info", "counts, bounds, groups, materials, textures");
    CLI::Option* json =
        info->add_flag("--json", arguments->json, "as JSON: an object, or an array of them for several files");
    info->add_flag("--json-lines", arguments->jsonLines, "as JSON: an object in a line for each file")->excludes(json);
    info->add_flag("--check", arguments->check, "exit with status 3 when a surface is not sound, and say why");
    addLoadOptions(info, &arguments->load, true);
    info->add_option("FILE", arguments->inputs, "models to read")->option_text(" ")->required();
    addExamples(info, { "chair.obj", "--json *.3ds", "--check --tool weld part.stl" });

    CLI::App* dump = addCommand(app, arguments, Command::dump, "dump", "the whole mesh as text");
    addLoadOptions(dump, &arguments->load, true);
    dump->add_flag("--normals", arguments->normals, "with vertex normals and face planes");
    addInput(dump, arguments, "FILE", "model to read")->required();
    addExamples(dump, { "chair.obj", "--tool weld --normals scan.ply", "--filter 2 chair.obj" });

    CLI::App* convert = addCommand(app, arguments, Command::convert, "convert", "read a model, repair it, write it");
    addLoadOptions(convert, &arguments->load, true);
    addTargetOptions(convert, arguments, FormatUse::modelWritten, ": what --output-dir or the file - gets");
    convert->add_flag("--built-in", arguments->builtIn, "write the built-in model; there is no IN then");
    convert->add_flag("--copy-textures", arguments->copyTextures,
                      "put the pictures that were found beside OUT, under the names that it has for them");
    addInputs(convert, arguments, "model to read; several with --output-dir");
    addInput(convert, arguments, "OUT",
             "file to write: .obj, .pp2, .rkf, .lxs or .stl; - for standard output; none with --output-dir");
    addExamples(convert,
                { "--tool weld --tool fix-normals scan.ply scan.obj", "--copy-textures chair.obj out/chair.lxs",
                  "*.3ds --to obj --output-dir converted", "--filter 2 chair.obj seat.obj" });

    CLI::App* render = addCommand(app, arguments, Command::render, "render", "draw a model into a picture");
    addLoadOptions(render, &arguments->load, true);
    addViewOptions(render, &arguments->view);
    addTargetOptions(render, arguments, FormatUse::pictureWritten,
                     ": what --output-dir (PNG unless given) or the file - (BMP unless given) gets");
    addInputs(render, arguments, "model to read, the built-in one when there is none; several with --output-dir");
    render
        ->add_option("-o,--output", arguments->output,
                     "picture to write, unless there is --output-dir: PNG when the name ends in .png, else BMP")
        ->option_text("OUT");
    addExamples(render, { "chair.obj --rotate 20,30,0 --shadows -o chair.png", "--preset gold -o teapot.bmp",
                          "*.obj --size 200x150 --output-dir thumbnails" });

    addSmallCommands(app, arguments);
    app->footer(makeFooter()); // after adding the commands, which would inherit it
}
