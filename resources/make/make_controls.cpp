// resources/make/make_controls.cpp - makes the menu and the tool panel of the Windows program
//
//   make_controls FOLDER
//
// kestrelbox.rc includes the two files, menu.rc and panel.rc. The panel's sizes are dialog units: a quarter of the
// average width of a letter, and an eighth of its height.
#include "output.h"

#include "resources/controls.h"

#include <stdio.h>
#include <iterator>

static std::string opening(const char* name, const char* what)
{
    return std::string("// resources/") + name + " - " + what + "; make_controls makes it from controls.h\n";
}

static std::string quoted(const char* text)
{
    return std::string("\"") + text + "\"";
}

// ---- the menu ----

static std::string menuLine(const MenuEntry& entry)
{
    if (!entry.text)
        return "        MENUITEM SEPARATOR\n";
    return "        MENUITEM " + quoted(entry.text) + ", " + std::to_string(entry.id) +
           (entry.disabled ? ", GRAYED\n" : "\n");
}

static std::string menuFile()
{
    std::string file = opening("menu.rc", "the menu") + "AppMenu MENU\nBEGIN\n";
    for (const Menu& menu : menus)
    {
        file += "    POPUP " + quoted(menu.text) + "\n    BEGIN\n";
        for (const MenuEntry& entry : menu.entries)
            file += menuLine(entry);
        file += "    END\n";
    }
    return file + "END\n";
}

// ---- the panel ----

struct Place
{
    int x, y, width, height;
};

constexpr int panelWidth = 108, groupLeft = 4, groupWidth = 100, groupGap = 3, topMargin = 2, bottomMargin = 2;
constexpr int listHeight = 200; // with its list open
constexpr int listStep = 17;    // from the list to the first control

// How the controls of a kind stand in their group: the first one below the group's top, and so on.
struct KindLayout
{
    int first, step, height, bottom;
};

static KindLayout layoutOf(PanelControlKind kind)
{
    switch (kind)
    {
    case panelBox: return { 11, 13, 11, 4 };
    case panelButton: return { 11, 16, 14, 6 };
    case panelCount: break;
    }
    return { 10, 9, 8, 5 };
}

static std::string line(const char* kind, const std::string& text, int id, const Place& place, const char* style = "")
{
    std::string numbers = std::to_string(id);
    for (int number : { place.x, place.y, place.width, place.height })
        numbers += ", " + std::to_string(number);
    return std::string("    ") + kind + " " + text + numbers + style + "\n";
}

static std::string textLine(const char* kind, const char* text, int id, const Place& place)
{
    return line(kind, quoted(text) + ", ", id, place);
}

static std::string controlLines(const PanelControl& control, PanelControlKind kind, int index, int y)
{
    switch (kind)
    {
    case panelBox: return textLine("AUTOCHECKBOX", control.text, control.id, { 10, y, 88, 11 });
    case panelButton: return textLine("PUSHBUTTON", control.text, control.id, { index % 2 ? 55 : 8, y, 45, 14 });
    case panelCount: break;
    }
    return textLine("LTEXT", control.text, -1, { 10, y, 30, 8 }) + textLine("RTEXT", "", control.id, { 44, y, 52, 8 });
}

// Adds a group that starts at *y, and moves *y below it.
static std::string groupLines(const PanelGroup& group, int* y)
{
    KindLayout layout = layoutOf(group.kind);
    int top = *y, at = top + layout.first;
    std::string list, controls;
    if (group.listId)
    {
        list = line("COMBOBOX", "", group.listId, { 9, at, 90, listHeight },
                    ", CBS_DROPDOWNLIST | WS_VSCROLL | WS_TABSTOP");
        at += listStep;
    }
    int columns = group.kind == panelButton ? 2 : 1, count = static_cast<int>(group.controls.size());
    for (int i = 0; i < count; ++i)
        controls += controlLines(group.controls[static_cast<size_t>(i)], group.kind, i, at + i / columns * layout.step);
    int bottom = at + (count - 1) / columns * layout.step + layout.height + layout.bottom;
    *y = bottom + groupGap;
    std::string title = std::string(" ") + group.text + " ";
    return textLine("GROUPBOX", title.c_str(), -1, { groupLeft, top, groupWidth, bottom - top }) + list + controls;
}

static std::string panelFile()
{
    std::string groups;
    int y = topMargin;
    for (const PanelGroup& group : panelGroups)
        groups += groupLines(group, &y);
    int height = y - groupGap + bottomMargin;
    return opening("panel.rc", "the tool panel") + "ToolBarDialog DIALOGEX 0, 0, " + std::to_string(panelWidth) + ", " +
           std::to_string(height) +
           "\nSTYLE DS_SETFONT | DS_CONTROL | WS_CHILD | WS_CLIPSIBLINGS\nFONT 8, \"MS Shell Dlg\"\nBEGIN\n" + groups +
           "END\n";
}

int main(int argumentCount, char** arguments)
{
    if (argumentCount != 2)
    {
        fprintf(stderr, "usage: make_controls FOLDER\n");
        return 2;
    }
    return writeFile(arguments[1], "menu.rc", menuFile()) && writeFile(arguments[1], "panel.rc", panelFile()) ? 0 : 1;
}
