// import/common/line_view.cpp - lines, terminated in place
#include "import/common/line_view.h"

#include <string.h>

void startLines(LineView* view, FILE* file)
{
    startBlocks(&view->blocks, file);
    view->held = 0;
    view->line = view->blocks.at;
    view->lineLength = 0;
}

void openLines(LineView* view)
{
    *view->blocks.at = view->held;
}

void closeLines(LineView* view)
{
    view->held = *view->blocks.at;
}

bool nextLine(LineView* view, size_t lineRoom)
{
    BlockSource* blocks = &view->blocks;
    openLines(view);
    size_t available = holdBytes(blocks, lineRoom - 1);
    if (available == 0)
        return false;
    size_t length = available < lineRoom - 1 ? available : lineRoom - 1;
    char* begin = blocks->at;
    if (auto* lineFeed = static_cast<char*>(memchr(begin, '\n', length)))
        length = static_cast<size_t>(lineFeed - begin) + 1;
    blocks->at += length;
    closeLines(view);
    *blocks->at = 0;
    view->line = begin;
    view->lineLength = strlen(begin);
    return true;
}
