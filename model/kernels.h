// model/kernels.h - the version of each kernel that kernelLevel() (platform/processor.h) chooses
//
// All versions of a kernel give the same bits. Each processor has its own file that chooses, such as
// model/x86/kernels.cpp.
#pragma once
#include "model/mesh.h"

struct Box
{
    float min[3];
    float max[3];
};

struct ModelKernels
{
    // Computes the planes of face slots from..to - 1 and adds their normals to those of their corners. The fast
    // versions need spare words of 0.
    void (*addFaceNormals)(Mesh* mesh, int32_t from, int32_t to);

    // normaliseEstimated for the normals of all vertices.
    void (*normaliseVertices)(Mesh* mesh);

    // The box of at least one vertex.
    Box (*boxOfVertices)(const MeshVertex* vertices, int32_t count);
};

ModelKernels modelKernels();

void addFaceNormalsPlain(Mesh* mesh, int32_t from, int32_t to);
void normaliseVerticesPlain(Mesh* mesh);
Box boxOfVerticesPlain(const MeshVertex* vertices, int32_t count);

// Multiplies a vector by the estimated reciprocal root of its squared length. A vector of length 0 stays as it is. So
// does one whose squared length is so small that the estimate would be infinite.
void normaliseEstimated(float* v);

// 1 / sqrt(squared) to about 12 bits, for squared >= FLT_MIN. On x86 it is the processor's own estimate (rsqrtss),
// whose bits differ from one maker to another. On every other processor it is fixedReciprocalRoot.
float reciprocalRootEstimate(float squared);
