// platform/win32/names.h - UTF-8 to the wide characters that Windows wants, so that every file name opens
#pragma once
#include <string>

std::wstring wideFromUtf8(const char* text);
std::string utf8FromWide(const wchar_t* text);
