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

// Loads the three embedded textures and the reflection image. A file that fails leaves its slot empty.
void loadBuiltInTextures();

// Decodes a JPEG file into the image and frees the old pixels. Returns 1; or 0, with the image as it was: without a
// message when the file cannot be opened, with one when it is larger than textureFileLimit or cannot be decoded.
// *opened, where given, tells the two apart; *output gets what the file says beside its pixels.
int loadTextureFile(const char* path, Image* image, int* opened = nullptr, JpegOutput* output = nullptr);

// Frees the pixels of all slots and of the reflection image.
void freeTextures();
