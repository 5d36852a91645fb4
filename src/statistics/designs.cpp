#include "statistics/designs.h"

#include <gsl/gsl_qrng.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <memory>
#include <new>
#include <numeric>
#include <utility>
#include <vector>

namespace pral::designs {

namespace {

/// A whole number below `bound`, every one as likely (Lemire 2019, without the rejection: the bias is below 2^-40 for the
/// sizes that memory can hold).
std::size_t below(std::size_t bound, PhiloxStream& stream) {
    return std::min(static_cast<std::size_t>(stream.uniform() * static_cast<double>(bound)), bound - 1);
}

}  // namespace

void latin_hypercube(std::span<double> out, std::size_t dimensions, PhiloxStream& stream) {
    const std::size_t count = out.size() / dimensions;
    std::vector<std::size_t> slice(count);
    for (std::size_t axis = 0; axis < dimensions; ++axis) {
        std::iota(slice.begin(), slice.end(), std::size_t{0});
        for (std::size_t i = count; i > 1; --i) std::swap(slice[i - 1], slice[below(i, stream)]);
        for (std::size_t i = 0; i < count; ++i) {
            const double place =
                (static_cast<double>(slice[i]) + stream.uniform()) / static_cast<double>(count);
            out[i * dimensions + axis] = std::min(place, 1 - 0x1p-53);
        }
    }
}

std::size_t slices(std::size_t count, std::size_t dimensions) {
    const double root = std::pow(static_cast<double>(count), 1 / static_cast<double>(dimensions));
    const auto k = static_cast<std::size_t>(std::llround(root));
    std::size_t cells = 1;
    for (std::size_t axis = 0; axis < dimensions && cells <= count; ++axis) cells *= k;
    return cells == count ? k : 0;
}

void stratified(std::span<double> out, std::size_t dimensions, std::size_t k, PhiloxStream& stream) {
    for (std::size_t i = 0; i < out.size() / dimensions; ++i) {
        std::size_t cell = i;
        for (std::size_t axis = 0; axis < dimensions; ++axis, cell /= k) {
            const double place = (static_cast<double>(cell % k) + stream.uniform()) / static_cast<double>(k);
            out[i * dimensions + axis] = std::min(place, 1 - 0x1p-53);
        }
    }
}

std::size_t most_dimensions(Sequence sequence) {
    return (sequence == Sequence::sobol ? gsl_qrng_sobol : gsl_qrng_halton)->max_dimension;
}

void quasi_random(std::span<double> out, std::size_t dimensions, Sequence sequence, PhiloxStream* stream) {
    const bool digital = sequence == Sequence::sobol;
    const std::unique_ptr<gsl_qrng, void (*)(gsl_qrng*)> generator(
        gsl_qrng_alloc(digital ? gsl_qrng_sobol : gsl_qrng_halton, static_cast<unsigned>(dimensions)),
        gsl_qrng_free);
    if (!generator) throw std::bad_alloc();
    const std::size_t count = out.size() / dimensions;
    std::vector<double> shift(dimensions, 0.5 / static_cast<double>(digital ? std::bit_ceil(count) : count));
    if (stream != nullptr) stream->fill(shift);
    for (std::size_t i = 0; i < count; ++i) {
        const std::span<double> point = out.subspan(i * dimensions, dimensions);
        // GSL leaves out the origin, without which 2^m points are no net.
        if (i == 0)
            std::ranges::fill(point, 0.0);
        else
            gsl_qrng_get(generator.get(), point.data());
        for (std::size_t axis = 0; axis < dimensions; ++axis) {
            double& x = point[axis];
            if (stream != nullptr && digital) {
                constexpr double kUnits = 0x1p52;  // the shift is an odd multiple of 2^-53, so no result is 0
                const auto bits =
                    static_cast<std::uint64_t>(x * kUnits) ^ static_cast<std::uint64_t>(shift[axis] * kUnits);
                x = (static_cast<double>(bits) + 0.5) / kUnits;
            } else {
                x += shift[axis];
                if (x >= 1) x -= 1;
                x = std::clamp(x, 0x1p-53, 1 - 0x1p-53);
            }
        }
    }
}

}  // namespace pral::designs
