// shell/qt/pictures.cpp - the files that resources/embed_window.S includes in the program
#include "shell/qt/pictures.h"

#include <stdint.h>

extern "C" const uint8_t embedded_about[], embedded_about_end[];
extern "C" const uint8_t embedded_icon[], embedded_icon_end[];

static QImage decoded(const uint8_t* begin, const uint8_t* end)
{
    return QImage::fromData(begin, static_cast<int>(end - begin));
}

QImage aboutPicture()
{
    return decoded(embedded_about, embedded_about_end);
}

QImage iconPicture()
{
    return decoded(embedded_icon, embedded_icon_end);
}
