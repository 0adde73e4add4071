// shell/natural_order.h - file names in the order in which people sort them
#pragma once
#include <string>

// Compares two names: runs of digits by their value, ASCII letters without regard to their case, everything else by its
// bytes. "scan2" comes before "Scan10". Names that are equal in all of this are ordered by their bytes. Returns a
// number below, equal to or above 0, like strcmp.
int compareNaturally(const std::string& a, const std::string& b);
