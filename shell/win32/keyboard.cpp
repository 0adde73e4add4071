// shell/win32/keyboard.cpp - which messages are keys of the main window
#include "shell/win32/desktop.h"

#include "platform/win32/handles.h"
#include "shell/keys.h"

// The key of shell/keys.h, by its place on the keyboard or on the number pad; 0 for others.
static int keyOf(WPARAM code)
{
    static const struct
    {
        WPARAM code;
        int key;
    } rows[] = {
        { VK_ESCAPE, keyEscape }, { VK_HOME, keyHome },   { VK_PRIOR, keyPageUp }, { VK_NEXT, keyPageDown },
        { VK_LEFT, keyLeft },     { VK_RIGHT, keyRight }, { VK_UP, keyUp },        { VK_DOWN, keyDown },
        { VK_F5, keyF5 },         { VK_OEM_PLUS, '+' },   { VK_ADD, '+' },         { VK_OEM_MINUS, '-' },
        { VK_SUBTRACT, '-' },
    };
    for (const auto& row : rows)
    {
        if (row.code == code)
            return row.key;
    }
    if (code >= VK_NUMPAD0 && code <= VK_NUMPAD9)
        return static_cast<int>('0' + (code - VK_NUMPAD0));
    bool character = (code >= 'A' && code <= 'Z') || (code >= '0' && code <= '9');
    return character ? static_cast<int>(code) : 0;
}

static bool isDown(int code)
{
    return GetKeyState(code) < 0;
}

// The panel's list keeps the keys that it chooses by.
static bool controlNeedsKeys(HWND window)
{
    return SendMessageW(window, WM_GETDLGCODE, 0, 0) & (DLGC_WANTARROWS | DLGC_WANTCHARS | DLGC_WANTALLKEYS);
}

bool takeKey(const MSG* message)
{
    constexpr LPARAM heldBefore = LPARAM{ 1 } << 30;
    bool ours = message->hwnd == mainWindow || IsChild(mainWindow, message->hwnd);
    if (message->message != WM_KEYDOWN || !ours || isDown(VK_MENU))
        return false;
    uint32_t modifiers = (isDown(VK_CONTROL) ? withControl : 0u) | (isDown(VK_SHIFT) ? withShift : 0u);
    if (!(modifiers & withControl) && controlNeedsKeys(message->hwnd))
        return false;
    int key = keyOf(message->wParam);
    return key && runKey(key, modifiers, (message->lParam & heldBefore) != 0);
}
