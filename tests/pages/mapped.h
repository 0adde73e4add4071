// tests/pages/mapped.h - asking the operating system for what it knows about memory
//
// The tests link mapped.cpp, on Windows tests/windows/mapped.cpp.
#pragma once

// Whether the process has memory at an address that allocatePages has given before.
bool isMapped(void* block);
