// image/source.h - the bytes of the source, one by one
#pragma once
#include "image/jpeg.h"

// Gets more bytes when none are left. Returns false when the source has ended; it then holds FF D9.
bool refillSource(JpegSource* source);

// The next byte; two bytes, high one first. Past the end of the source they give FF D9 over and over.
int32_t readByte(JpegSource* source);
int32_t readWord(JpegSource* source);

// How many bytes of the file or block have been read.
int64_t bytesRead(const JpegSource& source);

// Whether somebody has asked for more bytes than there are.
bool hasRunOut(const JpegSource& source);

// Skips n bytes; n below 1 is none. Returns false when the source ends first.
bool skipBytes(JpegSource* source, int32_t n);

// Reads up to and with the next marker and returns its code; fill bytes and stuffed zeros are skipped. *skipped, where
// given, gets how many other bytes came before it.
int32_t findMarker(JpegSource* source, int64_t* skipped = nullptr);

// The place of the next byte, to read from there again.
struct SourcePlace
{
    const uint8_t* next;
    size_t bytesLeft;
    int64_t filePosition;           // behind the buffer
    uint8_t buffer[fileBufferRoom]; // a copy: next may point into it
};

SourcePlace placeOf(const JpegSource& source);
// Returns false when the file does not allow it.
bool returnTo(JpegSource* source, const SourcePlace& place);
