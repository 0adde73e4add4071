// cli/decode.cpp - a JPEG file into a picture, by the decoder that textures go through
#include "cli/commands.h"
#include "cli/warnings.h"
#include "image/textures.h"
#include "platform/boxes.h"
#include "shell/picture_file.h"

#include <stdio.h>
#include <stdlib.h>

int runDecode(const Arguments& arguments)
{
    const char* path = arguments.inputs[0].c_str();
    Image image = {};
    int opened = 0;
    JpegOutput described;
    if (!loadTextureFile(path, &image, &opened, &described))
    {
        explainFailure(path, causeOfImage(path, opened).c_str());
        return 1;
    }
    int ok = writeDecodedPicture(arguments.output.c_str(), described, image.pixels);
    free(image.pixels);
    return ok ? 0 : 1;
}
