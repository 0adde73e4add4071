// render/kernels.cpp - choosing kernels
#include "render/kernels.h"

#include "model/settings.h"
#include "platform/processor.h"

static bool useAvx2()
{
    static const bool present = processorHasAvx2() != 0;
    return displayState.useSse2 && present;
}

static bool useAvx512()
{
    static const bool present = processorHasAvx512() != 0;
    return displayState.useSse2 && present;
}

RasterKernels rasterKernels()
{
    if (useAvx512())
        return { setUpTriangleSse2, fillOpaqueAvx512, fillTransparentAvx512, fillTexturedAvx512 };
    if (useAvx2())
        return { setUpTriangleSse2, fillOpaqueAvx2, fillTransparentAvx2, fillTexturedAvx2 };
    return { displayState.useSse2 ? setUpTriangleSse2 : setUpTriangle, fillOpaque, fillTransparent, fillTextured };
}

VertexKernels vertexKernels()
{
    if (useAvx2())
        return { projectVerticesAvx2, projectToLightAvx2, classifyFaceRangeAvx2 };
    if (displayState.useSse2)
        return { projectVerticesSse2, projectToLightSse2, classifyFaceRange };
    return { projectVertices, projectToLight, classifyFaceRange };
}

FaceBlockSorter faceSorter()
{
    return useAvx2() ? sortFaceBlockAvx2 : nullptr;
}

CellExpander cellExpander()
{
    return useAvx2() ? expandCellsAvx2 : expandCells;
}

ShadowFiller shadowFiller()
{
    return useAvx2() ? fillShadowRowsAvx2 : fillShadowRows;
}
