#include "classic/stream.h"

#include "classic/core_api.h"

namespace pral {

namespace {

constinit RandomStream stream;

}  // namespace

RandomStream& random_stream() { return stream; }

}  // namespace pral

void PralSetRandomSeed(unsigned int seed) { pral::random_stream().seed(seed); }
