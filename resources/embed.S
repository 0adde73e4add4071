// resources/embed.S - the files that every program carries
#include "embed_macro.S"

embed model, "model.bin"
embed wood, "wood.jpg"
embed metal, "metal.jpg"
embed pattern, "pattern.jpg"
embed reflect, "reflect.jpg"

