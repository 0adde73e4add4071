// shell/qt/desktop.h - running the Linux program, and its windows
#pragma once
#include <QtWidgets/QMainWindow>
#include <QtWidgets/QWidget>

// Runs the program with the arguments of main. Returns the exit status.
int runDesktop(int argumentCount, char** arguments);

// Makes the tool panel from the table of its controls and enters them in windowHandles.
QWidget* makeToolPanel();

// Makes the menus from their table and enters the entries in windowHandles.
void makeMenus(QMainWindow* window);

// Runs the command of a key. Returns false for a key that the program does not use.
bool takeKey(const QKeyEvent* event);

// The main window: the display at the left, the panel at the right.
class MainWindow : public QMainWindow
{
public:
    MainWindow();

protected:
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
};

// Shows the picture of the last frame, a pixel of it to a pixel of the screen, and turns and zooms the model.
class DisplayWidget : public QWidget
{
public:
    DisplayWidget();
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
};
