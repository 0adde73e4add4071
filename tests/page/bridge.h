// tests/page/bridge.h - requests to tests/page/bridge.js, for what only a page can do
#pragma once
#include <nlohmann/json.hpp>

// Asks for one of the functions of bridge.js with its parameters, and returns its result. A failure fails the test.
nlohmann::json askBridge(const char* what, nlohmann::json parameters = nlohmann::json::object());
