// tests/qt/drag_source.cpp - a window from which files can be dragged, as from a file manager
//
// drag_source FILE...: its window has the title "drag source". Pressing the mouse in it starts to drag the files.
#include <QtCore/QDir>
#include <QtCore/QMimeData>
#include <QtCore/QUrl>
#include <QtGui/QDrag>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

// Takes the presses of the window that it watches.
class DragStarter : public QObject
{
public:
    explicit DragStarter(const QStringList& files)
    {
        for (const QString& file : files)
            urls.append(QUrl::fromLocalFile(QDir::current().absoluteFilePath(file)));
    }

    bool eventFilter(QObject* window, QEvent* event) override
    {
        if (event->type() != QEvent::MouseButtonPress)
            return QObject::eventFilter(window, event);
        auto* files = new QMimeData;
        files->setUrls(urls);
        auto* drag = new QDrag(window); // Qt deletes it and the files when the drag ends
        drag->setMimeData(files);
        drag->exec(Qt::CopyAction);
        return true;
    }

private:
    QList<QUrl> urls;
};

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    DragStarter starter(QApplication::arguments().mid(1));
    QWidget window;
    window.installEventFilter(&starter);
    window.setWindowTitle("drag source");
    window.setGeometry(900, 500, 200, 200);
    window.show();
    return QApplication::exec();
}
