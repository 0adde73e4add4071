// platform/win32/names.h - names in UTF-8 to the wide characters of Windows and back
#pragma once
#include <string>

std::wstring wideFromUtf8(const char* text);
std::string utf8FromWide(const wchar_t* text);
