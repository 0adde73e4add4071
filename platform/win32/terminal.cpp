// platform/win32/terminal.cpp - arguments as Windows stores them, and standard output without conversion of line ends
#include "platform/terminal/terminal.h"
#include "platform/win32/names.h"

#include <fcntl.h>
#include <io.h>
#include <stdio.h>
#include <windows.h>
#include <shellapi.h>

std::vector<std::string> prepareTerminal(int, char**)
{
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    std::vector<std::string> arguments;
    int count = 0;
    if (wchar_t** wide = CommandLineToArgvW(GetCommandLineW(), &count))
    {
        for (int i = 1; i < count; ++i)
            arguments.push_back(utf8FromWide(wide[i]));
        LocalFree(wide);
    }
    return arguments;
}
