// cli/texture_copies.h - convert --copy-textures: the pictures of a model beside the file that is written
//
// Each picture that was found gets the name that the written file has for it, from the folder of that file on. The
// copies are pending files until the model is written, so that a failure leaves none of them.
#pragma once
#include "export/output_file.h"
#include "cli/facts/textures.h"

#include <string>
#include <vector>

struct TextureCopy
{
    std::string from, to;
};

// The path of a picture's name in the folder of an output, with a '/' at its end; empty when the name leads out of it.
std::string placeOfPicture(const std::string& folder, std::string name);

// Whether both are files, and one file or two with the same bytes.
bool samePicture(const std::string& a, const std::string& b);

// The copies of a model's pictures for a file to write; each target once, and none for a picture that lies at its
// target or is there already with the same bytes. Returns what stands in the way, empty when nothing does: a name that
// leads out of the output's folder, or one that means another file, too.
std::string planTextureCopies(const Mesh* mesh, const ModelTextures& textures, const std::string& output,
                              const std::vector<std::string>& outputFiles, std::vector<TextureCopy>* copies);

// Reads all pictures into pending files, and makes the folders that their names have. Returns whether all are whole;
// otherwise the reason is on standard error, and there is nothing to place.
bool prepareTextureCopies(const std::vector<TextureCopy>& copies, std::vector<OutputFile>* files);

// Puts the copies in their places, or drops them.
bool placeTextureCopies(std::vector<OutputFile>* files, bool modelWritten);
