// The one random stream of the process, from which all classic calls draw.
#pragma once

#include "base/random_stream.h"

namespace pral {

RandomStream& random_stream();

}  // namespace pral
