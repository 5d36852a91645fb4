// Samples of the Dirichlet distribution.
#pragma once

#include "base/message.h"
#include "base/random_stream.h"
#include "multivariate/densities.h"

namespace pral::multivariate {

/// The objection to shapes so small that each of the gamma variables is 0.
extern const Message kNoProportions;  // one address, by which it is known

/// Independent gamma variables with these shapes, drawn in their order, divided by their sum. Returns the message of the
/// failing check, or null.
Message sample_dirichlet(Vector alpha, double* out, RandomStream& stream);

}  // namespace pral::multivariate
