// platform/win32/names.h - names in UTF-8 to the wide characters of Windows and back
#pragma once
#include <string>

std::wstring wideFromUtf8(const char* text);
std::string utf8FromWide(const wchar_t* text);

// A path for the functions of Windows. One that is too long for them gets the form that has no such limit.
std::wstring widePath(const char* path);
