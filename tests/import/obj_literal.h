// tests/import/obj_literal.h - a second OBJ reader, slow and literal, to compare the fast one with
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
