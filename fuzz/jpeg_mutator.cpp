// fuzz/jpeg_mutator.cpp - changes the segments of a JPEG file
#include "fuzz/jpeg_segments.h"
#include "fuzz/mutation.h"

constexpr int markers[] = { 0xC0, 0xC1, 0xC2, 0xC4, 0xDA, 0xDB, 0xDC, 0xDD, 0xE0, 0xEE, 0xFE, 0xD0, 0xD7, 0xD9 };

static void changeSegments(std::vector<JpegSegment>* segments, Chance* chance, size_t roomBytes)
{
    if (segments->empty())
        return;
    JpegSegment* segment = &(*segments)[below(chance, segments->size())];
    switch (below(chance, 8))
    {
    case 0: segment->marker = markers[below(chance, std::size(markers))]; break;
    case 1:
    case 2: reorder(segments, chance); break;
    case 3:
    case 4: segment->data = changed(segment->data, roomBytes); break;
    default: segment->contents = changed(segment->contents, segment->hasLength ? roomBytes : 0); break;
    }
}

// A frame of a few pixels finds what a large one finds, in less time.
static void makeSmall(std::vector<JpegSegment>* segments)
{
    for (JpegSegment& segment : *segments)
    {
        if (segment.marker >= 0xC0 && segment.marker <= 0xC2 && segment.contents.size() >= 5)
            segment.contents[1] = segment.contents[3] = 0;
    }
}

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* bytes, size_t size, size_t sizeLimit, unsigned seed)
{
    Chance chance = { seed };
    if (below(&chance, 2))
        return LLVMFuzzerMutate(bytes, size, sizeLimit);
    std::vector<JpegSegment> segments = jpegSegments(std::string(reinterpret_cast<const char*>(bytes), size));
    for (size_t changes = 1 + below(&chance, 3); changes > 0; --changes)
        changeSegments(&segments, &chance, sizeLimit - size);
    if (below(&chance, 16))
        makeSmall(&segments);
    return handOver(joinSegments(segments), bytes, sizeLimit);
}
