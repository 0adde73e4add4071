// platform/win32/boxes.cpp - message boxes, the progress box and the notice box
#include "platform/boxes.h"
#include "platform/win32/handles.h"
#include "platform/win32/names.h"
#include "resources/ids.h"

#include <string>

constexpr UINT_PTR noticeTimer = 1;
constexpr UINT noticeMs = 1300;
constexpr wchar_t barCharacter = 127; // the bar's text consists of these; each is drawn as a solid block

static HWND progressBox;

void messageBox(const char* text, const char* caption, BoxIcon icon)
{
    std::wstring wideCaption = caption ? wideFromUtf8(caption) : std::wstring();
    MessageBoxW(mainWindow, wideFromUtf8(text).c_str(), caption ? wideCaption.c_str() : nullptr,
                MB_OK | (icon == iconStop ? MB_ICONSTOP : 0u));
}

// Draws the bar by the length of its text, so that its width does not depend on the font.
static void drawBar(const DRAWITEMSTRUCT* item)
{
    RECT bar = item->rcItem;
    LONG wholeWidth = bar.right - bar.left;
    FillRect(item->hDC, &bar, GetSysColorBrush(COLOR_BTNFACE));
    bar.right = bar.left + wholeWidth * GetWindowTextLengthW(item->hwndItem) / progressStepCount;
    FillRect(item->hDC, &bar, GetSysColorBrush(COLOR_HIGHLIGHT));
}

static INT_PTR CALLBACK progressProc(HWND box, UINT message, WPARAM, LPARAM lParam)
{
    switch (message)
    {
    case WM_INITDIALOG:
        SetDlgItemTextW(box, ID_PROGRESS_CAPTION, reinterpret_cast<const wchar_t*>(lParam));
        return TRUE;
    case WM_DRAWITEM: drawBar(reinterpret_cast<const DRAWITEMSTRUCT*>(lParam)); return TRUE;
    }
    return FALSE;
}

void showProgress(const char* caption)
{
    std::wstring text = wideFromUtf8(caption);
    progressBox = CreateDialogParamW(programInstance, L"ProgressBarDialog", mainWindow, progressProc,
                                     reinterpret_cast<LPARAM>(text.c_str()));
    ShowWindow(progressBox, SW_SHOWDEFAULT);
    UpdateWindow(progressBox);
}

void setProgress(float fraction)
{
    std::wstring bar(static_cast<size_t>(progressSteps(fraction)), barCharacter);
    HWND control = progressBox ? GetDlgItem(progressBox, ID_PROGRESS_BAR) : nullptr;
    if (!control || GetWindowTextLengthW(control) == static_cast<int>(bar.size()))
        return;
    SetWindowTextW(control, bar.c_str());
    InvalidateRect(control, nullptr, FALSE);
    UpdateWindow(control); // paints at once, because readers do not process messages
}

void closeProgress()
{
    if (progressBox)
        DestroyWindow(progressBox);
    progressBox = nullptr;
}

// Widens the box for a text that is too long for it. The box never becomes narrower.
static void widenNotice(HWND box, const wchar_t* text)
{
    HWND control = GetDlgItem(box, ID_NOTICE_TEXT);
    RECT place, whole;
    SIZE needed = {};
    GetClientRect(control, &place);
    GetWindowRect(box, &whole);
    HDC context = GetDC(control);
    HGDIOBJ previous = SelectObject(context, reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0)));
    GetTextExtentPoint32W(context, text, static_cast<int>(wcslen(text)), &needed);
    SelectObject(context, previous);
    ReleaseDC(control, context);
    LONG missing = needed.cx - place.right;
    if (missing <= 0)
        return;
    SetWindowPos(control, nullptr, 0, 0, place.right + missing, place.bottom, SWP_NOMOVE | SWP_NOZORDER);
    SetWindowPos(box, nullptr, 0, 0, whole.right - whole.left + missing, whole.bottom - whole.top,
                 SWP_NOMOVE | SWP_NOZORDER);
}

static INT_PTR CALLBACK noticeProc(HWND box, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case WM_INITDIALOG:
        SetDlgItemTextW(box, ID_NOTICE_TEXT, reinterpret_cast<const wchar_t*>(lParam));
        widenNotice(box, reinterpret_cast<const wchar_t*>(lParam));
        SetTimer(box, noticeTimer, noticeMs, nullptr);
        return TRUE;
    case WM_TIMER:
        if (wParam == noticeTimer)
        {
            KillTimer(box, noticeTimer);
            EndDialog(box, 0);
        }
        return TRUE;
    }
    return FALSE;
}
void explainFailure(const char*, const char*) {}

void showNotice(const char* text)
{
    std::wstring wide = wideFromUtf8(text);
    DialogBoxParamW(programInstance, L"MessageDialog", mainWindow, noticeProc, reinterpret_cast<LPARAM>(wide.c_str()));
}

void beep()
{
    MessageBeep(0);
}
