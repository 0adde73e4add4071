// shell/qt/about.cpp - the About box
#include "platform/controls.h"
#include "platform/qt/handles.h"
#include "shell/qt/pictures.h"

#include <QtWidgets/QDialog>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QVBoxLayout>

void runAboutBox()
{
    QDialog box(windowHandles.main);
    box.setWindowTitle("About Kestrelbox");
    auto* picture = new QLabel;
    picture->setPixmap(QPixmap::fromImage(aboutPicture()));
    picture->setAccessibleName("The program's picture");
    auto* text = new QLabel("Kestrelbox " KESTRELBOX_VERSION
                            "\n\nLooks at 3D polygon models\nand prepares them for use elsewhere.");
    text->setAlignment(Qt::AlignCenter);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &box, &QDialog::accept);
    auto* layout = new QVBoxLayout(&box);
    layout->addWidget(picture, 0, Qt::AlignCenter);
    layout->addWidget(text);
    layout->addWidget(buttons, 0, Qt::AlignCenter);
    box.exec();
}
