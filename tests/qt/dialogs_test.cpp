// tests/qt/dialogs_test.cpp - the real file dialogs of the Linux program, without a display
#include "platform/boxes.h"
#include "platform/dialogs.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QTimer>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QApplication>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QListView>
#include <QtWidgets/QMessageBox>
#include <gtest/gtest.h>
#include <deque>
#include <filesystem>
#include <fstream>
#include <functional>

namespace fs = std::filesystem;

// What the user does, one step for each box that appears; a box that waits in vain for a step is closed.
static std::deque<std::function<void(QDialog*)>> steps;
static std::vector<std::string> questions;
static bool inMiddleOfStep;

// Lets a step wait for the box that it works on, without the next step beginning meanwhile.
static void handleEvents()
{
    inMiddleOfStep = true;
    QApplication::processEvents();
    inMiddleOfStep = false;
}

// A timer does not fire again in the loop of a box that it has opened itself, so there is a new one for each look.
static void takeStep(QObject* test)
{
    QTimer::singleShot(20, test, [test] { takeStep(test); });
    auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (inMiddleOfStep || !dialog || !dialog->isVisible())
        return;
    if (const auto* box = qobject_cast<QMessageBox*>(dialog))
        questions.push_back(box->text().toStdString());
    if (steps.empty())
    {
        dialog->reject();
        return;
    }
    auto step = steps.front();
    steps.pop_front();
    step(dialog);
}

class FileDialogs : public testing::Test
{
protected:
    void SetUp() override
    {
        std::string name = testing::TempDir() + "kestrelbox-dialogs-XXXXXX";
        ASSERT_TRUE(mkdtemp(name.data()));
        folder = name;
        fs::current_path(folder);
        steps.clear();
        questions.clear();
        path.assign(dialogBytes(dialogPathRoom), '\0');
        title.assign(dialogBytes(32), '\0');
        dialog = { "*.obj *.3ds", "*.obj;*.3ds", nullptr, nullptr, 0, path.data(), dialogPathRoom, title.data(), 32 };
        takeStep(&test);
    }

    void TearDown() override
    {
        fs::current_path("/");
        fs::remove_all(folder);
    }

    static void write(const char* name)
    {
        std::ofstream(name) << "v 0 0 0\n";
    }

    // The whole path, because a dialog begins in the folder of the one before.
    static void type(QDialog* box, const char* name)
    {
        std::string typed = (fs::current_path() / name).string();
        auto* edit = box->findChild<QLineEdit*>("fileNameEdit");
        box->activateWindow();
        handleEvents();
        edit->setFocus();
        edit->setText(QString::fromStdString(typed));
    }

    static void acceptFile(QDialog* box)
    {
        box->accept();
    }

    static void answer(QDialog* box, QMessageBox::StandardButton button)
    {
        auto* question = qobject_cast<QMessageBox*>(box);
        ASSERT_NE(question, nullptr);
        ASSERT_NE(question->button(button), nullptr);
        question->button(button)->click();
    }

    void askToSave()
    {
        dialog.title = "save mesh";
        dialog.defaultExtension = "obj";
        dialog.flags = dialogOverwritePrompt;
    }

    fs::path folder;
    std::string path, title;
    FileDialog dialog;
    QObject test; // ends the steps
};

static QStringList listedNames(const QDialog* box)
{
    QStringList names;
    const auto* list = box->findChild<QListView*>("listView");
    for (int i = 0; i < list->model()->rowCount(list->rootIndex()); ++i)
        names.append(list->model()->index(i, 0, list->rootIndex()).data().toString());
    return names;
}

TEST_F(FileDialogs, ListTheFilesOfTheFilterInSmallLettersAndCapitals)
{
    for (const char* name : { "a.obj", "B.OBJ", "c.3ds", "D.3DS", "e.txt" })
        write(name);
    QStringList listed;
    QString filter;
    auto look = [&](QDialog* box)
    {
        auto* files = qobject_cast<QFileDialog*>(box);
        filter = files->selectedNameFilter();
        files->setDirectory(".");
        QElapsedTimer time;
        for (time.start(); listed.size() < 4 && time.elapsed() < 5000; handleEvents())
            listed = listedNames(box); // another thread reads the folder
        box->reject();
    };
    steps = { look };
    EXPECT_EQ(chooseFileToOpen(&dialog), 0);
    listed.sort(Qt::CaseInsensitive);
    EXPECT_EQ(listed, (QStringList{ "a.obj", "B.OBJ", "c.3ds", "D.3DS" }));
    EXPECT_EQ(filter, "*.obj *.3ds") << "without the patterns in capitals";
}

TEST_F(FileDialogs, GiveThePathAndTheNameOfTheChosenFile)
{
    write("\u6a21\u578b one.obj");
    steps = { [](QDialog* box)
              {
                  type(box, "\u6a21\u578b one.obj");
                  acceptFile(box);
              } };
    EXPECT_EQ(chooseFileToOpen(&dialog), 1);
    EXPECT_EQ(fs::path(dialog.path), folder / "\u6a21\u578b one.obj");
    EXPECT_STREQ(dialog.fileTitle, "\u6a21\u578b one.obj");
}

TEST_F(FileDialogs, AFileThatVanishesIsSaidAndTheDialogStays)
{
    write("gone.obj");
    steps = { [](QDialog* box)
              {
                  type(box, "gone.obj");
                  fs::remove("gone.obj");
                  acceptFile(box);
              },
              [](QDialog* box) { answer(box, QMessageBox::Ok); },
              [](QDialog* box)
              {
                  EXPECT_NE(qobject_cast<QFileDialog*>(box), nullptr);
                  box->reject();
              } };
    EXPECT_EQ(chooseFileToOpen(&dialog), 0);
    ASSERT_EQ(questions.size(), 1u);
    EXPECT_NE(questions[0].find("not found"), std::string::npos) << questions[0];
}

TEST_F(FileDialogs, SavingAddsTheExtensionAndAsksBeforeItOverwrites)
{
    askToSave();
    write("there.obj");
    steps = { [](QDialog* box)
              {
                  EXPECT_EQ(box->windowTitle(), "save mesh");
                  type(box, "there");
                  acceptFile(box);
              },
              [](QDialog* box) { answer(box, QMessageBox::No); },
              [](QDialog* box)
              {
                  type(box, "new");
                  acceptFile(box);
              } };
    EXPECT_EQ(chooseFileToSave(&dialog), 1);
    ASSERT_EQ(questions.size(), 1u);
    EXPECT_NE(questions[0].find("already exists"), std::string::npos) << questions[0];
    EXPECT_EQ(fs::path(dialog.path), folder / "new.obj");
}

TEST_F(FileDialogs, ProposeTheNameAndKeepItWhenTheUserCancels)
{
    askToSave();
    path.replace(0, 7, "cup.obj");
    std::string proposed;
    steps = { [&](QDialog* box)
              {
                  proposed = box->findChild<QLineEdit*>("fileNameEdit")->text().toStdString();
                  box->reject();
              } };
    EXPECT_EQ(chooseFileToSave(&dialog), 0);
    EXPECT_EQ(proposed, "cup.obj");
    EXPECT_STREQ(dialog.path, "cup.obj");
}

TEST_F(FileDialogs, APathThatIsTooLongIsRefused)
{
    askToSave();
    dialog.pathRoom = 10;
    steps = { [](QDialog* box)
              {
                  type(box, "new");
                  acceptFile(box);
              } };
    EXPECT_EQ(chooseFileToSave(&dialog), 0);
    EXPECT_EQ(questions, std::vector<std::string>{ pathTooLong });
}

TEST(MessageBoxes, HaveTheTextTheCaptionAndTheIcon)
{
    struct Seen
    {
        QString text, title;
        QMessageBox::Icon icon;
    };
    for (BoxIcon icon : { iconNone, iconStop })
    {
        Seen seen = {};
        QTimer::singleShot(50,
                           [&]
                           {
                               auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
                               ASSERT_NE(box, nullptr);
                               seen = { box->text(), box->windowTitle(), box->icon() };
                               EXPECT_EQ(box->textFormat(), Qt::PlainText);
                               box->accept();
                           });
        messageBox("<b>text</b>", icon == iconStop ? "caption" : nullptr, icon);
        EXPECT_EQ(seen.text, "<b>text</b>");
        EXPECT_EQ(seen.title, icon == iconStop ? "caption" : "Error");
        EXPECT_EQ(seen.icon, icon == iconStop ? QMessageBox::Critical : QMessageBox::NoIcon);
    }
}

int main(int argumentCount, char** arguments)
{
    testing::InitGoogleTest(&argumentCount, arguments);
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    std::string home = testing::TempDir() + "kestrelbox-home-XXXXXX";
    if (!mkdtemp(home.data()))
        return 1;
    setenv("XDG_DATA_HOME", home.c_str(), 1); // the user's list of recent files stays as it is
    QApplication application(argumentCount, arguments);
    return RUN_ALL_TESTS();
}
