#include "distributions/joint.h"

#include <algorithm>
#include <bit>
#include <cstdint>

namespace pral {

namespace {

/// At the end of a support at 0 the sign of a zero would decide between logarithms and powers that are infinite and not.
bool is_minus_zero(double value) {
    return std::bit_cast<std::uint64_t>(value) == std::bit_cast<std::uint64_t>(-0.0);
}

double taken_as(double value, bool integers, bool density) {
    if (integers) {
        const double integer = counted(value);
        if (!density || counts_as(value, integer)) value = integer;
    }
    return value + 0.0;
}

}  // namespace

JointValues::JointValues(std::span<const double> given, bool integers, bool density) : values_(given) {
    const auto changes = [=](double value) {
        return is_minus_zero(value) || (integers && value != std::trunc(value));
    };
    if (std::ranges::any_of(given, changes)) {
        taken_.resize(given.size());
        std::ranges::transform(given, taken_.begin(),
                               [=](double value) { return taken_as(value, integers, density); });
        values_ = taken_;
    }
    for (const double value : values_) {
        smallest_ = std::min(smallest_, value);
        largest_ = std::max(largest_, value);
        all_numbers_ &= value == value;
        all_whole_ &= value == std::trunc(value);
    }
}

}  // namespace pral
