// import/common/corners.h - faces and lines as lists of corners, and the face records made of them
//
// A mesh's records have up to four corners; readers meet polygons and polylines of any length. Polygons of five or more
// corners become a fan of triangles from their first corner; a polyline becomes a chain of records that share an end.
#pragma once
#include "model/mesh.h"

constexpr int32_t statementCorners = 32; // most corners of one face or line statement

// Reads the corners of a face or line statement: "7", "7/3", "7/3/5" or "7//5", separated by blanks only. Each is read
// as two whole numbers with '/' for a blank and 0 for a missing second one, so that 7//5 gives vertex 7 and texture
// coordinate 5, on purpose. Negative indices count back from the last one read. A texture index that names none
// becomes 1. A vertex met again is dropped; the texture indices then stay where they were, so that later corners take
// those of their former neighbours, on purpose.
//
// text ends with 0 or a line end. The indices are 1-based; vertices[] is packed, uvs[] is by the corner's place.
// Returns the number of corners kept; 0 rejects the statement: an index out of range, no number, or too many corners.
int ParseFaceCorners(const char* text, int32_t vertexCount, int32_t uvCount, int32_t (&vertices)[statementCorners],
                     int32_t (&uvs)[statementCorners]);

// The same for a text with numberPaddingRoom readable bytes after its end, faster. *end receives where reading stopped:
// the text's end when the statement was not rejected.
int parseFaceCornersPadded(const char* text, int32_t vertexCount, int32_t uvCount,
                           int32_t (&vertices)[statementCorners], int32_t (&uvs)[statementCorners], const char** end);

// The corners of one polygon or polyline. Corner k is vertex firstVertex + vertices[k] of the mesh, and likewise for
// texture coordinates: a list of 1-based indices has a first of -1. uvs null: every texture index is 0.
struct CornerList
{
    const int32_t* vertices;
    const int32_t* uvs;
    int32_t count;
    int32_t firstVertex;
    int32_t firstUv;
};

// How many face records a polygon of 3 or more corners, a polyline of 2 or more points takes.
inline int32_t polygonRecords(int32_t corners)
{
    return corners <= 4 ? 1 : corners - 2;
}
inline int32_t polylineRecords(int32_t points)
{
    return points <= 4 ? 1 : 1 + (points - 4 + 2) / 3;
}

// Write these records from slot face on; the room must be there. attributes goes to every record; a polyline's records
// also get faceLine, and the first its number of points. Return the number of records.
int32_t storePolygon(Mesh* mesh, int32_t face, const CornerList& corners, uint32_t attributes);
int32_t storePolyline(Mesh* mesh, int32_t face, const CornerList& corners, uint32_t attributes);
