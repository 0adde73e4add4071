// platform/qt/picture.cpp - the picture on the screen and in the clipboard; the display paints itself from it
#include "platform/picture.h"
#include "platform/qt/handles.h"

#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>
#include <QtGui/QImage>
#include <QtGui/QScreen>
#include <QtWidgets/QWidget>
#include <algorithm>

// The display counts in units of its scale, the picture in pixels of the screen.
void presentPicture(const Picture*, int32_t x, int32_t y, int32_t width, int32_t height)
{
    QWidget* display = windowHandles.display;
    if (!display)
        return;
    double scale = display->devicePixelRatioF();
    display->update(QRectF(x / scale, y / scale, width / scale, height / scale).toAlignedRect());
}

int32_t displayRefreshRate()
{
    const QScreen* screen = windowHandles.display ? windowHandles.display->screen() : nullptr;
    return screen ? static_cast<int32_t>(screen->refreshRate()) : 0;
}

int copyPicture(const Picture* picture, int32_t width, int32_t height)
{
    QImage image(picture->bits, std::min(width, picture->widthPixels), std::min(height, picture->rows),
                 picture->widthPixels * 3, QImage::Format_BGR888);
    QImage copied = image.copy(); // the picture changes with the next frame
    if (copied.isNull())
        return 0;
    QGuiApplication::clipboard()->setImage(copied);
    return 1;
}
