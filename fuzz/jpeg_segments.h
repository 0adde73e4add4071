// fuzz/jpeg_segments.h - a JPEG file taken apart into its segments
#pragma once
#include <stddef.h>
#include <stdint.h>
#include <string>
#include <vector>

struct JpegSegment
{
    int marker;     // the byte after FF; -1 when the bytes begin with none
    bool hasLength; // followed by a length and contents
    std::string contents;
    std::string data; // what stands between the segment and the next marker, such as entropy-coded data
};

std::vector<JpegSegment> jpegSegments(const std::string& bytes);
std::string joinSegments(const std::vector<JpegSegment>& segments);

// The most pixels that a frame header of the file announces.
int64_t announcedPixels(const std::vector<JpegSegment>& segments);
