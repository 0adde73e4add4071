// fuzz/mutation.h - what the mutators that know a format have in common
//
// libFuzzer changes bytes at any place. In a format whose parts carry their lengths or counts, nearly every such change
// ends the reading at once. A mutator that knows the format takes the file apart, changes the parts, and joins them
// with lengths that fit. Every second change is still one of libFuzzer's own, so that the lengths are wrong as well.
#pragma once
#include <stddef.h>
#include <stdint.h>
#include <string>
#include <utility>
#include <vector>

extern "C" size_t LLVMFuzzerMutate(uint8_t* bytes, size_t size, size_t sizeLimit);

// Random numbers from the seed that libFuzzer gives, so that a run can be repeated.
struct Chance
{
    uint64_t state;
};

// A number from 0 to limit - 1.
inline size_t below(Chance* chance, size_t limit)
{
    chance->state = chance->state * 6364136223846793005u + 1442695040888963407u;
    return static_cast<size_t>((chance->state >> 33) % limit);
}

// The bytes after one of libFuzzer's own changes, at most roomBytes longer.
inline std::string changed(const std::string& bytes, size_t roomBytes)
{
    std::string result = bytes;
    size_t sizeLimit = bytes.size() + roomBytes;
    result.resize(sizeLimit + 1); // LLVMFuzzerMutate wants room for a byte at least
    result.resize(LLVMFuzzerMutate(reinterpret_cast<uint8_t*>(result.data()), bytes.size(), sizeLimit + 1));
    return result;
}

// Removes, repeats or exchanges parts of a list that has some.
template <typename Part>
void reorder(std::vector<Part>* parts, Chance* chance)
{
    size_t at = below(chance, parts->size()), other = below(chance, parts->size());
    switch (below(chance, 3))
    {
    case 0: parts->erase(parts->begin() + static_cast<ptrdiff_t>(at)); break;
    case 1: parts->insert(parts->begin() + static_cast<ptrdiff_t>(other), Part((*parts)[at])); break;
    default: std::swap((*parts)[at], (*parts)[other]); break;
    }
}

// Hands a file to libFuzzer: as much as fits. Returns its size.
inline size_t handOver(const std::string& file, uint8_t* bytes, size_t sizeLimit)
{
    return file.copy(reinterpret_cast<char*>(bytes), sizeLimit);
}
