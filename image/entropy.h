// image/entropy.h - Huffman tables, the bit readers and the MCU
//
// Source: ITU-T T.81, annex C (codes from their lengths) and annex F.2 (decoding)
#pragma once
#include "image/decoder.h"

// Makes a stored table ready for decoding. Returns 0 when there is no table of that number (0-3), when its codes do not
// fit their lengths, or when a DC symbol is above 15.
int buildHuffmanTable(int isDc, int32_t number, HuffmanTable* table);

// Sets up restarts, predictions and the bit reader at the start of the scan. Returns 0 without memory.
int startEntropy();

// Decodes the next MCU into jpeg.blocks and jpeg.lastIndex, after a restart where one is due. Returns 0 when the source
// ends where more bytes are wanted, or without memory.
int decodeMcu();
