// resources/embed_model.S - the one file that the page's module carries itself
#include "embed_macro.S"

embed model, "model.bin"
