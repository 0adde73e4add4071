// shell/picture_file.cpp - "Save Image"
#include "shell/picture_file.h"

#include "model/bitmap.h"
#include "model/settings.h"
#include "platform/dialogs.h"
#include "platform/files.h"
#include "shell/scene.h"

#include <string.h>

constexpr size_t pathCharacters = 320;

int writePicture(FILE* file, const FrameBuffer* target, int32_t width, int32_t height)
{
    size_t rowBytes = bitmapRowBytes(width);
    size_t strideBytes = static_cast<size_t>(target->pitch) * 3;
    if (!writeBitmapHeader(file, { width, height, 1, 0, 0 }))
        return 0;
    for (int32_t row = height - 1; row >= 0; --row)
    {
        const uint8_t* bytes = target->picture.bits + static_cast<size_t>(row) * strideBytes;
        if (fwrite(bytes, 1, rowBytes, file) != rowBytes)
            return 0;
    }
    return 1;
}

void replaceExtension(const char* name, const char* extension, char* replaced, size_t roomBytes)
{
    const char* dot = strrchr(name, '.');
    size_t length = dot && dot != name ? static_cast<size_t>(dot - name) : strlen(name);
    size_t extensionLength = strlen(extension);
    if (length > roomBytes - 1 - extensionLength)
        length = roomBytes - 1 - extensionLength;
    memcpy(replaced, name, length);
    memcpy(replaced + length, extension, extensionLength + 1);
}

int saveImage()
{
    char path[dialogBytes(pathCharacters)];
    replaceExtension(currentFileName, ".bmp", path, pathCharacters);
    FileDialog dialog = {
        .filterText = "Windows Bitmap (*.bmp)",
        .filterPattern = "*.bmp",
        .title = "save image",
        .defaultExtension = "pp2", // kept on purpose
        .flags = dialogOverwritePrompt | dialogHideReadOnly,
        .path = path,
        .pathRoom = pathCharacters,
        .fileTitle = nullptr,
        .fileTitleRoom = 0,
    };
    if (!chooseFileToSave(&dialog))
        return 0;
    FILE* file = openFile(path, "wb");
    if (!file)
        return 0;
    int ok = writePicture(file, &frameBuffer, frameState.displayWidth, frameState.displayHeight);
    return fclose(file) == 0 && ok;
}
