// import/common/corners.cpp - parsing corner lists and storing fans and chains
#include "import/common/corners.h"

#include "import/common/numbers.h"

static bool cornerEnds(char c)
{
    return c == ' ' || isTextEnd(c);
}

// Skips the bytes between the numbers of one corner: '/' and all white space except the blank, which ends the corner.
static const char* skipInCorner(const char* at)
{
    while (*at == '/' || *at == '\t' || *at == '\v' || *at == '\f')
        ++at;
    return at;
}

// Reads the two numbers of one corner. Returns the blank or text end after it, or null when a number is missing.
static const char* scanCorner(const char* at, int32_t* vertex, int32_t* uv)
{
    at = scanInt(skipInCorner(at), vertex);
    if (!at)
        return nullptr;
    *uv = 0;
    at = skipInCorner(at);
    if (!cornerEnds(*at))
    {
        at = scanInt(at, uv);
        if (!at)
            return nullptr;
    }
    while (!cornerEnds(*at))
        ++at;
    return at;
}

// Like scanCorner, for a padded text. It reads "7", "7/3", "7/3/5" and "7//5" of up to 7 digits without testing each
// byte.
static const char* scanCornerPadded(const char* at, int32_t* vertex, int32_t* uv)
{
    uint64_t first = loadEight(at);
    int firstDigits = leadingDigits(first);
    const char* p = at + firstDigits;
    if (firstDigits == 0 || firstDigits == 8)
        return scanCorner(at, vertex, uv);
    if (cornerEnds(*p))
    {
        *vertex = static_cast<int32_t>(digitsValue(first, firstDigits));
        *uv = 0;
        return p;
    }
    if (*p != '/')
        return scanCorner(at, vertex, uv);
    p += p[1] == '/' ? 2 : 1;
    uint64_t second = loadEight(p);
    int secondDigits = leadingDigits(second);
    if (secondDigits == 0 || secondDigits == 8)
        return scanCorner(at, vertex, uv);
    twoDigitsValues(first, firstDigits, second, secondDigits, vertex, uv);
    p += secondDigits;
    if (*p == '/')
        p += 1 + leadingDigits(loadEight(p + 1));
    while (!cornerEnds(*p))
        ++p;
    return p;
}

static int32_t resolveUv(int32_t uv, int32_t uvCount)
{
    if (uv > uvCount)
        return 1;
    int64_t resolved = uv < 0 ? int64_t{ uvCount } + uv + 1 : uv;
    return resolved <= 0 ? 1 : static_cast<int32_t>(resolved);
}

static bool anyRepeated(const int32_t* vertices, int count)
{
    bool repeated = vertices[1] == vertices[0] || vertices[2] == vertices[0] || vertices[2] == vertices[1];
    for (int k = 3; k < count; ++k)
        for (int other = 0; other < k; ++other)
            repeated |= vertices[other] == vertices[k];
    return repeated;
}

static int dropRepeated(int32_t* vertices, int count)
{
    int kept = 0;
    for (int k = 0; k < count; ++k)
    {
        int32_t vertex = vertices[k];
        bool repeated = false;
        for (int other = 0; other < kept; ++other)
            repeated |= vertices[other] == vertex;
        vertices[kept] = vertex;
        kept += !repeated;
    }
    return kept;
}

template <typename Scan>
static int parseCorners(Scan scan, const char* text, int32_t vertexCount, int32_t uvCount, int32_t* vertices,
                        int32_t* uvs, CornerFindings* findings)
{
    int count = 0;
    int32_t uvsReset = 0;
    const char* at = text;
    *findings = { text, 0, 0, true, false };
    for (;;)
    {
        while (*at == ' ')
            ++at;
        if (isTextEnd(*at))
            break;
        if (count == cornerLimit)
        {
            *findings = { text, 0, 0, false, true };
            return 0;
        }
        int32_t vertex, uv;
        at = scan(at, &vertex, &uv);
        if (!at)
            return 0;
        int64_t resolved = vertex < 0 ? int64_t{ vertex } + vertexCount + 1 : vertex;
        if (resolved < 1 || resolved > vertexCount)
            return 0;
        vertices[count] = static_cast<int32_t>(resolved);
        uvs[count] = resolveUv(uv, uvCount);
        uvsReset += uv > uvCount || uv < -uvCount;
        ++count;
    }
    *findings = { at, count, uvsReset, false, false };
    if (count >= 3 && !anyRepeated(vertices, count))
        return count;
    return dropRepeated(vertices, count);
}

int ParseFaceCorners(const char* text, int32_t vertexCount, int32_t uvCount, int32_t (&vertices)[cornerLimit],
                     int32_t (&uvs)[cornerLimit])
{
    CornerFindings findings;
    return parseCorners(scanCorner, text, vertexCount, uvCount, vertices, uvs, &findings);
}

int parseFaceCornersPadded(const char* text, int32_t vertexCount, int32_t uvCount, int32_t (&vertices)[cornerLimit],
                           int32_t (&uvs)[cornerLimit], CornerFindings* findings)
{
    return parseCorners(scanCornerPadded, text, vertexCount, uvCount, vertices, uvs, findings);
}

void noteCorners(Report* report, int64_t byte, const CornerFindings& findings, int count, int least)
{
    if (!report)
        return;
    if (findings.tooMany)
        note(report, facesTooManyCorners, byte);
    else if (findings.bad)
        note(report, facesBadCorners, byte);
    else if (findings.given < least)
        note(report, facesTooFewCorners, byte);
    else if (count < least)
        note(report, facesRepeatedCorners, byte);
    else
    {
        note(report, cornersRepeated, byte, count < findings.given);
        note(report, uvIndicesReset, byte, findings.uvsReset);
    }
}

static uint32_t vertexOf(const CornerList& corners, int32_t k)
{
    return static_cast<uint32_t>(corners.firstVertex + corners.vertices[k]);
}

static uint32_t uvOf(const CornerList& corners, int32_t k)
{
    return corners.uvs ? static_cast<uint32_t>(corners.firstUv + corners.uvs[k]) : 0;
}

// A record with the count corners from k on.
static void storeRun(Mesh* mesh, int32_t face, const CornerList& corners, int32_t k, int32_t count)
{
    Corners& vertices = mesh->faces[face];
    Corners& uvs = mesh->faceUvs[face];
    for (int32_t i = 0; i < 4; ++i)
    {
        bool used = i < count;
        vertices[static_cast<size_t>(i)] = used ? vertexOf(corners, k + i) : noCorner;
        uvs[static_cast<size_t>(i)] = used ? uvOf(corners, k + i) : 0;
    }
}

int32_t storePolygon(Mesh* mesh, int32_t face, const CornerList& corners, uint32_t attributes)
{
    int32_t records = polygonRecords(corners.count);
    if (records == 1)
    {
        storeRun(mesh, face, corners, 0, corners.count);
        mesh->faceAttributes[face] = attributes;
        return 1;
    }
    for (int32_t r = 0; r < records; ++r)
    {
        mesh->faces[face + r] = { vertexOf(corners, 0), vertexOf(corners, r + 1), vertexOf(corners, r + 2), noCorner };
        mesh->faceUvs[face + r] = { uvOf(corners, 0), uvOf(corners, r + 1), uvOf(corners, r + 2), 0 };
        mesh->faceAttributes[face + r] = attributes;
    }
    return records;
}

int32_t storePolyline(Mesh* mesh, int32_t face, const CornerList& corners, uint32_t attributes)
{
    int32_t records = polylineRecords(corners.count);
    for (int32_t r = 0; r < records; ++r)
    {
        int32_t left = corners.count - 3 * r;
        storeRun(mesh, face + r, corners, 3 * r, left < 4 ? left : 4);
        mesh->faceAttributes[face + r] = attributes | faceLine;
    }
    mesh->faceAttributes[face] |= static_cast<uint32_t>(corners.count) << faceLinePointsShift;
    return records;
}
