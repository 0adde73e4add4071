// shell/qt/pictures.h - the pictures of the window itself, which kbx does not carry
#pragma once
#include <QtGui/QImage>

QImage aboutPicture();
QImage iconPicture();
