// shell/picture_file.cpp - "Save Image"
#include "shell/picture_file.h"

#include "model/settings.h"
#include "platform/dialogs.h"
#include "platform/files.h"
#include "shell/scene.h"

#include <string.h>

constexpr size_t headerBytes = 54;
constexpr size_t pathCharacters = 320;

static void store16(uint8_t* bytes, uint32_t value)
{
    bytes[0] = static_cast<uint8_t>(value);
    bytes[1] = static_cast<uint8_t>(value >> 8);
}

static void store32(uint8_t* bytes, uint32_t value)
{
    store16(bytes, value);
    store16(bytes + 2, value >> 16);
}

static void fillHeader(uint8_t (&header)[headerBytes], uint32_t rowBytes, int32_t width, int32_t height)
{
    uint32_t imageBytes = rowBytes * static_cast<uint32_t>(height);
    memset(header, 0, headerBytes);
    header[0] = 'B';
    header[1] = 'M';
    store32(header + 2, imageBytes + headerBytes);
    store32(header + 10, headerBytes);
    store32(header + 14, 40);
    store32(header + 18, static_cast<uint32_t>(width));
    store32(header + 22, static_cast<uint32_t>(height));
    store16(header + 26, 1);
    store16(header + 28, 24);
    store32(header + 34, imageBytes);
}

int writePicture(FILE* file, const FrameBuffer* target, int32_t width, int32_t height)
{
    size_t rowBytes = (static_cast<size_t>(width) * 3 + 3) & ~size_t{ 3 };
    size_t strideBytes = static_cast<size_t>(target->pitch) * 3;
    uint8_t header[headerBytes];
    fillHeader(header, static_cast<uint32_t>(rowBytes), width, height);
    if (fwrite(header, 1, headerBytes, file) != headerBytes)
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
    int ok = writePicture(file, &frameBuffer, displayState.displayWidth, displayState.displayHeight);
    return fclose(file) == 0 && ok;
}
