// render/other/kernels.cpp - choosing kernels on processors that have no folder of their own
#include "render/other/kernels.h"

#include "platform/processor.h"

RasterKernels rasterKernels()
{
    auto* opaque = kernelLevel() >= kernelsLanes ? fillOpaqueLanes : fillOpaque;
    return { setUpTriangle, opaque, fillTransparent, fillTextured };
}

VertexKernels vertexKernels()
{
    auto* project = kernelLevel() >= kernelsLanes ? projectVerticesLanes : projectVertices;
    return { project, projectVerticesToLight, classifyFaceRange };
}

FaceBlockSorter faceSorter()
{
    return kernelLevel() >= kernelsLanes ? sortFaceBlockLanes : nullptr;
}

CellExpander cellExpander()
{
    return expandCells;
}

ShadowFiller shadowFiller()
{
    return fillShadowRows;
}

ShadowBlockFiller shadowBlockFiller()
{
    return nullptr;
}
