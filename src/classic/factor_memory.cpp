#include "classic/factor_memory.h"

#include <cstddef>
#include <cstring>
#include <vector>

#include "base/turn.h"
#include "matrix/matrix.h"

namespace pral::classic {

namespace {

struct {
    std::vector<double> matrix;
    multivariate::CovarianceFactor factor;
} last;
constexpr int kMostRemembered = 128;  // rows
Turnstile memory;

}  // namespace

Message prepare_remembered(multivariate::CovarianceFactor& factor, double* cov, int n) {
    matrix::complete_upper_triangle(cov, n);
    const Turnstile::Turn turn(memory);
    if (!turn) return factor.prepare(cov, n);  // another thread is at it: done without the memory
    const std::size_t elements = matrix::element_count(n);
    if (elements > 0 && last.matrix.size() == elements &&
        std::memcmp(last.matrix.data(), cov, elements * sizeof *cov) == 0) {
        factor = last.factor;
        return nullptr;
    }
    if (const Message problem = factor.prepare(cov, n)) return problem;
    if (n <= kMostRemembered) {
        last.matrix.clear();  // should memory run out, nothing is remembered
        last.factor = factor;
        last.matrix.assign(cov, cov + elements);
    }
    return nullptr;
}

}  // namespace pral::classic
