// image/textures.h - the images that the renderer puts on models: textures and the reflection image
#pragma once
#include "image/jpeg.h"

constexpr int64_t textureFileLimit = int64_t{ 256 } << 20; // bytes

constexpr int textureWood = 0;
constexpr int textureMetal = 1;
constexpr int texturePattern = 2;
constexpr int textureUser = 3;
constexpr int textureCount = 4;
inline constexpr const char* builtInTextures[textureUser] = { "wood", "metal", "pattern" }; // by slot

extern Image TextureSlots[textureCount]; // the user's is empty, 1 x 1, until a file is loaded
extern Image ReflectionImage;

// Decodes an embedded JPEG file and frees what the image held before. Returns 1; or 0 without a message and with the
// image cleared. An unknown name leaves the image as it was.
int loadTextureResource(Image* image, const char* name);

// Decodes a built-in image that nobody has shown yet. One that cannot be decoded stays empty. The user's texture and
// null stay as they are.
void needTexture(const Image* image);

// Decodes a JPEG file into the image and frees the old pixels. Returns 1; or 0, with the image as it was: without a
// message when the file cannot be opened, with one when it is larger than textureFileLimit or cannot be decoded.
// *opened, where given, tells the two apart; *output gets what the file says beside its pixels. *report, where given,
// gets the reason, or what of the data is missing or damaged.
int loadTextureFile(const char* path, Image* image, int* opened = nullptr, JpegOutput* output = nullptr,
                    Report* report = nullptr);

// A JPEG file whose rows are decoded as they are wanted.
struct JpegFile
{
    FILE* file;       // null: closed
    JpegRows* rows;   // null: refused, or closed
    JpegOutput image; // what the file says
    bool failed;      // its data ended before its last row
    Report* report;   // may be null
    bool strict;      // the owner sets it: a picture with a warning is not written
    uint8_t buffer[fileBufferRoom];
};

// Opens a file and decodes up to its first row. Returns 1; or 0, with nothing left to close and the messages and
// *opened of loadTextureFile. The report, which may be null, gets the same and must outlive the file.
int openJpegFile(JpegFile* jpeg, const char* path, int* opened, Report* report = nullptr);

// Decodes the next row, as nextJpegRow does. Returns 1, or 0 after the message of loadTextureFile.
int readJpegRow(JpegFile* jpeg, uint32_t* words);

void closeJpegFile(JpegFile* jpeg); // may be closed already

// Frees the pixels of all slots and of the reflection image.
void freeTextures();
