// shell/qt/main.cpp - the entry point of the Linux program
#include "shell/qt/desktop.h"

int main(int argumentCount, char** arguments)
{
    return runDesktop(argumentCount, arguments);
}
