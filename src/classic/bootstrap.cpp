// The exported bootstrap functions: each call resamples the data once and gives a statistic of the resample.
#include <cmath>
#include <cstddef>
#include <vector>

#include "classic/call.h"
#include "classic/core_api.h"
#include "classic/stream.h"
#include "classic/vectors.h"
#include "statistics/moments.h"
#include "statistics/resampling.h"

using pral::given;
using pral::guarded;
using pral::statistics::Data;

namespace {

constexpr pral::Message kNoData = "Error: the {data} array is empty";

std::vector<double> replicate(const double* data, int n) {
    return pral::statistics::resample({data, static_cast<std::size_t>(n > 0 ? n : 0)}, pral::random_stream());
}

/// With fewer values than the statistic's minimum the output stays as it is; that is no failure.
template <class Statistic>
bool bootstrap(double* out, const double* data, int n, int minimum, Statistic statistic) {
    return guarded([&] {
        if (!given({{"out", out}}) || !given({{"data", data}}, n)) return false;
        std::vector<double> drawn = replicate(data, n);
        if (n >= minimum) *out = statistic(drawn);
        return true;
    });
}

double coefficient_of_variation(Data x) {
    return pral::statistics::standard_deviation(x) / pral::statistics::mean(x);
}

bool paired(double* out, int count, const double* x, const double* y, int n) {
    return guarded(out, count, [&](int size) {
        if (size % 2 != 0) return pral::fail("Error: the output must have two elements for each pair");
        if (size > 0 && n < 1) return pral::fail(kNoData);
        if (!given({{"x", x}, {"y", y}}, size)) return false;
        for (int i = 0; i < size; i += 2) {
            const std::size_t from = pral::statistics::draw_index(n, pral::random_stream());
            out[i] = x[from];
            out[i + 1] = y[from];
        }
        return true;
    });
}

bool series(double* out, int count, const double* data, int n) {
    return guarded(out, count, [&](int size) {
        if (size > 0 && n < 1) return pral::fail(kNoData);
        if (!given({{"data", data}}, size)) return false;
        for (int i = 0; i < size; ++i) out[i] = data[pral::statistics::draw_index(n, pral::random_stream())];
        return true;
    });
}

}  // namespace

bool PralNBootMean_Core(double* out, const double* data, int n) {
    return bootstrap(out, data, n, 1, pral::statistics::mean);
}

bool PralNBootStdev_Core(double* out, const double* data, int n) {
    return bootstrap(out, data, n, 0, pral::statistics::standard_deviation);
}

bool PralNBootVar_Core(double* out, const double* data, int n) {
    return bootstrap(out, data, n, 2, pral::statistics::variance);
}

bool PralNBootSkew_Core(double* out, const double* data, int n) {
    return bootstrap(out, data, n, 3, pral::statistics::skewness);
}

bool PralNBootKurt_Core(double* out, const double* data, int n) {
    return bootstrap(out, data, n, 3, pral::statistics::kurtosis);
}

bool PralNBootCofV_Core(double* out, const double* data, int n) {
    return bootstrap(out, data, n, 0, coefficient_of_variation);
}

bool PralNBootPercentile_Core(double* out, const double* data, int n, double p) {
    return bootstrap(out, data, n, 1,
                     [p](std::vector<double>& drawn) { return pral::statistics::percentile(drawn, p); });
}

bool PralNBootMoments_Core(const double* data, int n, double* mean, double* variance, double* skewness,
                           double* kurtosis) {
    return guarded([&] {
        if (!given({{"mean", mean}, {"variance", variance}, {"skewness", skewness}, {"kurtosis", kurtosis}}))
            return false;
        *mean = *variance = *skewness = *kurtosis = 0;
        if (n < 1) return pral::fail(kNoData);
        if (!given({{"data", data}})) return false;
        const std::vector<double> drawn = replicate(data, n);
        *mean = pral::statistics::mean(drawn);
        if (n >= 2) *variance = pral::statistics::variance(drawn);
        if (n >= 3) {
            *skewness = pral::statistics::skewness(drawn);
            *kurtosis = pral::statistics::kurtosis(drawn);
        }
        return true;
    });
}

PRAL_EXPORT_VECTOR(NBootPaired, (const double* x, const double* y, int n), (x, y, n),
                   paired(out, size, x, y, n));

PRAL_EXPORT_VECTOR(NBootSeries, (const double* data, int n), (data, n), series(out, size, data, n));
