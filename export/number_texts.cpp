// export/number_texts.cpp - formatting each number once
#include "export/number_texts.h"

#include "model/memory.h"
#include "platform/pages.h"

#include <algorithm>

// Formatting a number for the table takes as long as formatting it for the file, and copying it a fifth of that.
constexpr int64_t worthwhileUses = 2; // of each number

int makeNumberTexts(NumberTexts* texts, int64_t largest, int64_t uses)
{
    *texts = {};
    if (largest < 1 || uses < worthwhileUses * largest)
        return 1;
    auto count = static_cast<uint32_t>(std::min<int64_t>(largest + 1, numberTextLimit));
    texts->of = static_cast<uint64_t*>(allocatePages(blockSize(count, sizeof(uint64_t))));
    if (!texts->of)
        return reportOutOfMemory();
    texts->count = count;
    for (uint32_t n = 0; n < count; ++n)
    {
        uint64_t text = 0;
        char* start = reinterpret_cast<char*>(&text);
        auto length = static_cast<uint64_t>(formatUnsigned(start, n) - start);
        texts->of[n] = text | length << 56;
    }
    return 1;
}

void freeNumberTexts(NumberTexts* texts)
{
    releasePages(texts->of);
    *texts = {};
}
