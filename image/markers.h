// image/markers.h - everything before the entropy-coded data
//
// Source: ITU-T T.81, annex B
#pragma once

// Reads marker segments up to and with the first scan header and checks what they say: sizes, factors, precision, that
// the scan carries every component. Returns 1 when the scan's data comes next, 0 when the file is not to be decoded.
int readHeaders();

// Reads bytes up to a marker and returns its code; fill bytes and stuffed zeros are passed over.
int findMarker();
