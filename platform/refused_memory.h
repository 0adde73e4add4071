// platform/refused_memory.h - whether a refusal of memory still has to be reported
//
// When the operating system refuses memory, some operations fail without a message, or with a message about something
// else. They note the refusal here, so that the command line can say "Out of memory" at its end.
#pragma once

// Memory was refused, and nothing has said so yet.
void noteRefusedMemory();

// "Out of memory" has been shown for every refusal so far.
void refusedMemoryReported();

bool refusedMemoryUnreported();
