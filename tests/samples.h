// tests/samples.h - small files that between them use all that each format has; the bytes of each
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
Samples rkfSamples(); // and the built-in model's format
