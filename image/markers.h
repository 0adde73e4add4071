// image/markers.h - everything before the entropy-coded data
//
// Source: ITU-T T.81, annex B
#pragma once
#include "image/jpeg_state.h"

// Reads the marker segments up to and with the first scan header and checks them: sizes, factors, precision, and that
// the scan carries every component of a sequential frame. Returns true when the data of the scan comes next, false when
// the file is refused.
bool readHeaders(JpegState* state);
