// image/entropy.h - the bit readers and the MCU
//
// Source: ITU-T T.81, annex F.2
#pragma once
#include "image/jpeg_state.h"

// Sets up restarts, predictions and the bit reader at the start of the scan. Returns false without memory.
bool startEntropy(JpegState* state);

// Whether decodeMcu succeeds for all MCUs of the scan, as many as given. Leaves the state at the start of the scan,
// where it must be before. Keeps no samples, so that it costs little memory and time, whatever size the header
// announces.
bool scanDecodes(JpegState* state, int64_t mcuCount);

// Whether every MCU from here on has no more than zeros: the data has ended, and no restart can follow.
bool dataHasEnded(const JpegState& state);

// How many bytes of the current segment nobody has read; 0 where its data has ended too early.
int64_t unreadBytes(const JpegState& state);

// Decodes the next MCU into state->blocks and state->lastIndex, after a restart where one is due. Returns false when
// the source ends where more bytes are needed, or without memory.
bool decodeMcu(JpegState* state);
