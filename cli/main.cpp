// cli/main.cpp - kbx, the command line
#include "cli/arguments.h"
#include "cli/commands.h"
#include "cli/formats.h"
#include "model/memory.h"
#include "platform/pending_files.h"
#include "platform/refused_memory.h"
#include "platform/terminal/terminal.h"

static int runCommand(const Arguments& arguments)
{
    if (arguments.load.quiet)
        silenceNotices();
    switch (arguments.command)
    {
    case Command::info: return runInfo(arguments);
    case Command::dump: return runDump(arguments);
    case Command::convert: return runConvert(arguments);
    case Command::render: return runRender(arguments);
    case Command::decode: return runDecode(arguments);
    case Command::formats: return runFormats();
    case Command::none: break;
    }
    return arguments.exitStatus;
}

int main(int argc, char** argv)
{
    removePendingFilesOnSignals();
    int status = runCommand(parseArguments(prepareTerminal(argc, argv)));
    if (status == 1 && refusedMemoryUnreported())
        reportOutOfMemory();
    return status;
}
