# Debian's emscripten. Its own file describes the compiler; the processor is named here, so that no other one is taken for it.
set(EMSCRIPTEN_SYSTEM_PROCESSOR wasm32)
include(/usr/share/emscripten/cmake/Modules/Platform/Emscripten.cmake)
