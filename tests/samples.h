// tests/samples.h - small files that together use everything that each format has
#pragma once
#include <string>
#include <vector>

using Samples = std::vector<std::string>;

Samples objSamples();
Samples mtlSamples();
Samples offSamples();
Samples dxfSamples();
Samples poserSamples();
Samples plySamples();
Samples threeDsSamples();
Samples stlSamples();
Samples rkfSamples(); // and the built-in model's format
