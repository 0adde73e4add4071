// fuzz/threeds_mutator.cpp - changes the tree of chunks of a 3DS file
#include "fuzz/mutation.h"

#include <string.h>

constexpr size_t headBytes = 6; // identifier and length
constexpr int depthLimit = 16;

struct Chunk
{
    uint16_t id;
    std::string own; // the bytes before the chunks inside
    std::vector<Chunk> inside;
    bool loose; // not a chunk: bytes that are left over
};

// Those that contain chunks come first.
constexpr uint16_t containers[] = { 0x4D4D, 0x3D3D, 0x4000, 0x4100, 0x4120, 0xAFFF, 0xA010, 0xA020, 0xA030,
                                    0xA040, 0xA041, 0xA050, 0xA084, 0xA200, 0xA210, 0xB000, 0xB002 };
constexpr uint16_t leaves[] = { 0x0002, 0x0010, 0x0011, 0x0012, 0x0013, 0x0030, 0x0031, 0x0100, 0x4110,
                                0x4111, 0x4130, 0x4140, 0x4150, 0x4160, 0xA000, 0xA081, 0xA100, 0xA300,
                                0xB008, 0xB010, 0xB013, 0xB020, 0xB021, 0xB022, 0xB030 };

// How many bytes of a chunk's contents come before the chunks inside. All of them for a chunk that has none.
static size_t ownBytes(uint16_t id, const std::string& contents)
{
    bool contains = false;
    for (uint16_t container : containers)
        contains = contains || container == id;
    if (!contains)
        return contents.size();
    size_t bytes = 0;
    if (id == 0x4000) // a name
        bytes = strlen(contents.c_str()) + 1;
    if (id == 0x4120 && contents.size() >= 2) // a count, and 8 bytes for each face
        bytes =
            2 + 8 * (static_cast<size_t>(static_cast<uint8_t>(contents[1])) * 256 + static_cast<uint8_t>(contents[0]));
    return bytes < contents.size() ? bytes : contents.size();
}

static std::vector<Chunk> takeApart(const std::string& bytes, int depth)
{
    std::vector<Chunk> chunks;
    size_t at = 0;
    while (at + headBytes <= bytes.size())
    {
        uint16_t id;
        uint32_t length;
        memcpy(&id, &bytes[at], sizeof id);
        memcpy(&length, &bytes[at + 2], sizeof length);
        if (length < headBytes || length > bytes.size() - at)
            break;
        std::string contents = bytes.substr(at + headBytes, length - headBytes);
        size_t own = depth < depthLimit ? ownBytes(id, contents) : contents.size();
        chunks.push_back({ id, contents.substr(0, own), takeApart(contents.substr(own), depth + 1), false });
        at += length;
    }
    if (at < bytes.size())
        chunks.push_back({ 0, bytes.substr(at), {}, true });
    return chunks;
}

// wrong: counted down with each chunk; the one that it reaches 0 at gets a wrong length.
static std::string join(const std::vector<Chunk>& chunks, Chance* chance, int* wrong)
{
    std::string bytes;
    for (const Chunk& chunk : chunks)
    {
        std::string contents = chunk.own + join(chunk.inside, chance, wrong);
        auto length = static_cast<uint32_t>(contents.size() + headBytes);
        if ((*wrong)-- == 0)
            length += static_cast<uint32_t>(below(chance, 17)) - 8;
        if (!chunk.loose)
        {
            bytes.append(reinterpret_cast<const char*>(&chunk.id), sizeof chunk.id);
            bytes.append(reinterpret_cast<const char*>(&length), sizeof length);
        }
        bytes += contents;
    }
    return bytes;
}

static void listAll(std::vector<Chunk>* chunks, std::vector<std::vector<Chunk>*>* lists)
{
    if (!chunks->empty())
        lists->push_back(chunks);
    for (Chunk& chunk : *chunks)
        listAll(&chunk.inside, lists);
}

static uint16_t anyId(Chance* chance)
{
    if (below(chance, 2))
        return containers[below(chance, std::size(containers))];
    return leaves[below(chance, std::size(leaves))];
}

static void changeTree(std::vector<Chunk>* file, Chance* chance, size_t roomBytes)
{
    std::vector<std::vector<Chunk>*> lists;
    listAll(file, &lists);
    if (lists.empty())
        return;
    std::vector<Chunk>* list = lists[below(chance, lists.size())];
    Chunk* chunk = &(*list)[below(chance, list->size())];
    switch (below(chance, 8))
    {
    case 0: chunk->id = anyId(chance); break;
    case 1:
    {
        Chunk moved = *chunk; // a copy of it goes into another list
        lists[below(chance, lists.size())]->push_back(std::move(moved));
        break;
    }
    case 2: chunk->inside.push_back({ anyId(chance), changed("", 16), {}, false }); break;
    case 3:
    case 4: reorder(list, chance); break;
    default: chunk->own = changed(chunk->own, roomBytes); break;
    }
}

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* bytes, size_t size, size_t sizeLimit, unsigned seed)
{
    Chance chance = { seed };
    if (below(&chance, 2))
        return LLVMFuzzerMutate(bytes, size, sizeLimit);
    std::string before(reinterpret_cast<const char*>(bytes), size);
    std::vector<Chunk> file = takeApart(before, 0);
    for (size_t changes = 1 + below(&chance, 3); changes > 0; --changes)
        changeTree(&file, &chance, sizeLimit - size);
    int wrong = below(&chance, 8) ? -1 : static_cast<int>(below(&chance, 16));
    return handOver(join(file, &chance, &wrong), bytes, sizeLimit);
}
