// platform/refused_memory.h - whether a refusal of memory still has to be reported
//
// Some operations fail without a message of their own, or with one that is about something else, when the operating
// system gives them no memory. They note it here, so that a command line can say "Out of memory" in the end.
#pragma once

void noteRefusedMemory();

// "Out of memory" has been shown for what was noted.
void refusedMemoryReported();

bool refusedMemoryUnreported();
