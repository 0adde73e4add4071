// fuzz/jpeg_segments.cpp - finding the segments of a JPEG file, and joining them
#include "fuzz/jpeg_segments.h"

static size_t byteAt(const std::string& bytes, size_t at)
{
    return at < bytes.size() ? static_cast<uint8_t>(bytes[at]) : 0;
}

static bool hasLength(int marker)
{
    return marker != 0x01 && (marker < 0xD0 || marker > 0xD9); // TEM, restarts, SOI and EOI stand alone
}

// Where the next marker stands: FF and a byte that is neither a stuffed 0 nor a restart.
static size_t nextMarker(const std::string& bytes, size_t at)
{
    for (; at + 1 < bytes.size(); ++at)
    {
        size_t code = byteAt(bytes, at + 1);
        if (byteAt(bytes, at) == 0xFF && code != 0 && code != 0xFF && (code < 0xD0 || code > 0xD7))
            return at;
    }
    return bytes.size();
}

std::vector<JpegSegment> jpegSegments(const std::string& bytes)
{
    std::vector<JpegSegment> segments;
    size_t at = nextMarker(bytes, 0);
    if (at > 0)
        segments.push_back({ -1, false, "", bytes.substr(0, at) });
    while (at < bytes.size())
    {
        auto marker = static_cast<int>(byteAt(bytes, at + 1));
        size_t length = byteAt(bytes, at + 2) * 256 + byteAt(bytes, at + 3);
        bool whole = hasLength(marker) && length >= 2 && length <= bytes.size() - at - 2;
        size_t end = at + 2 + (whole ? length : 0);
        std::string contents = whole ? bytes.substr(at + 4, length - 2) : "";
        at = nextMarker(bytes, end);
        segments.push_back({ marker, whole, contents, bytes.substr(end, at - end) });
    }
    return segments;
}

std::string joinSegments(const std::vector<JpegSegment>& segments)
{
    std::string bytes;
    for (const JpegSegment& segment : segments)
    {
        if (segment.marker >= 0)
            bytes += { '\xFF', static_cast<char>(segment.marker) };
        size_t length = segment.contents.size() + 2;
        if (segment.hasLength)
            bytes += { static_cast<char>(length >> 8 & 0xFF), static_cast<char>(length & 0xFF) };
        bytes += segment.contents + segment.data;
    }
    return bytes;
}

int64_t announcedPixels(const std::vector<JpegSegment>& segments)
{
    int64_t most = 0;
    for (const JpegSegment& segment : segments)
    {
        if (segment.marker < 0xC0 || segment.marker > 0xC2)
            continue;
        const std::string& frame = segment.contents;
        size_t height = byteAt(frame, 1) * 256 + byteAt(frame, 2), width = byteAt(frame, 3) * 256 + byteAt(frame, 4);
        most = static_cast<int64_t>(width * height) > most ? static_cast<int64_t>(width * height) : most;
    }
    return most;
}
