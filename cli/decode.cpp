// cli/decode.cpp - a JPEG file into a picture, by the decoder that textures go through
#include "cli/commands.h"
#include "cli/steps.h"
#include "facts/warnings.h"
#include "image/textures.h"
#include "platform/boxes.h"
#include "platform/files.h"
#include "platform/terminal/terminal.h"
#include "shell/picture_file.h"

#include <stdio.h>
#include <stdlib.h>

// A device or a pipe gets nothing unless the whole picture is there.
static bool writeWholePicture(const char* path, const char* target, int* opened)
{
    Image image = {};
    JpegOutput described;
    if (!loadTextureFile(path, &image, opened, &described))
    {
        explainFailure(path, causeOfImage(path, *opened, saidOutOfMemory()).c_str());
        return false;
    }
    bool ok = writeDecodedPicture(target, described, image.pixels) != 0;
    free(image.pixels);
    return ok;
}

static bool writeRowByRow(const char* path, const char* target, int* opened)
{
    JpegFile jpeg;
    if (!openJpegFile(&jpeg, path, opened))
    {
        explainFailure(path, causeOfImage(path, *opened, saidOutOfMemory()).c_str());
        return false;
    }
    bool ok = writeJpegAsPicture(target, &jpeg) != 0;
    if (jpeg.failed)
        explainFailure(path, causeOfImage(path, *opened, saidOutOfMemory()).c_str());
    closeJpegFile(&jpeg);
    return ok;
}

int runDecode(const Arguments& arguments)
{
    const char *path = arguments.inputs[0].c_str(), *target = arguments.output.c_str();
    int opened = 0;
    std::string actual;
    bool direct = findFileTarget(target, &actual) == targetDirect;
    Step step = { arguments.load.verbose };
    if (!(direct ? writeWholePicture : writeRowByRow)(path, target, &opened))
        return 1;
    endStep(&step, path, "decoded and written");
    return 0;
}
