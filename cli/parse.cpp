// cli/parse.cpp - parsing the command line of kbx
#include "cli/arguments.h"
#include "cli/usage.h"

#include <algorithm>
#include <iostream>

// The arguments when there is no command to run.
static Arguments answered(int exitStatus)
{
    Arguments arguments;
    arguments.exitStatus = exitStatus;
    return arguments;
}

// "convert: 2 files expected, 93 given"
static std::string filesExpected(const CLI::App* command, size_t expected, size_t given)
{
    return command->get_name() + ": " + std::to_string(expected) + (expected == 1 ? " file" : " files") +
           " expected, " + std::to_string(given) + " given";
}

// For more files than the command takes; empty where something else is wrong.
static std::string tooManyFiles(const CLI::App& app)
{
    const CLI::App* command = app.get_subcommands().front();
    size_t expected = command->get_options([](const CLI::Option* option) { return option->get_positional(); }).size();
    size_t given = expected;
    for (const std::string& word : app.remaining(true))
    {
        if (word.rfind('-', 0) == 0) // an option that is not known
            return "";
        ++given;
    }
    return given == expected ? "" : filesExpected(command, expected, given);
}

// What is wrong with the files and options of a call for many files; empty when nothing is.
static std::string checkMany(const Arguments& arguments)
{
    if (arguments.inputs.empty())
        return "IN is required";
    if (!arguments.output.empty())
        return "--output-dir and --output exclude each other";
    if (arguments.builtIn)
        return "--output-dir and --built-in exclude each other";
    if (arguments.command == Command::convert && arguments.to.empty())
        return "--to is required with --output-dir";
    return "";
}

// --to says what standard output gets; a file's own name says it elsewhere.
static std::string checkTarget(const Arguments& arguments, bool converts)
{
    if (arguments.output != "-")
        return arguments.to.empty() ? "" : "--to is for --output-dir and for standard output";
    if (converts && arguments.to.empty())
        return "--to is required for standard output";
    if (arguments.to == "pp2" || arguments.to == "lxs")
        return "a set of files does not go to standard output; expected --to obj, stl or rkf";
    return "";
}

// The same for a call for one file. Sets the output of convert, the last of its files.
static std::string checkOne(const CLI::App* command, Arguments* arguments)
{
    std::vector<std::string>& files = arguments->inputs;
    bool converts = arguments->command == Command::convert;
    size_t expected = converts && !arguments->builtIn ? 2 : 1;
    if (files.size() > expected)
        return filesExpected(command, expected, files.size());
    if (converts && files.size() < expected)
        return files.size() + 1 < expected ? "IN is required" : "OUT is required";
    if (converts)
    {
        arguments->output = files.back();
        files.pop_back();
    }
    if (arguments->output.empty())
        return converts ? "OUT is required" : "--output is required";
    if (arguments->jobs > 0)
        return "--jobs is for --output-dir";
    return checkTarget(*arguments, converts);
}

// What is wrong with standard input among the files.
static std::string checkInput(const Arguments& arguments)
{
    auto count = std::count_if(arguments.inputs.begin(), arguments.inputs.end(), isStandardInput);
    if (count > 0 && !arguments.outputDir.empty())
        return "standard input has no name for a file of --output-dir";
    if (count > 1)
        return "standard input can be read once only";
    return count == 1 && arguments.load.format.empty() ? "--format is required for standard input" : "";
}

static std::string checkFiles(const CLI::App* command, Arguments* arguments)
{
    if (arguments->command == Command::info || arguments->command == Command::dump)
        return checkInput(*arguments);
    if (arguments->command != Command::convert && arguments->command != Command::render)
        return "";
    std::string wrong = arguments->outputDir.empty() ? checkOne(command, arguments) : checkMany(*arguments);
    return wrong.empty() ? checkInput(*arguments) : wrong;
}

// The options that were given, as words of a command line, but for those about many files and their answer.
static std::vector<std::string> optionsGiven(const CLI::App* command)
{
    static const std::string left[] = { "--output", "--output-dir", "--to", "--jobs" };
    std::vector<std::string> words;
    for (const CLI::Option* option : command->get_options())
    {
        std::string name = "--" + (option->get_lnames().empty() ? "" : option->get_lnames()[0]);
        if (option->count() == 0 || option->get_positional() ||
            std::find(std::begin(left), std::end(left), name) != std::end(left))
            continue;
        bool takesValue = option->get_items_expected_max() > 0;
        for (const std::string& value : option->results())
        {
            words.push_back(name);
            if (takesValue)
                words.back().append("=").append(value);
        }
    }
    return words;
}

static std::string whatIsWrong(const CLI::App& app, const CLI::ParseError& error)
{
    if (app.get_subcommands().empty())
        return "expected info, dump, convert, render, decode or formats";
    std::string files = tooManyFiles(app);
    return files.empty() ? error.what() : files;
}

static Arguments refused(const std::string& what)
{
    std::cerr << "kbx: " << what << " (kbx --help shows the usage)\n";
    return answered(2);
}

Arguments parseArguments(const std::vector<std::string>& words)
{
    CLI::App app;
    Arguments arguments;
    describeUsage(&app, &arguments);
    try
    {
        app.parse(std::vector<std::string>(words.rbegin(), words.rend())); // the parser takes them from the back
    }
    catch (const CLI::CallForHelp&)
    {
        const CLI::App* asked = app.get_subcommands().empty() ? &app : app.get_subcommands().front();
        std::cout << asked->help(asked == &app ? "" : "kbx");
        return answered(std::cout.flush() ? 0 : 1);
    }
    catch (const CLI::CallForVersion& version)
    {
        std::cout << version.what() << '\n';
        return answered(std::cout.flush() ? 0 : 1);
    }
    catch (const CLI::ParseError& error)
    {
        return refused(whatIsWrong(app, error));
    }
    const CLI::App* command = app.get_subcommands().front();
    std::string wrong = checkFiles(command, &arguments);
    if (!wrong.empty())
        return refused(wrong);
    arguments.options = optionsGiven(command);
    return arguments;
}
