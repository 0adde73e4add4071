// shell/web/describe.h - the tables of resources/controls.h and shell/keys.h for the page, and the state of the view
#pragma once

// Tells the page "tables": an object with "menus", "panel" and "keys", as shell/web/tables.d.ts has it.
void tellTables();

// Tells the page "state": an object with the display's size in pixels, the rotation row by row, the zoom, whether the
// model spins, and how many large blocks of memory are in use.
void tellState();
