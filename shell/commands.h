// shell/commands.h - what the menu and the main window do
#pragma once

// Runs the menu command with this identifier. Returns 1, or 0 when the menu has none.
int runCommand(int id);

// Do what "Open mesh File", "Read RKF" and "Load texture" do, with a file that nobody is asked for. Return 1, or 0
// after the reader's message.
int openModelAt(const char* path);
int openRkfAt(const char* path);
int loadTextureAt(const char* path);

// The main window was minimised, or took another size.
void mainWindowSized(bool minimised);

// The main window became active or inactive.
void mainWindowActivated(bool active);
