// platform/qt/dialogs.cpp - the open and save dialogs of the Linux program
#include "platform/dialogs.h"
#include "platform/boxes.h"
#include "platform/qt/handles.h"

#include <QtCore/QFileInfo>
#include <QtWidgets/QFileDialog>
#include <algorithm>

// "*.obj;*.3ds" becomes "*.obj *.3ds *.OBJ *.3DS": letter case counts here, and files from elsewhere are in capitals.
// The patterns in the last parentheses count and are hidden, so that the filter's own text is what is shown.
static QString filterOf(const FileDialog& dialog)
{
    QString patterns = QString::fromUtf8(dialog.filterPattern).replace(';', ' ');
    return QString::fromUtf8(dialog.filterText) + " (" + patterns.toLower() + ' ' + patterns.toUpper() + ")";
}

// Cuts a text to a number of characters that includes the terminator, and stores it as UTF-8.
static void storeText(const QString& text, char* out, size_t room)
{
    QByteArray bytes = text.left(static_cast<qsizetype>(room) - 1).toUtf8();
    std::copy_n(bytes.constData(), bytes.size() + 1, out);
}

static int ask(FileDialog* dialog, QFileDialog::AcceptMode mode)
{
    QFileDialog box(windowHandles.main);
    box.setAcceptMode(mode);
    box.setFileMode(mode == QFileDialog::AcceptOpen ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
    box.setOption(QFileDialog::HideNameFilterDetails);
    box.setNameFilter(filterOf(*dialog));
    if (dialog->title)
        box.setWindowTitle(QString::fromUtf8(dialog->title));
    if (dialog->defaultExtension)
        box.setDefaultSuffix(QString::fromUtf8(dialog->defaultExtension));
    box.setOption(QFileDialog::DontConfirmOverwrite, !(dialog->flags & dialogOverwritePrompt));
    if (*dialog->path)
        box.selectFile(QString::fromUtf8(dialog->path));
    if (!box.exec() || box.selectedFiles().isEmpty())
        return 0;
    QString path = box.selectedFiles().constFirst();
    if (static_cast<size_t>(path.size()) >= dialog->pathRoom)
    {
        messageBox(pathTooLong, "Error", iconStop);
        return 0;
    }
    storeText(path, dialog->path, dialog->pathRoom);
    if (dialog->fileTitle)
        storeText(QFileInfo(path).fileName(), dialog->fileTitle, dialog->fileTitleRoom);
    return 1;
}

int chooseFileToOpen(FileDialog* dialog)
{
    return ask(dialog, QFileDialog::AcceptOpen);
}

int chooseFileToSave(FileDialog* dialog)
{
    return ask(dialog, QFileDialog::AcceptSave);
}
