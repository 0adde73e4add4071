// cli/make/make_manual.cpp - writes the manual page and the shell completions of kbx from its own usage and the
// window's keys
//
//   make_manual FOLDER
//
// It writes kbx.1 and kestrelbox.1, the pages, and kbx.bash, _kbx (zsh) and kbx.fish, which complete commands, options
// and the words that an option takes.
#include "cli/usage.h"
#include "cli/version.h"
#include "model/ascii.h"
#include "shell/keys.h"

#include <stdio.h>
#include <fstream>
#include <string>
#include <vector>

using Options = std::vector<const CLI::Option*>;
using Commands = std::vector<const CLI::App*>;

static Options optionsOf(const CLI::App* app)
{
    return app->get_options([](const CLI::Option* option) { return option->nonpositional(); });
}

static Options positionalsOf(const CLI::App* app)
{
    return app->get_options([](const CLI::Option* option) { return option->get_positional(); });
}

static Commands commandsOf(const CLI::App& app)
{
    return app.get_subcommands([](const CLI::App*) { return true; });
}

static bool takesValue(const CLI::Option* option)
{
    return option->get_items_expected_max() > 0;
}

// "-o", "--output"
static std::vector<std::string> spellings(const CLI::Option* option)
{
    std::vector<std::string> names;
    for (const std::string& name : option->get_snames())
        names.push_back("-" + name);
    for (const std::string& name : option->get_lnames())
        names.push_back("--" + name);
    return names;
}

static std::vector<std::string> wordsOf(const CLI::Option* option)
{
    return option->get_lnames().empty() ? std::vector<std::string>() : valuesOf(option->get_lnames()[0]);
}

// Whether the option takes a file name, alone or beside the words of wordsOf.
static bool takesFile(const CLI::Option* option)
{
    const std::vector<std::string>& names = option->get_lnames();
    return !names.empty() && (names[0] == "output" || names[0] == "output-dir" || names[0] == "texture");
}

static std::string joined(const std::vector<std::string>& words, const char* between)
{
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : between) + word;
    return text;
}

// The text with another one before each of the characters.
static std::string escaped(const std::string& text, const char* characters, const std::string& before)
{
    std::string result;
    for (char c : text)
    {
        if (std::string(characters).find(c) != std::string::npos)
            result += before;
        result += c;
    }
    return result;
}

// The text in single quotes for a shell.
static std::string shellQuoted(const std::string& text)
{
    std::string result = "'";
    for (char c : text)
        result += c == '\'' ? "'\\''" : std::string(1, c);
    return result + "'";
}

// ---- the manual page ----

static std::string roff(const std::string& text)
{
    std::string result;
    for (char c : text)
    {
        if (c == '\\')
            result += "\\e";
        else if (c == '-')
            result += "\\-";
        else if (c == '\'')
            result += "\\(aq";
        else
            result += c;
    }
    return result.rfind('.', 0) == 0 ? "\\&" + result : result;
}

static void printManualOptions(std::ostream* out, const CLI::App* app)
{
    for (const CLI::Option* option : positionalsOf(app))
        *out << ".TP\n.I " << roff(option->get_name(true)) << "\n" << roff(option->get_description()) << "\n";
    for (const CLI::Option* option : optionsOf(app))
    {
        *out << ".TP\n.B " << roff(joined(spellings(option), ", "));
        if (takesValue(option))
            *out << " \\fI" << roff(option->get_option_text()) << "\\fR";
        *out << "\n" << roff(option->get_description()) << "\n";
    }
}

static void printSynopsis(std::ostream* out, const CLI::App* command)
{
    *out << ".B kbx " << command->get_name() << "\n[\\fIOPTION\\fR]...";
    for (const CLI::Option* option : positionalsOf(command))
    {
        std::string name = roff(option->get_name(true)) + (option->get_items_expected_max() > 1 ? "..." : "");
        *out << (option->get_required() ? " \\fI" + name + "\\fR" : " [\\fI" + name + "\\fR]");
    }
    for (const CLI::Option* option : optionsOf(command))
    {
        if (option->get_required())
            *out << " \\fB" << roff(spellings(option)[0]) << "\\fR \\fI" << roff(option->get_option_text()) << "\\fR";
    }
    *out << "\n.br\n";
}

static std::string capitals(std::string text)
{
    for (char& c : text)
        c = asciiUpper(c);
    return text;
}

// Headings of the footer become sections; indented lines stay lines.
static void printFooter(std::ostream* out, const std::string& footer)
{
    size_t start = 0;
    while (start < footer.size())
    {
        size_t end = std::min(footer.find('\n', start), footer.size());
        std::string line = footer.substr(start, end - start);
        start = end + 1;
        if (line.empty())
            continue;
        if (line[0] != ' ')
            *out << ".SH " << capitals(line.substr(0, line.size() - 1)) << "\n";
        else
            *out << roff(line.substr(2)) << "\n.br\n";
    }
}

static void printKeys(std::ostream* out)
{
    *out << ".SH KEYS\n";
    for (const KeyCommand& command : keyCommands())
        *out << ".TP\n.B " << roff(command.name) << "\n" << roff(command.help) << "\n";
}

static void printManual(std::ostream* out, const CLI::App& app)
{
    *out << ".TH KBX 1 \"\" \"kbx " << versionNumber << "\" \"Kestrelbox\"\n"
         << ".SH NAME\n"
         << escaped(app.get_description(), "-", "\\") << "\n.SH SYNOPSIS\n";
    for (const CLI::App* command : commandsOf(app))
        printSynopsis(out, command);
    *out << ".B kbx\n\\-\\-help | \\-\\-version\n"
         << ".SH DESCRIPTION\n"
            "A model is read by the extension of its name: .obj (with its .mtl), .3ds, .dxf, .ply, .off, .stl, "
            ".pp2, .hr2, .cr2 or .rkf. Messages and notices are lines on standard error; a progress bar is shown "
            "there when it is a terminal. A file is put in place only when all of it has been written.\n"
         << ".SH COMMANDS\n";
    for (const CLI::App* command : commandsOf(app))
    {
        *out << ".SS kbx " << command->get_name() << "\n" << roff(command->get_description()) << "\n";
        printManualOptions(out, command);
    }
    *out << ".SH OPTIONS\n";
    printManualOptions(out, &app);
    printFooter(out, app.get_footer());
    *out << ".SH SEE ALSO\n.BR kestrelbox (1)\n";
}

// The page of the program with the window.
static void printWindowManual(std::ostream* out, const CLI::App&)
{
    *out << ".TH KESTRELBOX 1 \"\" \"kestrelbox " << versionNumber
         << "\" \"Kestrelbox\"\n"
            ".SH NAME\nkestrelbox \\- look at 3D polygon models, repair and convert them\n"
            ".SH SYNOPSIS\n.B kestrelbox\n[\\fIFILE\\fR]\n"
            ".SH DESCRIPTION\nShows a model in a window: FILE, or the built-in teapot. When the program runs already, "
            "its "
            "window comes forward and opens FILE.\n.PP\n"
            "The left button of the mouse turns the model, the right button and the wheel zoom. A file that is dropped "
            "on "
            "the window is opened.\n";
    printKeys(out);
    *out << ".SH EXIT STATUS\n0 after the window was closed, 1 when there could be none or the display has gone away.\n"
            ".SH SEE ALSO\n.BR kbx (1)\n";
}

// ---- completions ----

static std::vector<std::string> allSpellings(const CLI::App* app)
{
    std::vector<std::string> words;
    for (const CLI::Option* option : optionsOf(app))
    {
        for (const std::string& name : spellings(option))
            words.push_back(name);
    }
    return words;
}

static std::vector<std::string> commandNames(const Commands& commands)
{
    std::vector<std::string> names;
    for (const CLI::App* command : commands)
        names.push_back(command->get_name());
    return names;
}

// The options of all commands; of several with one name the first.
static Options distinctOptions(const CLI::App& app)
{
    Options distinct;
    std::string seen = "|";
    for (const CLI::App* command : commandsOf(app))
    {
        for (const CLI::Option* option : optionsOf(command))
        {
            std::string name = "|" + option->get_name() + "|";
            if (seen.find(name) != std::string::npos)
                continue;
            seen += name.substr(1);
            distinct.push_back(option);
        }
    }
    return distinct;
}

// Where the function offers nothing, the shell completes file names.
static void printBash(std::ostream* out, const CLI::App& app)
{
    Commands commands = commandsOf(app);
    *out << "# bash completion of kbx\n"
            "_kbx()\n{\n"
            "    local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]} command=${COMP_WORDS[1]}\n"
            "    [ \"$COMP_CWORD\" -gt 1 ] || command=\n"
            "    # the = of --option=word is a word of its own\n"
            "    if [ \"$word\" = = ]; then word=; elif [ \"$previous\" = = ]; then "
            "previous=${COMP_WORDS[COMP_CWORD-2]}; fi\n"
            "    case $previous in\n";
    for (const CLI::Option* option : distinctOptions(app))
    {
        if (!takesValue(option))
            continue;
        *out << "    " << joined(spellings(option), " | ") << ") ";
        if (!takesFile(option))
            *out << "compopt +o bashdefault +o default 2>/dev/null; ";
        if (!wordsOf(option).empty())
            *out << "COMPREPLY=($(compgen -W " << shellQuoted(joined(wordsOf(option), " ")) << " -- \"$word\")); ";
        *out << "return ;;\n";
    }
    *out << "    esac\n    case $command,$word in\n";
    for (const CLI::App* command : commands)
        *out << "    " << command->get_name() << ",-*) COMPREPLY=($(compgen -W "
             << shellQuoted(joined(allSpellings(command), " ")) << " -- \"$word\")) ;;\n";
    *out << "    ,*) COMPREPLY=($(compgen -W "
         << shellQuoted(joined(commandNames(commands), " ") + " " + joined(allSpellings(&app), " "))
         << " -- \"$word\")) ;;\n"
            "    esac\n}\n"
            "complete -o bashdefault -o default -F _kbx kbx\n";
}

// '*--option=[description]:value:words'. After a long option, = allows the value in the same word or in the next one;
// after a short option, + does.
static std::string zshArgument(const CLI::Option* option, const std::string& name)
{
    std::string text = "*" + name;
    if (takesValue(option))
        text += name.rfind("--", 0) == 0 ? "=" : "+";
    text += "[" + escaped(option->get_description(), "[]:\\", "\\") + "]";
    if (takesValue(option))
    {
        std::string words = joined(wordsOf(option), " ");
        text += ":" + escaped(option->get_option_text(), ":\\", "\\") + ":";
        if (takesFile(option))
            text += " _kbx_words_or_files " + words;
        else
            text += words.empty() ? " " : "(" + words + ")";
    }
    return shellQuoted(text);
}

static void printZshArguments(std::ostream* out, const CLI::App* app, const char* indent)
{
    *out << indent << "_arguments";
    for (const CLI::Option* option : optionsOf(app))
    {
        for (const std::string& name : spellings(option))
            *out << " \\\n" << indent << "    " << zshArgument(option, name);
    }
}

static void printZsh(std::ostream* out, const CLI::App& app)
{
    *out << "#compdef kbx\n"
            "_kbx_words_or_files()\n{\n"
            "    _alternative \"words:word:($*)\" files:file:_files\n"
            "}\n"
            "_kbx()\n{\n"
            "    local -a commands=(\n";
    for (const CLI::App* command : commandsOf(app))
        *out << "        " << shellQuoted(command->get_name() + ":" + escaped(command->get_description(), ":", "\\"))
             << "\n";
    *out << "    )\n"
            "    if (( CURRENT == 2 )) && [[ $words[2] == -* ]]; then\n";
    printZshArguments(out, &app, "        ");
    *out << "\n"
            "        return\n"
            "    elif (( CURRENT == 2 )); then\n"
            "        _describe command commands\n"
            "        return\n"
            "    fi\n"
            "    local command=$words[2]\n"
            "    shift words\n"
            "    (( CURRENT-- ))\n"
            "    case $command in\n";
    for (const CLI::App* command : commandsOf(app))
    {
        *out << "    " << command->get_name() << ")\n";
        printZshArguments(out, command, "        ");
        *out << " \\\n            '*:file:_files' ;;\n";
    }
    *out << "    esac\n}\n_kbx \"$@\"\n";
}

static void printFishOptions(std::ostream* out, const CLI::App* app, const std::string& when)
{
    for (const CLI::Option* option : optionsOf(app))
    {
        *out << "complete -c kbx -n " << shellQuoted(when);
        for (const std::string& name : option->get_snames())
            *out << " -s " << name;
        for (const std::string& name : option->get_lnames())
            *out << " -l " << name;
        if (takesValue(option))
            *out << (takesFile(option) ? " -r" : " -x"); // -x: no files beside the words
        if (!wordsOf(option).empty())
            *out << " -a " << shellQuoted(joined(wordsOf(option), " "));
        *out << " -d " << shellQuoted(option->get_description()) << "\n";
    }
}

static void printFish(std::ostream* out, const CLI::App& app)
{
    *out << "# fish completion of kbx\n";
    for (const CLI::App* command : commandsOf(app))
        *out << "complete -c kbx -f -n __fish_use_subcommand -a " << command->get_name() << " -d "
             << shellQuoted(command->get_description()) << "\n";
    printFishOptions(out, &app, "__fish_use_subcommand");
    for (const CLI::App* command : commandsOf(app))
        printFishOptions(out, command, "__fish_seen_subcommand_from " + command->get_name());
}

int main(int argc, char** argv)
{
    struct Form
    {
        const char* file;
        void (*print)(std::ostream* out, const CLI::App& app);
    };
    static const Form forms[] = { { "kbx.1", printManual },
                                  { "kestrelbox.1", printWindowManual },
                                  { "kbx.bash", printBash },
                                  { "_kbx", printZsh },
                                  { "kbx.fish", printFish } };
    if (argc != 2)
    {
        fputs("usage: make_manual FOLDER\n", stderr);
        return 2;
    }
    CLI::App app;
    Arguments arguments;
    describeUsage(&app, &arguments);
    for (const Form& form : forms)
    {
        std::ofstream out(std::string(argv[1]) + "/" + form.file, std::ios::binary);
        form.print(&out, app);
        if (!out.flush())
        {
            fprintf(stderr, "make_manual: %s/%s cannot be written\n", argv[1], form.file);
            return 1;
        }
    }
    return 0;
}
