// tests/window/driver.h - the program in its window, operated from a thread of the test
//
// The real program runs, except that a script answers its file dialogs. Each kind of window has its own implementation
// of this header; the steps in tests/window/ are the same for all. Texts are UTF-8, positions pixels of the display.
#pragma once
#include <stddef.h>
#include <stdint.h>
#include <functional>
#include <string>
#include <vector>

// Runs the program with arguments, in the window of this kind, and the tests beside it. Returns the tests' exit status,
// or 1 when the program did not end well.
int runTestsBeside(const std::vector<std::string>& programArguments, int (*runTests)());

// Calls a function on the program's thread, between two of its events, and waits for its return.
void onProgramThread(const std::function<void()>& function);

// Waits until the program has handled its events and drawn what they asked for.
void settle();

// Menu and panel, by the identifiers of resources/ids.h. Each waits until the program has done what was asked.
void command(int id);
void pressPanel(int id);
void chooseInList(int index);
std::string menuText(int id);
bool menuEnabled(int id);
bool menuTicked(int id);
bool panelTicked(int id);
std::string panelText(int id);
std::vector<std::string> listEntries();

// The menu bar and the panel as they are on the screen, a line for each menu, entry, group and control.
std::vector<std::string> menuLines();
std::vector<std::string> panelLines();

std::string windowTitle();

// How many objects of the window system the program has, and how much memory.
size_t objectCount();
size_t residentBytes();

// The answers to the next file dialogs; "" is Cancel, and so is every answer after the last one.
void answerDialogs(const std::vector<std::string>& paths);

// The notice or the message box that a menu entry or a button of the panel ends with. A message box is closed, after
// what is to happen while it is open; a notice closes by itself.
struct Box
{
    std::string text, caption;
    int shownMs; // of a notice
};
Box noticeAfter(int id);
Box boxAfter(int id, const std::function<void()>& meanwhile = {});

// The mouse in the display and the keyboard. A key is a character or a Key of shell/keys.h.
enum MouseButton
{
    leftButton,
    rightButton
};
void pressMouse(MouseButton button, int x, int y);
void moveMouse(int x, int y);
void releaseMouse(MouseButton button, int x, int y);
void turnWheel(int notches);
void pressKey(int key, uint32_t modifiers);
void dropFiles(const std::vector<std::string>& paths);

// Runs kbx with arguments in the current folder and returns whether its exit status is 0. Double quotes hold an
// argument with blanks together.
bool runKbx(const std::string& arguments);

// A second start of the program with a file, "" for none. Returns whether the first one took it.
bool startAgain(const std::string& path);

// By pixels.
void enlargeWindow(int width, int height);
void minimiseWindow();
void restoreWindow();

// What the display shows: blue, green and red bytes, the top row first, no padding.
struct Shown
{
    int width, height;
    std::vector<uint8_t> bytes;
};
Shown shownPicture();

// The picture in the clipboard; no bytes when there is none.
Shown clipboardPicture();
