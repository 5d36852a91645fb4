#include "boundary/random.h"

#include "boundary/core_api.h"

namespace pral {

namespace {

constinit RandomStream stream;

}  // namespace

RandomStream& random_stream() { return stream; }

}  // namespace pral

void PralSetRandomSeed(unsigned int seed) { pral::random_stream().seed(seed); }
