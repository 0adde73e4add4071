// tests/page/base64.h - bytes as texts, for requests to the bridge
#pragma once
#include <string>

std::string encodeBase64(const std::string& bytes);
std::string decodeBase64(const std::string& text);
