// cli/decode.cpp - a JPEG file into a picture, by the decoder that textures go through
#include "cli/commands.h"
#include "cli/load.h"
#include "cli/steps.h"
#include "cli/facts/warnings.h"
#include "image/textures.h"
#include "platform/boxes.h"
#include "platform/files.h"
#include "platform/terminal/terminal.h"
#include "shell/picture_file.h"

#include <stdio.h>
#include <stdlib.h>

// Both ways of writing tell in *read whether the JPEG file was decoded to its end.

// A device or a pipe gets nothing unless the whole picture is there.
static bool writeWholePicture(const char* path, const char* target, bool strict, Report* report, bool* read)
{
    Image image = {};
    JpegOutput described;
    *read = loadTextureFile(path, &image, nullptr, &described, report) != 0;
    bool ok = *read && !(strict && hasWarnings(*report)) && writeDecodedPicture(target, described, image.pixels);
    free(image.pixels);
    return ok;
}

static bool writeRowByRow(const char* path, const char* target, bool strict, Report* report, bool* read)
{
    JpegFile jpeg;
    *read = openJpegFile(&jpeg, path, nullptr, report) != 0;
    if (!*read)
        return false;
    jpeg.strict = strict;
    bool ok = writeJpegAsPicture(target, &jpeg) != 0;
    *read = !jpeg.failed;
    closeJpegFile(&jpeg);
    return ok;
}

int runDecode(const Arguments& arguments)
{
    const char *path = arguments.inputs[0].c_str(), *target = arguments.output.c_str();
    const LoadArguments& load = arguments.load;
    Report report = {};
    Step step = { load.verbose };
    std::string actual;
    bool direct = findFileTarget(target, &actual) == targetDirect, read = false;
    bool ok = (direct ? writeWholePicture : writeRowByRow)(path, target, load.strict, &report, &read);
    printWarnings(path, report, load.quiet);
    if (ok)
        endStep(&step, path, "decoded and written");
    else if (!read)
        explainFailure(path, causeOf(report, path, saidOutOfMemory()).c_str());
    else if (load.strict && hasWarnings(report))
        explainFailure(target, notWrittenStrictly);
    return ok ? 0 : 1;
}
