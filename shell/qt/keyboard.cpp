// shell/qt/keyboard.cpp - which key events are keys of the main window
#include "shell/keys.h"
#include "shell/qt/desktop.h"

#include <QtGui/QKeyEvent>

// The key of shell/keys.h; 0 for others.
static int keyOf(int code)
{
    static const struct
    {
        int code, key;
    } rows[] = {
        { Qt::Key_Escape, keyEscape }, { Qt::Key_Home, keyHome },
        { Qt::Key_PageUp, keyPageUp }, { Qt::Key_PageDown, keyPageDown },
        { Qt::Key_Left, keyLeft },     { Qt::Key_Right, keyRight },
        { Qt::Key_Up, keyUp },         { Qt::Key_Down, keyDown },
        { Qt::Key_F5, keyF5 },         { Qt::Key_Plus, '+' },
        { Qt::Key_Equal, '+' },        { Qt::Key_Minus, '-' },
        { Qt::Key_Underscore, '-' },
    };
    for (const auto& row : rows)
    {
        if (row.code == code)
            return row.key;
    }
    bool character = (code >= Qt::Key_A && code <= Qt::Key_Z) || (code >= Qt::Key_0 && code <= Qt::Key_9);
    return character ? code : 0; // Qt numbers these keys by their capitals and digits
}

bool takeKey(const QKeyEvent* event)
{
    Qt::KeyboardModifiers held = event->modifiers();
    if (held & (Qt::AltModifier | Qt::MetaModifier))
        return false;
    uint32_t modifiers = (held & Qt::ControlModifier ? withControl : 0u) | (held & Qt::ShiftModifier ? withShift : 0u);
    int key = keyOf(event->key());
    return key && runKey(key, modifiers, event->isAutoRepeat());
}
