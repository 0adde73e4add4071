// shell/win32/main.cpp - the entry point of the desktop program
#include "platform/win32/names.h"
#include "shell/win32/desktop.h"

// What follows the program's own name on the command line.
static const wchar_t* argumentsOf(const wchar_t* line)
{
    bool quoted = false;
    for (; *line && (quoted || (*line != L' ' && *line != L'\t')); ++line)
        quoted ^= *line == L'"';
    while (*line == L' ' || *line == L'\t')
        ++line;
    return line;
}

// Takes the command line from Windows in wide characters, because the one passed here knows only the code page.
int WINAPI WinMain(HINSTANCE instance, HINSTANCE previous, char*, int showState)
{
    if (previous)
        return 0;
    return runDesktop(instance, utf8FromWide(argumentsOf(GetCommandLineW())).c_str(), showState);
}
