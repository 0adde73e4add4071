// shell/qt/display_widget.cpp - the display's events
//
// Painting takes what the picture holds, so nothing here asks for a frame while the screen is being painted. Positions
// are pixels of the screen, whatever the scale.
#include "shell/qt/desktop.h"

#include "platform/qt/handles.h"
#include "shell/display.h"
#include "shell/scene.h"

#include <QtGui/QImage>
#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtGui/QWheelEvent>
#include <math.h>

constexpr int wheelNotch = 120;

DisplayWidget::DisplayWidget()
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName("Model");
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    windowHandles.display = this;
}

// The display at start, larger on fine screens, as everything around it.
QSize DisplayWidget::sizeHint() const
{
    return { startFrameState.displayWidth, startFrameState.displayHeight };
}

void DisplayWidget::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const Picture& picture = frameBuffer.picture;
    if (!picture.bits)
    {
        painter.fillRect(rect(), palette().window());
        return;
    }
    QImage image(picture.bits, picture.widthPixels, picture.rows, picture.widthPixels * 3, QImage::Format_BGR888);
    image.setDevicePixelRatio(devicePixelRatioF());
    painter.drawImage(QPoint(0, 0), image);
}

static int32_t pixels(const QWidget* widget, double units)
{
    return static_cast<int32_t>(units * widget->devicePixelRatioF());
}

// Rounded up: at some scales the display ends within a pixel of the screen, which must have one of the picture, too.
void DisplayWidget::resizeEvent(QResizeEvent*)
{
    displayResized(static_cast<int32_t>(ceil(width() * devicePixelRatioF())),
                   static_cast<int32_t>(ceil(height() * devicePixelRatioF())));
}

void DisplayWidget::mousePressEvent(QMouseEvent* event)
{
    int32_t x = pixels(this, event->position().x()), y = pixels(this, event->position().y());
    if (event->button() == Qt::LeftButton)
        displayLeftButton(dragDown, x, y);
    else if (event->button() == Qt::RightButton)
        displayRightButton(dragDown, y);
}

void DisplayWidget::mouseMoveEvent(QMouseEvent* event)
{
    int32_t x = pixels(this, event->position().x()), y = pixels(this, event->position().y());
    Qt::MouseButtons held = event->buttons();
    displayMouseMoved(held.testFlag(Qt::LeftButton), held.testFlag(Qt::RightButton), x, y);
}

void DisplayWidget::mouseReleaseEvent(QMouseEvent* event)
{
    int32_t x = pixels(this, event->position().x()), y = pixels(this, event->position().y());
    if (event->button() == Qt::LeftButton)
        displayLeftButton(dragUp, x, y);
    else if (event->button() == Qt::RightButton)
        displayRightButton(dragUp, y);
}

void DisplayWidget::wheelEvent(QWheelEvent* event)
{
    displayWheelTurned(static_cast<float>(event->angleDelta().y()) / wheelNotch);
}
