// cli/version.cpp - which kbx this is
//
// The build changes with every commit, so it stands alone: nothing else has to be compiled again for it.
#include "cli/version.h"

const char versionNumber[] = KBX_VERSION;
const char versionLine[] = "kbx " KBX_VERSION " (" KBX_BUILD ")";
