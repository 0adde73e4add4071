// import/text/poser.h - Poser props, hair and figures: the geometry and the materials written inside the file
#pragma once
#include "import/common/block_source.h"
#include "import/common/numbers.h"
#include "model/mesh.h"
#include "model/report.h"

constexpr size_t poserTextRoom = 2048; // of a word, and of the rest of its line, with the terminator

struct PoserSource
{
    char* rest; // of the token's line, after a blank that follows the word; numberPaddingRoom readable bytes follow it
    char word[poserTextRoom + numberPaddingRoom];
    BlockSource blocks;
};

// Reads the geomCustom blocks of all props, hair props, actors and figures into one mesh, and the materials that their
// faces use. Geometry in other files is not read. No progress is shown.
// Returns 1, or 0: silently for a file that does not open, else after "No internal geometry" or "Unable to read file".
int LoadPoserFile(Mesh* mesh, const char* path, Report* report, bool normals = true);
inline int LoadPoserFile(Mesh* mesh, const char* path)
{
    return LoadPoserFile(mesh, path, nullptr);
}

// Reads a word and the rest of its line. A brace is a token by itself, and what follows it is the next token. Comments
// from // to the line's end are skipped. The texts are valid until the next call. Returns 1, or 0 at the end of the
// file, even before the line's end, and for a word or a rest of poserTextRoom bytes.
int NextPoserToken(PoserSource* source);

// After a '{': reads up to the matching '}'. Returns 1, or 0 at the end of the file.
int SkipPoserBlock(PoserSource* source);

// Cuts a name in place at its first tab, blank or ':' and to at most the room of a name. Returns its length.
size_t PoserName(char* text);

// Returns the bare file name of a texture reference, which is changed in place: the part after the last ':', '"' or
// '\', without a closing quote. "NO_MAP" gives an empty name.
char* PoserMapName(char* text);
