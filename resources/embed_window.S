// resources/embed_window.S - the pictures of the Linux window
#include "embed_macro.S"

embed about, "about.bmp"
embed icon, "kestrelbox.png"

