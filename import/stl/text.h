// import/stl/text.h - STL as text: words between blanks, in any case and on any number of lines; only a name ends with
// its line
//
//   solid NAME
//   facet normal X Y Z  outer loop  vertex X Y Z  vertex X Y Z  vertex X Y Z  endloop  endfacet
//   endsolid NAME
#pragma once
#include "import/common/block_source.h"
#include "import/stl/parts.h"

// Whether the first word is "solid". Starts at the source's position and leaves it after that word.
bool startsAsStlText(BlockSource* source);

// Adds the triangles of all solids, each with three vertices of its own, and completes them. A loop
// gives one triangle, of its first three vertices; one with fewer, or with a vertex that is not three numbers, gives
// none. A file that ends early is read up to its end. Returns false when there is no triangle, or after "Out of
// memory".
bool readStlText(BlockSource* source, StlReader* reader);
