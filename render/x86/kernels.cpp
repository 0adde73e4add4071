// render/x86/kernels.cpp - choosing kernels on x86
#include "render/x86/kernels.h"

#include "platform/processor.h"

RasterKernels rasterKernels()
{
    KernelLevel level = kernelLevel();
    if (level >= kernelsAvx512)
        return { setUpTriangleSse2, fillOpaqueAvx512, fillTransparentAvx512, fillTexturedAvx512 };
    if (level >= kernelsAvx2)
        return { setUpTriangleSse2, fillOpaqueAvx2, fillTransparentAvx2, fillTexturedAvx2 };
    return { level >= kernelsSse2 ? setUpTriangleSse2 : setUpTriangle, fillOpaque, fillTransparent, fillTextured };
}

VertexKernels vertexKernels()
{
    KernelLevel level = kernelLevel();
    if (level >= kernelsAvx2)
        return { projectVerticesAvx2, projectVerticesToLightAvx2, classifyFaceRangeAvx2 };
    if (level >= kernelsSse2)
        return { projectVerticesSse2, projectVerticesToLightSse2, classifyFaceRange };
    return { projectVertices, projectVerticesToLight, classifyFaceRange };
}

FaceBlockSorter faceSorter()
{
    return kernelLevel() >= kernelsAvx2 ? sortFaceBlockAvx2 : nullptr;
}

CellExpander cellExpander()
{
    return kernelLevel() >= kernelsAvx2 ? expandCellsAvx2 : expandCells;
}

ShadowFiller shadowFiller()
{
    return kernelLevel() >= kernelsAvx2 ? fillShadowRowsAvx2 : fillShadowRows;
}

ShadowBlockFiller shadowBlockFiller()
{
    return kernelLevel() >= kernelsAvx2 ? fillShadowBlockAvx2 : nullptr;
}
