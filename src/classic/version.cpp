#include "classic/core_api.h"

#ifndef PRAL_VERSION
#error "PRAL_VERSION must be defined by the build"
#endif

const char* PralVersion() { return PRAL_VERSION; }
