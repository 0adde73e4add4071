// import/common/corners.h - corner lists of faces and lines, and the face records made from them
//
// A mesh's records have up to four corners; readers meet polygons and polylines of any length. Polygons of five or more
// corners become a fan of triangles from their first corner; a polyline becomes a chain of records that share an end.
#pragma once
#include "model/mesh.h"
#include "model/report.h"

constexpr int32_t cornerLimit = 32; // of one face or line statement

// Reads the corners of a face or line statement: "7", "7/3", "7/3/5" or "7//5", separated by blanks only. Each corner
// is read as two whole numbers. '/' counts as a blank, and a missing second number is 0. So 7//5 gives vertex 7 and
// texture coordinate 5, which costs no more than skipping an index that nobody uses. Negative indices count back from
// the last vertex or texture coordinate read. A texture index without a texture coordinate becomes 1. A repeated vertex
// is dropped, but its texture index is not: such a face is damaged, and its later corners take the texture indices of
// their former neighbours.
//
// text ends with 0 or a line end. The indices are 1-based; vertices[] is packed, uvs[] is by the position in the text.
// Returns the number of corners kept. 0 rejects the statement: an index out of range, a missing number, or too many
// corners.
int ParseFaceCorners(const char* text, int32_t vertexCount, int32_t uvCount, int32_t (&vertices)[cornerLimit],
                     int32_t (&uvs)[cornerLimit]);

// What was found besides the corners.
struct CornerFindings
{
    const char* end;  // where reading stopped; when the statement was not rejected, the end of the text
    int32_t given;    // corners in a text that was not rejected, repeated ones included
    int32_t uvsReset; // texture indices that became 1: past the last texture coordinate or before the first
    bool bad;         // rejected for an index out of range or a missing number
    bool tooMany;     // rejected for too many corners
};

// Does the same faster, for a text with numberPaddingRoom readable bytes after its end.
int parseFaceCornersPadded(const char* text, int32_t vertexCount, int32_t uvCount, int32_t (&vertices)[cornerLimit],
                           int32_t (&uvs)[cornerLimit], CornerFindings* findings);

// Counts what a face or polyline statement lost that needs `least` corners and kept `count` of them.
void noteCorners(Report* report, int64_t byte, const CornerFindings& findings, int count, int least);

// The corners of one polygon or polyline. Corner k is vertex firstVertex + vertices[k] of the mesh, and the same holds
// for texture coordinates; with 1-based indices firstVertex and firstUv are -1. Without uvs every texture index is 0.
struct CornerList
{
    const int32_t* vertices;
    const int32_t* uvs;
    int32_t count;
    int32_t firstVertex;
    int32_t firstUv;
};

// How many face records a polygon of at least 3 corners, or a polyline of at least 2 points, takes.
inline int32_t polygonRecords(int32_t corners)
{
    return corners <= 4 ? 1 : corners - 2;
}
inline int32_t polylineRecords(int32_t points)
{
    return points <= 4 ? 1 : 1 + (points - 4 + 2) / 3;
}

// Write these records from a face slot on and return how many they are; the arrays must have room. Every record gets
// the attributes. The records of a polyline also get faceLine, and the first one its number of points.
int32_t storePolygon(Mesh* mesh, int32_t face, const CornerList& corners, uint32_t attributes);
int32_t storePolyline(Mesh* mesh, int32_t face, const CornerList& corners, uint32_t attributes);
