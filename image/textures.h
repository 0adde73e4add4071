// image/textures.h - the images that the renderer puts on models: textures and the reflection image
#pragma once
#include "image/jpeg.h"
#include "platform/dialogs.h"

#include <stddef.h>

constexpr int textureWood = 0;
constexpr int textureMetal = 1;
constexpr int texturePattern = 2;
constexpr int textureUser = 3;
constexpr int textureCount = 4;
inline constexpr const char* builtInTextures[textureUser] = { "wood", "metal", "pattern" }; // by slot
constexpr size_t textureTitleCharacters = 32;
constexpr size_t textureTitleRoom = dialogBytes(textureTitleCharacters);

extern Image TextureSlots[textureCount]; // the user's is empty, 1 x 1, until a file is loaded
extern Image ReflectionImage;

// Decodes an embedded JPEG file and frees what the image held before. Returns 1; or 0 without a message and with the
// image cleared. An unknown name leaves the image as it was.
int loadTextureResource(Image* image, const char* name);

// Loads the three embedded textures and the reflection image. A file that fails leaves its slot empty.
void loadBuiltInTextures();

// Asks for a JPEG file and decodes it into the image, whose old pixels are freed then. Title, of textureTitleRoom
// bytes, gets the chosen name in lower case. Returns 1, or 0: cancelled or not to be opened, in silence; not decoded,
// with a message. The image is then as it was.
int loadUserTexture(Image* image, char* title);

// The same for a file that is known. *opened, where given, tells the silent failure from the other; *output gets what
// the file says beside its pixels.
int loadTextureFile(const char* path, Image* image, int* opened = nullptr, JpegOutput* output = nullptr);

// Frees the pixels of all slots and of the reflection image.
void freeTextures();
