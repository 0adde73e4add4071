// export/written_names.h - names as a text file can hold them
//
// A reader's names may have any bytes but 0. In a line that is read to its end a line end breaks the line; between
// quotes, for which neither LuxRender's scenes nor Poser's files have an escape, a quote does too.
#pragma once
#include "model/mesh.h"

#include <string.h>

constexpr char lineBreakers[] = "\r\n";
constexpr char quoteBreakers[] = "\r\n\"";

// Whether none of the breakers is in the name. The name of a texture file that does not fit is left out, because
// another name would be another file's.
inline bool nameFits(const char* name, const char* breakers)
{
    return strpbrk(name, breakers) == nullptr;
}

struct WrittenName
{
    char text[nameRoom + 12]; // '_' and the slot's number behind the longest name
};

// The name of a material or a group, which cannot be left out. One that fits is returned as it is. In another one '_'
// replaces the breakers, and '_' and the slot follow it, so that it stays apart from the other slots' names; the
// result stands in written.
const char* writtenName(const char (*names)[nameRoom], int32_t slot, const char* breakers, WrittenName* written);
