// cli/decode.cpp - a JPEG file into a bitmap, by the decoder that textures go through
#include "cli/commands.h"
#include "export/output_file.h"
#include "image/debug_bmp.h"
#include "image/textures.h"

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
        if (!opened)
            fprintf(stderr, "kbx: cannot read %s\n", path);
        return 1;
    }
    OutputFile output = {};
    int ok = openOutput(&output, arguments.output.c_str()) &&
             commitOutput(&output, writeDebugBmpTo(output.file, described, image.pixels));
    free(image.pixels);
    return ok ? 0 : 1;
}
