// tests/import/obj_literal.cpp - byte by byte through 4096 bytes, numbers by sscanf, names by comparing all
#include "tests/import/obj_literal.h"

#include <stdint.h>
#include <stdio.h>
#include <string.h>
#include <algorithm>

struct LiteralInput
{
    const std::string& bytes;
    size_t filePosition = 0;
    size_t fill = 4096, at = 4096;
    char buffer[4096] = {};

    int next(char* out)
    {
        if (at == fill)
        {
            if (fill != 4096)
                return 0;
            size_t came = std::min<size_t>(4096, bytes.size() - filePosition);
            if (came == 0)
                return 0;
            memcpy(buffer, bytes.data() + filePosition, came);
            filePosition += came;
            fill = came;
            at = 0;
        }
        *out = buffer[at++];
        return 1;
    }
};

static bool blank(char c)
{
    return c == ' ' || c == '\t';
}

static bool lineEnd(char c)
{
    return c == '\n' || c == '\r';
}

// 0 for the end, -1 for "scan again", else the kind with the separator taken.
static int literalKeyword(LiteralInput& input, char c)
{
    std::string word(1, c);
    if (c == 'u' || c == 'm')
    {
        std::string keyword = c == 'u' ? "usemtl" : "mtllib";
        for (size_t i = 1; i < keyword.size(); ++i)
        {
            if (!input.next(&c))
                return 0;
            if (c != keyword[i])
                return -1;
        }
        if (!input.next(&c))
            return 0;
        if (!blank(c))
            return -1;
        return keyword == "usemtl" ? 6 : 7;
    }
    int kind = c == 'v' ? 2 : c == 'f' ? 4 : c == 'g' ? 5 : c == 'l' ? 8 : -1;
    if (kind > 0)
    {
        char first = c;
        if (!input.next(&c))
            return 0;
        if ((first == 'v' && c == 't') || (first == 'f' && c == 'o'))
        {
            kind = first == 'v' ? 3 : 4;
            if (!input.next(&c))
                return 0;
        }
        if (blank(c))
            return kind;
    }
    while (!lineEnd(c))
    {
        if (!input.next(&c))
            return 0;
    }
    return -1;
}

static int literalStatement(LiteralInput& input, char (&text)[2048])
{
    for (;;)
    {
        char c;
        do
        {
            if (!input.next(&c))
                return 0;
        } while (c == 10 || c == 13 || c == ' ' || c == '\t');
        int kind = literalKeyword(input, c);
        if (kind == 0)
            return 0;
        if (kind < 0)
            continue;
        do
        {
            if (!input.next(&c))
                return 0;
        } while (blank(c));
        if (lineEnd(c))
            return 1;
        for (int stored = 0;;)
        {
            text[stored++] = c;
            if (stored == 2048)
                return 0;
            if (!input.next(&c))
                return 0;
            if (lineEnd(c))
            {
                text[stored] = 0;
                return kind;
            }
        }
    }
}

static bool sane(float* value)
{
    uint32_t bits;
    memcpy(&bits, value, 4);
    uint32_t exponent = bits >> 23 & 255;
    if (exponent >= 147 || exponent == 0)
        *value = 0;
    return exponent < 147;
}

static std::vector<std::pair<int, int>> literalCorners(const char* text, int vertexCount, int uvCount)
{
    std::vector<int> vertices, uvs;
    for (;;)
    {
        while (*text == ' ')
            ++text;
        if (!*text)
            break;
        std::string scratch;
        for (; *text && *text != ' '; ++text)
            scratch += *text == '/' ? ' ' : *text;
        scratch += " 0";
        int v, t;
        if (vertices.size() == 32 || sscanf(scratch.c_str(), "%d %d", &v, &t) < 2)
            return {};
        int64_t vertex = v < 0 ? int64_t{ v } + vertexCount + 1 : v;
        if (vertex < 1 || vertex > vertexCount)
            return {};
        int64_t uv = t > uvCount ? 1 : t;
        uv = uv < 0 ? uvCount + uv + 1 : uv;
        vertices.push_back(static_cast<int>(vertex));
        uvs.push_back(static_cast<int>(uv <= 0 ? 1 : uv));
    }
    for (size_t k = 0; k < vertices.size(); ++k)
    {
        for (size_t later = vertices.size() - 1; later > k; --later)
            if (vertices[later] == vertices[k])
                vertices.erase(vertices.begin() + static_cast<long>(later));
    }
    std::vector<std::pair<int, int>> corners;
    for (size_t k = 0; k < vertices.size(); ++k)
        corners.emplace_back(vertices[k], uvs[k]);
    return corners;
}

struct LiteralFace
{
    int v[4] = { -1, -1, -1, -1 };
    int t[4] = { 0, 0, 0, 0 };
    uint32_t word = 0;
};

static LiteralFace faceOf(const std::vector<std::pair<int, int>>& corners, const std::vector<size_t>& which)
{
    LiteralFace face;
    for (size_t k = 0; k < which.size(); ++k)
    {
        face.v[k] = corners[which[k]].first - 1;
        face.t[k] = corners[which[k]].second - 1;
    }
    return face;
}

static uint32_t useName(std::vector<std::string>& names, const char* text, uint32_t current)
{
    std::string name = std::string(text).substr(0, 63);
    auto found = std::find(names.begin(), names.end(), name);
    if (found != names.end())
        return static_cast<uint32_t>(found - names.begin());
    if (names.size() == 512)
        return current;
    names.push_back(name);
    return static_cast<uint32_t>(names.size() - 1);
}

struct LiteralModel
{
    std::vector<float> positions, uvs;
    std::vector<LiteralFace> faces;
    std::vector<std::string> groups, materials;
    std::string library;
    uint32_t group = 0, material = 0;
    int lines = 0, polygons = 0;
};

static void takeNumbers(LiteralModel& model, int kind, const char* text)
{
    float n[3] = {};
    bool ok = kind == 2 ? sscanf(text, "%f %f %f", &n[0], &n[1], &n[2]) == 3 : sscanf(text, "%f %f", &n[0], &n[1]) == 2;
    for (int i = 0; i < 3; ++i)
        ok = sane(&n[i]) && ok;
    std::vector<float>& list = kind == 2 ? model.positions : model.uvs;
    for (int i = 0; i < (kind == 2 ? 3 : 2); ++i)
        list.push_back(ok ? n[i] : 0);
}

static void takeFace(LiteralModel& model, int kind, const char* text)
{
    auto corners =
        literalCorners(text, static_cast<int>(model.positions.size() / 3), static_cast<int>(model.uvs.size() / 2));
    uint32_t word = model.material | model.group << 9;
    size_t n = corners.size();
    if (kind == 4 && n >= 3)
    {
        std::vector<LiteralFace> made;
        if (n == 3)
            made.push_back(faceOf(corners, { 0, 1, 2 }));
        else if (n == 4)
            made.push_back(faceOf(corners, { 0, 1, 2, 3 }));
        else
            for (size_t k = 2; k < n; ++k)
                made.push_back(faceOf(corners, { 0, k - 1, k }));
        for (LiteralFace& face : made)
        {
            face.word = word;
            model.faces.push_back(face);
            ++model.polygons;
        }
    }
    if (kind == 8 && n >= 2)
    {
        ++model.lines;
        size_t taken = 0;
        for (bool first = true; first || taken < n; first = false)
        {
            std::vector<size_t> which;
            if (!first)
                which.push_back(taken - 1);
            while (which.size() < 4 && taken < n)
                which.push_back(taken++);
            LiteralFace face = faceOf(corners, which);
            face.word = word | 1u << 29 | (first ? static_cast<uint32_t>(n) << 18 : 0);
            model.faces.push_back(face);
        }
    }
}

static uint32_t bitsOf(float value)
{
    uint32_t bits;
    memcpy(&bits, &value, 4);
    return bits;
}

static std::string textOf(LiteralModel& model)
{
    if (model.uvs.empty())
    {
        model.uvs = { 0, 0 };
        for (LiteralFace& face : model.faces)
            std::fill(face.t, face.t + 4, 0);
    }
    std::string text;
    char line[200];
    for (size_t i = 0; i < model.positions.size(); i += 3)
    {
        snprintf(line, sizeof line, "v %x %x %x ffffffff\n", bitsOf(model.positions[i]), bitsOf(model.positions[i + 1]),
                 bitsOf(model.positions[i + 2]));
        text += line;
    }
    for (size_t i = 0; i < model.uvs.size(); i += 2)
    {
        snprintf(line, sizeof line, "vt %x %x\n", bitsOf(model.uvs[i]), bitsOf(model.uvs[i + 1]));
        text += line;
    }
    for (const LiteralFace& f : model.faces)
    {
        snprintf(line, sizeof line, "%d %d %d %d  %d %d %d %d  %x\n", f.v[0], f.v[1], f.v[2], f.v[3], f.t[0], f.t[1],
                 f.t[2], f.t[3], f.word);
        text += line;
    }
    for (const std::string& name : model.groups)
        text.append("group ").append(name.c_str()).append("\n");
    for (const std::string& name : model.materials)
        text.append("material ").append(name.c_str()).append("\n");
    snprintf(line, sizeof line, "lines %d polygons %d\n", model.lines, model.polygons);
    return text + line;
}

LiteralObj readLiterally(const std::string& bytes)
{
    LiteralObj result = {};
    if (bytes.empty())
        return result;
    LiteralInput input{ bytes };
    LiteralModel model;
    char text[2048];
    for (int statements = 1;; ++statements)
    {
        int kind = literalStatement(input, text);
        if (kind == 0)
            break;
        if (kind == 2 || kind == 3)
            takeNumbers(model, kind, text);
        if (kind == 4 || kind == 8)
            takeFace(model, kind, text);
        if (kind == 5)
            model.group = useName(model.groups, text, model.group);
        if (kind == 6)
            model.material = useName(model.materials, text, model.material);
        if (kind == 7)
            model.library = std::string(text).substr(0, 63);
        if (statements % 10000 == 0)
            result.fractions.push_back(static_cast<float>(input.filePosition) / static_cast<float>(bytes.size()));
    }
    result.ok = !model.positions.empty() && !model.faces.empty();
    result.geometry = textOf(model);
    result.library = model.library;
    return result;
}
