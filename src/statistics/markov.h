// Discrete-time Markov chains: transition matrices of any number of steps, and populations moved by them.
#pragma once

#include "base/message.h"
#include "base/random_stream.h"

namespace pral::statistics {

/// The transition matrix of t >= 0 steps, DBL_MAX (or infinity) being the long-run limit, of the chain with the
/// matrix P, row-major: row i holds the probabilities of moving from state i. Returns the message of the
/// failing check, or null.
///
/// A P that is zero above the diagonal is completed in place by its lower triangle. P is returned as it is for
/// t = 1, with no look at the sums of its rows. Otherwise P^t comes from the eigen-decomposition where no
/// eigenvalue has a negative real part, complex pairs by their principal powers; for whole t by multiplication where
/// one is negative or complex. Where the eigenvectors do not span the space (equal probabilities of staying in
/// successive states), multiplication serves whole and infinite t.
Message markov_matrix(double* P, int rows, int cols, double t, double* out);

/// Moves `population[i]` individuals in each of the `states` states by t steps, each on its own: multinomial draws
/// from the rows of P^t. `out` gets the numbers per state. The numbers are whole, 2^53 in all at most.
Message markov_sample(const double* population, int states, double* P, int rows, int cols, double t,
                      double* out, RandomStream& stream);

}  // namespace pral::statistics
