// The exported matrix functions. Nothing is written to the output before the last check has passed.
#include <cstddef>

#include "classic/call.h"
#include "classic/core_api.h"
#include "matrix/correlation_matrix.h"

using pral::given;
using pral::guarded;
using pral::succeeded;

namespace {

constexpr pral::Message kInputNotSquare = "Error: Input Matrix must be square";

}  // namespace

bool PralCholesky_Core(double* out, const double* a, int rows, int cols) {
    return guarded([&] {
        if (rows != cols) return pral::fail("Error: Matrix a must be square");
        if (cols < 1) return pral::fail("Error: Matrix cannot be empty");
        return given({{"out", out}, {"a", a}}) && succeeded(pral::matrix::cholesky(a, rows, out));
    });
}

bool PralEigenValues_Core(double* out, const double* a, int rows, int cols) {
    return guarded([&] {
        if (rows != cols) return pral::fail(kInputNotSquare);
        if (!given({{"out", out}, {"a", a}}, rows)) return false;
        return succeeded(pral::matrix::eigen_values(a, rows, out));
    });
}

bool PralEigenVectors_Core(double* out, const double* a, int rows, int cols) {
    return guarded([&] {
        if (rows != cols) return pral::fail(kInputNotSquare);
        if (!given({{"out", out}, {"a", a}}, rows)) return false;
        return succeeded(pral::matrix::eigen_vectors(a, rows, out));
    });
}

bool PralValidCorrmat_Core(double* out, double* a, int rows, int cols) {
    return guarded([&] {
        if (rows != cols) return pral::fail(kInputNotSquare);
        if (!given({{"out", out}, {"a", a}}, rows)) return false;
        return succeeded(pral::matrix::valid_corrmat(a, rows, out));
    });
}

bool PralCovToCorr_Core(double* out, int, const double* cov, int n) {
    return guarded([&] {
        if (!given({{"out", out}, {"cov", cov}}, n)) return false;
        return succeeded(pral::matrix::cov_to_corr(cov, n, out));
    });
}

bool PralCorrToCov_Core(double* out, int, const double* corr, const double* sd, int n) {
    return guarded([&] {
        if (!given({{"out", out}, {"corr", corr}, {"sd", sd}}, n)) return false;
        return succeeded(pral::matrix::corr_to_cov(corr, sd, n, out));
    });
}

bool PralIdentity_Core(double* out, int rows, int cols) {
    return guarded([&] {
        if (rows != cols) return pral::fail("Error: Output matrix must be square");
        if (!given({{"out", out}}, rows)) return false;
        for (int i = 0; i < rows; ++i) {
            for (int j = 0; j < cols; ++j) *out++ = i == j ? 1 : 0;
        }
        return true;
    });
}
