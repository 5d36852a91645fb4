// The exported functions of Markov chains.
#include <cstdarg>
#include <cstddef>

#include "classic/call.h"
#include "classic/core_api.h"
#include "classic/stream.h"
#include "classic/vectors.h"
#include "matrix/matrix.h"
#include "statistics/markov.h"

using pral::given;
using pral::guarded;
using pral::with_locked_array;

namespace {

bool markov_matrix(double* out, double* P, int rows, int cols, double t) {
    return guarded([&] {
        if (!given({{"out", out}, {"P", P}}, rows)) return false;
        return pral::succeeded(pral::statistics::markov_matrix(P, rows, cols, t, out));
    });
}

bool markov_sample(double* out, int states, const double* population, double* P, int rows, int cols,
                   double t) {
    return guarded(out, states, [&](int size) {
        if (!given({{"population", population}}, size) || !given({{"P", P}}, rows)) return false;
        return pral::succeeded(
            pral::statistics::markov_sample(population, size, P, rows, cols, t, out, pral::random_stream()));
    });
}

}  // namespace

bool PralMarkovMatrix_Core(double* out, double* P, int rows, int cols, ...) {
    std::va_list arguments;
    va_start(arguments, cols);
    const double t = va_arg(arguments, double);
    va_end(arguments);
    return markov_matrix(out, P, rows, cols, t);
}

bool PralMarkovMatrixVB_Core(SAFEARRAY** out, double* P, int rows, int cols, ...) {
    std::va_list arguments;
    va_start(arguments, cols);
    const double t = va_arg(arguments, double);
    va_end(arguments);
    return with_locked_array(out, [&](double* data, int size) {
        if (rows == cols && pral::matrix::element_count(rows) > static_cast<std::size_t>(size))
            return pral::fail(pral::kOutputArrayMessage);
        return markov_matrix(data, P, rows, cols, t);
    });
}

PRAL_EXPORT_VECTOR(MarkovSample, (const double* population, double* P, int rows, int cols, double t),
                   (population, P, rows, cols, t), markov_sample(out, size, population, P, rows, cols, t));
