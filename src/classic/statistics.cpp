// The exported statistics: moments, ranks, rank correlations, draws from data, comparisons, interpolation. The generator of
// PralSample_Core lives here.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "classic/call.h"
#include "classic/core_api.h"
#include "classic/runtime_random.h"
#include "classic/stream.h"
#include "classic/vectors.h"
#include "matrix/matrix.h"
#include "statistics/comparison.h"
#include "statistics/moments.h"
#include "statistics/ranks.h"
#include "statistics/resampling.h"

using pral::fail;
using pral::given;
using pral::guarded;
using pral::succeeded;
using pral::with_locked_array;
using pral::classic::RuntimeRandom;
using pral::statistics::Data;
using pral::statistics::Moments;

namespace {

Data data_of(const double* x, int n) { return {x, static_cast<std::size_t>(n > 0 ? n : 0)}; }

/// The sample moments: fewer values than the minimum fail without a message and leave the output as it is; so does
/// a count that no array can have, as a negative one read as unsigned.
bool sample_moment(double* out, const double* x, std::uint64_t n, std::uint64_t minimum,
                   double (*statistic)(Data)) {
    return guarded([&] {
        if (n < minimum || n > PTRDIFF_MAX / sizeof(double)) return false;
        if (!given({{"out", out}}) || !given({{"x", x}}, n > 0 ? 1 : 0)) return false;
        *out = statistic({x, static_cast<std::size_t>(n)});
        return true;
    });
}

bool write_moments(const Moments& moments, double* mean, double* variance, double* skewness,
                   double* kurtosis) {
    *mean = moments.mean;
    *variance = moments.variance;
    *skewness = moments.skewness;
    *kurtosis = moments.kurtosis;
    return true;
}

/// The rank correlation matrix of a range of data, or of a bootstrap replicate of its observations.
bool correlation_matrix(double* out, const double* data, int rows, int cols, int variables_in_rows,
                        bool replicate) {
    if (rows < 2 || cols < 2) return fail("Error: DataRange values must be in a two-dimentional array");
    if (!given({{"out", out}, {"data", data}})) return false;
    const std::size_t height = rows, width = cols;
    const bool across = variables_in_rows != 0;
    const std::size_t variables = across ? height : width, observations = across ? width : height;
    std::vector<double> table(height * width);  // a row per observation
    for (std::size_t i = 0; i < observations; ++i) {
        const std::size_t from =
            replicate ? pral::statistics::draw_index(observations, pral::random_stream()) : i;
        for (std::size_t j = 0; j < variables; ++j) {
            table[i * variables + j] = across ? data[j * width + from] : data[from * width + j];
        }
    }
    const auto result = pral::statistics::spearman_matrix(table, static_cast<int>(variables));
    std::copy(result.begin(), result.end(), out);
    return true;
}

/// The same into an automation array, which must have room for it.
bool correlation_matrix(SAFEARRAY** out, const double* data, int rows, int cols, int variables_in_rows,
                        bool replicate) {
    return with_locked_array(out, [&](double* elements, int size) {
        const int variables = variables_in_rows != 0 ? rows : cols;
        if (rows >= 2 && cols >= 2 && pral::matrix::element_count(variables) > static_cast<std::size_t>(size))
            return fail(pral::kOutputArrayMessage);
        return guarded(
            [&] { return correlation_matrix(elements, data, rows, cols, variables_in_rows, replicate); });
    });
}

bool rank(double* out, int n, const double* x, int descending) {
    return guarded([&] {
        if (!given({{"out", out}, {"x", x}}, n)) return false;
        pral::statistics::ranks(data_of(x, n), descending != 0, out);
        return true;
    });
}

/// Draws with replacement by the process's generator of 15 bits. Its number is scaled and rounded to an index, so that
/// the first and the last element come half as often as the others.
bool sample(double* out, int n, const double* data, int m) {
    static RuntimeRandom random;
    return guarded([&] {
        if (!given({{"out", out}, {"data", data}}, n)) return false;
        if (n > 0 && m < 1) return fail("Error: the {data} array is empty");
        const double last = static_cast<double>(m) - 1;
        for (int i = 0; i < n; ++i) {
            const double place = std::floor(random.next() / double{RuntimeRandom::kMaximum} * last + 0.5);
            out[i] = data[static_cast<std::size_t>(place)];
        }
        return true;
    });
}

bool shuffle(double* out, int n) {
    return guarded([&] {
        if (!given({{"out", out}}, n)) return false;
        pral::statistics::shuffle(n, out, pral::random_stream());
        return true;
    });
}

/// Puts the points in ascending order of xs, in the caller's arrays.
void sort_points(double* xs, double* ys, int n) {
    const Data x = data_of(xs, n), y = data_of(ys, n);
    const std::vector<double> given_x(x.begin(), x.end()), given_y(y.begin(), y.end());
    for (const auto& entry : pral::statistics::sorted(given_x)) {
        *xs++ = given_x[entry.index];
        *ys++ = given_y[entry.index];
    }
}

constexpr pral::Message kNoElements = "Error: length of the array must be >0";

}  // namespace

bool PralMean_Core(double* out, const double* x, uint64_t n) {
    return sample_moment(out, x, n, 1, pral::statistics::mean);
}

bool PralVariance_Core(double* out, const double* x, uint64_t n) {
    return sample_moment(out, x, n, 2, pral::statistics::variance);
}

bool PralStDev_Core(double* out, const double* x, uint64_t n) {
    return sample_moment(out, x, n, 0, pral::statistics::standard_deviation);
}

bool PralSkewness_Core(double* out, const double* x, uint64_t n) {
    return sample_moment(out, x, n, 3, pral::statistics::skewness);
}

bool PralKurtosis_Core(double* out, const double* x, uint64_t n) {
    return sample_moment(out, x, n, 3, pral::statistics::kurtosis);
}

bool PralMomentsFromValues(const double* x, int n, double* mean, double* variance, double* skewness,
                           double* kurtosis) {
    return guarded([&] {
        if (!given({{"x", x}}, n) ||
            !given({{"mean", mean}, {"variance", variance}, {"skewness", skewness}, {"kurtosis", kurtosis}}))
            return false;
        const Moments moments = pral::statistics::population_moments(data_of(x, n));
        return write_moments(moments, mean, variance, skewness, kurtosis);
    });
}

bool PralRawMoments_Core(const double* x, const double* p, int n, double* mean, double* variance,
                         double* skewness, double* kurtosis) {
    return guarded([&] {
        if (!given({{"x", x}, {"p", p}}, n) ||
            !given({{"mean", mean}, {"variance", variance}, {"skewness", skewness}, {"kurtosis", kurtosis}}))
            return false;
        const Moments moments = pral::statistics::table_moments(data_of(x, n), data_of(p, n));
        return write_moments(moments, mean, variance, skewness, kurtosis);
    });
}

PRAL_EXPORT_VECTOR(Rank, (const double* x, int descending), (x, descending), rank(out, size, x, descending));

bool PralSpearman_Core(double* out, const double* x, const double* y, int n) {
    return guarded(out, 1, [&](int) {
        if (n < 1) return fail(kNoElements);
        if (!given({{"x", x}, {"y", y}})) return false;
        *out = pral::statistics::spearman(data_of(x, n), data_of(y, n));
        return true;
    });
}

bool PralSpearmanU_Core(double* out, const double* x, const double* y, int n) {
    return guarded(out, 1, [&](int) {
        if (n < 1) return fail(kNoElements);
        if (!given({{"x", x}, {"y", y}})) return false;
        std::vector<double> drawn_x(data_of(x, n).size()), drawn_y(drawn_x.size());
        for (std::size_t i = 0; i < drawn_x.size(); ++i) {
            const std::size_t from = pral::statistics::draw_index(drawn_x.size(), pral::random_stream());
            drawn_x[i] = x[from];
            drawn_y[i] = y[from];
        }
        *out = pral::statistics::spearman(drawn_x, drawn_y);
        return true;
    });
}

bool PralCorrMatrix_Core(double* out, const double* data, int rows, int cols, int variablesInRows) {
    return guarded([&] { return correlation_matrix(out, data, rows, cols, variablesInRows, false); });
}

bool PralCorrMatrixVB_Core(SAFEARRAY** out, const double* data, int rows, int cols, int variablesInRows) {
    return correlation_matrix(out, data, rows, cols, variablesInRows, false);
}

bool PralCorrMatrixU_Core(double* out, const double* data, int rows, int cols, int variablesInRows) {
    return guarded([&] { return correlation_matrix(out, data, rows, cols, variablesInRows, true); });
}

bool PralCorrMatrixUVB_Core(SAFEARRAY** out, const double* data, int rows, int cols, int variablesInRows) {
    return correlation_matrix(out, data, rows, cols, variablesInRows, true);
}

bool PralKendallsTau_Core(double* out, const double* x, const double* y, int n) {
    return guarded(out, 1, [&](int) {
        if (!given({{"x", x}, {"y", y}}, n)) return false;
        *out = pral::statistics::kendalls_tau(data_of(x, n), data_of(y, n));
        return true;
    });
}

PRAL_EXPORT_VECTOR(Sample, (const double* data, int m), (data, m), sample(out, size, data, m));

PRAL_EXPORT_VECTOR(Shuffle, (), (), shuffle(out, size));

bool PralThielU_Core(double* out, const double* x, int nx, const double* y, int ny) {
    return guarded(out, 1, [&](int) {
        if (nx != ny) return fail("Error: the number of elements in {x} and {y} must be equal");
        if (!given({{"x", x}, {"y", y}}, nx)) return false;
        *out = pral::statistics::theil_u(data_of(x, nx), data_of(y, ny));
        return true;
    });
}

bool PralDominance_Core(double* out, const double* x, int nx, const double* y, int ny) {
    return guarded(out, 1, [&](int) {
        if (nx < 1 || ny < 1) return fail(kNoElements);
        if (!given({{"x", x}, {"y", y}})) return false;
        const auto finite = [](double value) { return std::isfinite(value); };
        if (!std::all_of(x, x + nx, finite) || !std::all_of(y, y + ny, finite))
            return fail("Error: the elements of {x} and {y} must be finite");
        *out = pral::statistics::dominance(data_of(x, nx), data_of(y, ny));
        return true;
    });
}

bool PralInterpolate_Core(double* out, double x, double* xs, double* ys, int n, int sortFirst) {
    return guarded(out, 1, [&](int) {
        if (!given({{"xs", xs}, {"ys", ys}}, n)) return false;
        if (sortFirst != 0 && pral::statistics::covers(data_of(xs, n), x)) sort_points(xs, ys, n);
        return succeeded(pral::statistics::interpolate(x, data_of(xs, n), data_of(ys, n), *out));
    });
}
