// platform/web/host.h - what the program asks of the page around it; platform/web/host.js has the functions
#pragma once
#include <stddef.h>
#include <stdint.h>

extern "C"
{
    // Sends a message to the page: what it is about, and as much of an identifier (resources/ids.h), a value and a text
    // in UTF-8 as it needs. The text is copied. It does not wait for an answer.
    void tellPage(const char* what, int id, int value, const char* text);

    // Shows a rectangle of the display: four bytes a pixel, red, green, blue and 255, without padding.
    void showPixels(const uint8_t* pixels, int x, int y, int width, int height);

    // Hands the page a picture for the clipboard, in the same form.
    void copyPixels(const uint8_t* pixels, int width, int height);

    // Reads a file that lies beside the module. Returns its bytes, which the caller frees, and their number; or null
    // when it cannot be had or there is no memory.
    uint8_t* readPageFile(const char* name, size_t* size);
}
