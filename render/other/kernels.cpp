// render/other/kernels.cpp - the plain kernels, for processors without fast ones
#include "render/kernels.h"

RasterKernels rasterKernels()
{
    return { setUpTriangle, fillOpaque, fillTransparent, fillTextured };
}

VertexKernels vertexKernels()
{
    return { projectVertices, projectVerticesToLight, classifyFaceRange };
}

FaceBlockSorter faceSorter()
{
    return nullptr;
}

CellExpander cellExpander()
{
    return expandCells;
}

ShadowFiller shadowFiller()
{
    return fillShadowRows;
}
