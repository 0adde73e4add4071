// cli/main.cpp - kbx, the command line
#include "cli/arguments.h"
#include "cli/commands.h"
#include "platform/pending_files.h"
#include "platform/terminal/terminal.h"

int main(int argc, char** argv)
{
    removePendingFilesOnSignals();
    Arguments arguments = parseArguments(prepareTerminal(argc, argv));
    switch (arguments.command)
    {
    case Command::info: return runInfo(arguments);
    case Command::dump: return runDump(arguments);
    case Command::convert: return runConvert(arguments);
    case Command::render: return runRender(arguments);
    case Command::decode: return runDecode(arguments);
    case Command::none: break;
    }
    return arguments.exitStatus;
}
