// fuzz/ply_mutator.cpp - changes the lines of a PLY header, or what follows it
#include "fuzz/mutation.h"

struct PlyFile
{
    std::vector<std::string> lines; // of the header, without their ends
    std::string body;
};

static const char* const words[] = { "char",
                                     "uchar",
                                     "short",
                                     "ushort",
                                     "int",
                                     "uint",
                                     "float",
                                     "double",
                                     "int8",
                                     "uint8",
                                     "int16",
                                     "uint16",
                                     "int32",
                                     "uint32",
                                     "float32",
                                     "float64",
                                     "list",
                                     "property",
                                     "element",
                                     "vertex",
                                     "face",
                                     "tristrips",
                                     "x",
                                     "y",
                                     "z",
                                     "red",
                                     "vertex_indices",
                                     "vertex_index",
                                     "ascii",
                                     "binary_little_endian",
                                     "binary_big_endian",
                                     "unknown" };
static const char* const counts[] = { "0", "1",   "2",     "3",          "4",          "5",
                                      "8", "100", "65536", "2147483647", "4294967295", "-1" };
static const char* const wholeLines[] = { "element vertex 3",
                                          "element face 2",
                                          "element tristrips 1",
                                          "element other 2",
                                          "property float x",
                                          "property double y",
                                          "property float z",
                                          "property uchar red",
                                          "property uchar alpha",
                                          "property float green",
                                          "property list uchar int vertex_indices",
                                          "property list int short other",
                                          "property list float float vertex_index",
                                          "comment",
                                          "obj_info" };

static PlyFile takeApart(const std::string& bytes)
{
    PlyFile file;
    size_t at = 0;
    while (at < bytes.size())
    {
        size_t end = bytes.find('\n', at);
        if (end == std::string::npos)
            break;
        file.lines.push_back(bytes.substr(at, end - at));
        at = end + 1;
        if (file.lines.back().starts_with("end_header"))
            break;
    }
    file.body = bytes.substr(at);
    return file;
}

static std::string join(const PlyFile& file)
{
    std::string bytes;
    for (const std::string& line : file.lines)
        bytes += line + "\n";
    return bytes + file.body;
}

static void replaceWord(std::string* line, Chance* chance)
{
    std::vector<size_t> starts;
    for (size_t at = 0; at < line->size(); ++at)
    {
        if ((*line)[at] != ' ' && (at == 0 || (*line)[at - 1] == ' '))
            starts.push_back(at);
    }
    if (starts.empty())
        return;
    size_t start = starts[below(chance, starts.size())];
    size_t end = line->find(' ', start);
    end = end == std::string::npos ? line->size() : end;
    bool number = (*line)[start] >= '0' && (*line)[start] <= '9';
    const char* word = number ? counts[below(chance, std::size(counts))] : words[below(chance, std::size(words))];
    line->replace(start, end - start, word);
}

static void changeFile(PlyFile* file, Chance* chance, size_t roomBytes)
{
    size_t kind = below(chance, 8);
    if (kind >= 4 || file->lines.empty())
    {
        file->body = kind == 4 ? file->body + file->body : changed(file->body, roomBytes);
        return;
    }
    size_t at = below(chance, file->lines.size());
    if (kind == 0)
        reorder(&file->lines, chance);
    else if (kind == 1)
        file->lines.insert(file->lines.begin() + static_cast<ptrdiff_t>(at),
                           wholeLines[below(chance, std::size(wholeLines))]);
    else
        replaceWord(&file->lines[at], chance);
}

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* bytes, size_t size, size_t sizeLimit, unsigned seed)
{
    Chance chance = { seed };
    if (below(&chance, 2))
        return LLVMFuzzerMutate(bytes, size, sizeLimit);
    PlyFile file = takeApart(std::string(reinterpret_cast<const char*>(bytes), size));
    for (size_t changes = 1 + below(&chance, 3); changes > 0; --changes)
        changeFile(&file, &chance, sizeLimit - size);
    return handOver(join(file), bytes, sizeLimit);
}
