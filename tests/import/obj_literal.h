// tests/import/obj_literal.h - the OBJ reader a second time, slow and word for word, to hold the fast one against
#pragma once
#include <string>
#include <vector>

struct LiteralObj
{
    bool ok;
    std::string geometry; // as geometryText writes it
    std::string library;
    std::vector<float> fractions; // of the progress bar
};

LiteralObj readLiterally(const std::string& bytes);
