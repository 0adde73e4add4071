// export/save_progress.h - the progress bar of a writer
#pragma once
#include "platform/boxes.h"

#include <stdint.h>

// A cleared record has no bar on the screen.
struct SaveProgress
{
    int64_t totalUnits;
    int64_t doneUnits;
    int64_t shownUnits; // when the bar was last moved
    bool open;
};

inline void startSaveProgress(SaveProgress* progress, int64_t totalUnits)
{
    *progress = { totalUnits, 0, 0, true };
    showProgress("SAVING.....");
}

// Counts one line of data. The bar moves when more than 10,000 have been written since it last did.
inline void countSaved(SaveProgress* progress)
{
    constexpr int64_t unitsPerStep = 10000;
    if (++progress->doneUnits - progress->shownUnits <= unitsPerStep)
        return;
    progress->shownUnits = progress->doneUnits;
    setProgress(static_cast<float>(progress->doneUnits) / static_cast<float>(progress->totalUnits));
}

// Closes the bar where there is one.
inline void endSaveProgress(SaveProgress* progress)
{
    if (progress->open)
        closeProgress();
    progress->open = false;
}
