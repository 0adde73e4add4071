// shell/win32/main.cpp - the entry point of the desktop program
#include "platform/win32/names.h"
#include "shell/win32/desktop.h"

// Returns the command line after the program's own name.
static const wchar_t* argumentsOf(const wchar_t* line)
{
    bool quoted = false;
    for (; *line && (quoted || (*line != L' ' && *line != L'\t')); ++line)
        quoted ^= *line == L'"';
    while (*line == L' ' || *line == L'\t')
        ++line;
    return line;
}

// Gets the command line in wide characters from Windows, because the one passed here is limited to the code page.
int WINAPI WinMain(HINSTANCE instance, HINSTANCE previous, char*, int showState)
{
    if (previous)
        return 0;
    return runDesktop(instance, utf8FromWide(argumentsOf(GetCommandLineW())).c_str(), showState);
}
