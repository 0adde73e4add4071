// resources/make/jpeg_file.cpp - the coefficients of a texture for libjpeg to code
//
// libjpeg gets coefficients instead of pixels for two reasons. It would repeat the edge of a texture that tiles, and
// its own transforms round differently in different versions; this way every machine makes the same textures.
#include "jpeg_file.h"

#include "sweep.h"

#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <algorithm>
#include <array>

#include <jpeglib.h>

using Block = std::array<double, DCTSIZE2>; // row by row

static const uint8_t* pixelAt(const TexturePixels& texture, int x, int y)
{
    x = texture.tiles ? x % texture.width : std::min(x, texture.width - 1);
    y = texture.tiles ? y % texture.height : std::min(y, texture.height - 1);
    return &texture.rgb[(static_cast<size_t>(y) * static_cast<size_t>(texture.width) + static_cast<size_t>(x)) * 3];
}

// Y - 128, Cb - 128 or Cr - 128 of a pixel, as JFIF 1.02 defines them.
static double componentOf(const uint8_t* rgb, int component)
{
    double r = rgb[0], g = rgb[1], b = rgb[2];
    switch (component)
    {
    case 0: return 0.299 * r + 0.587 * g + 0.114 * b - 128;
    case 1: return -0.168735892 * r - 0.331264108 * g + 0.5 * b;
    default: return 0.5 * r - 0.418687589 * g - 0.081312411 * b;
    }
}

// The samples of a block, each the mean of side x side pixels; left and top are in samples.
static Block blockSamples(const TexturePixels& texture, int component, int side, int left, int top)
{
    Block samples = {};
    for (int y = 0; y < DCTSIZE * side; ++y)
        for (int x = 0; x < DCTSIZE * side; ++x)
            samples[static_cast<size_t>(y / side * DCTSIZE + x / side)] +=
                componentOf(pixelAt(texture, left * side + x, top * side + y), component) / (side * side);
    return samples;
}

using CosineTable = std::array<std::array<double, DCTSIZE>, DCTSIZE>; // frequency, place

static CosineTable makeCosines()
{
    CosineTable cosines;
    for (size_t frequency = 0; frequency < DCTSIZE; ++frequency)
        for (size_t place = 0; place < DCTSIZE; ++place)
            cosines[frequency][place] =
                (frequency ? 0.5 : sqrt(0.125)) * cosineOfTurn(static_cast<double>((2 * place + 1) * frequency) / 32.0);
    return cosines;
}

// The two-dimensional cosine transform.
static Block transformed(const Block& samples)
{
    static const CosineTable cosines = makeCosines();
    Block rows = {}, result = {};
    for (size_t y = 0; y < DCTSIZE; ++y)
        for (size_t u = 0; u < DCTSIZE; ++u)
            for (size_t x = 0; x < DCTSIZE; ++x)
                rows[y * DCTSIZE + u] += samples[y * DCTSIZE + x] * cosines[u][x];
    for (size_t v = 0; v < DCTSIZE; ++v)
        for (size_t u = 0; u < DCTSIZE; ++u)
            for (size_t y = 0; y < DCTSIZE; ++y)
                result[v * DCTSIZE + u] += rows[y * DCTSIZE + u] * cosines[v][y];
    return result;
}

static void fillComponent(jpeg_compress_struct* encoder, const TexturePixels& texture, int component,
                          jvirt_barray_ptr blocks)
{
    const jpeg_component_info& info = encoder->comp_info[component];
    const JQUANT_TBL& quant = *encoder->quant_tbl_ptrs[info.quant_tbl_no];
    int side = encoder->max_h_samp_factor / info.h_samp_factor;
    for (JDIMENSION row = 0; row < info.height_in_blocks; ++row)
    {
        JBLOCKROW out =
            encoder->mem->access_virt_barray(reinterpret_cast<j_common_ptr>(encoder), blocks, row, 1, TRUE)[0];
        for (JDIMENSION column = 0; column < info.width_in_blocks; ++column)
        {
            Block block = transformed(blockSamples(texture, component, side, static_cast<int>(column) * DCTSIZE,
                                                   static_cast<int>(row) * DCTSIZE));
            for (size_t i = 0; i < DCTSIZE2; ++i)
                out[column][i] = static_cast<JCOEF>(floor(block[i] / quant.quantval[i] + 0.5));
        }
    }
}

// Memory for the blocks of a component, whole MCUs of them.
static jvirt_barray_ptr requestBlocks(jpeg_compress_struct* encoder, const jpeg_component_info& info)
{
    constexpr JDIMENSION mcuSide = 16;
    JDIMENSION across = (encoder->image_width + mcuSide - 1) / mcuSide * static_cast<JDIMENSION>(info.h_samp_factor);
    JDIMENSION down = (encoder->image_height + mcuSide - 1) / mcuSide * static_cast<JDIMENSION>(info.v_samp_factor);
    return encoder->mem->request_virt_barray(reinterpret_cast<j_common_ptr>(encoder), JPOOL_IMAGE, TRUE, across, down,
                                             static_cast<JDIMENSION>(info.v_samp_factor));
}

std::string jpegFile(const TexturePixels& texture, int quality)
{
    jpeg_compress_struct encoder = {};
    jpeg_error_mgr errors = {};
    encoder.err = jpeg_std_error(&errors); // shows an error and ends the generator
    jpeg_create_compress(&encoder);
    unsigned char* bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&encoder, &bytes, &size);
    encoder.image_width = static_cast<JDIMENSION>(texture.width);
    encoder.image_height = static_cast<JDIMENSION>(texture.height);
    encoder.input_components = 3;
    encoder.in_color_space = JCS_YCbCr;
    jpeg_set_defaults(&encoder); // YCbCr with halved chroma
    jpeg_set_quality(&encoder, quality, TRUE);
    encoder.optimize_coding = TRUE;

    std::array<jvirt_barray_ptr, 3> blocks;
    for (size_t i = 0; i < blocks.size(); ++i)
        blocks[i] = requestBlocks(&encoder, encoder.comp_info[i]);
    jpeg_write_coefficients(&encoder, blocks.data());
    for (size_t i = 0; i < blocks.size(); ++i)
        fillComponent(&encoder, texture, static_cast<int>(i), blocks[i]);
    jpeg_finish_compress(&encoder); // codes the blocks
    jpeg_destroy_compress(&encoder);
    std::string file(reinterpret_cast<const char*>(bytes), size);
    free(bytes);
    return file;
}
