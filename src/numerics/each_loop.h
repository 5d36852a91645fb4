// What the loops over blocks of values are compiled with.
#pragma once

#include <cstdint>
#include <span>

// Where the dynamic linker can choose, it takes the wider vectors of newer processors. The digits are the same: no fused
// operations. A sanitizer is not there yet when the linker asks.
#if defined(__linux__) && defined(__x86_64__) && !defined(__SANITIZE_ADDRESS__) && \
    !defined(__SANITIZE_THREAD__)
#define PRAL_WIDEST_VECTORS __attribute__((target_clones("avx2", "default")))
#else
#define PRAL_WIDEST_VECTORS
#endif

namespace pral::numerics {

/// Whether is_ordinary(value) of all, by masks instead of branches.
template <class Test>
[[gnu::always_inline]] inline bool all_ordinary(std::span<const double> values, Test is_ordinary) {
    std::uint64_t others = 0;
    for (const double x : values) others |= is_ordinary(x) ? std::uint64_t{0} : std::uint64_t{1};
    return others == 0;
}

/// usual(x) of each element where is_ordinary(x), elsewhere special(x): in one loop of vectors where all are ordinary.
template <class Test, class Usual, class Special>
[[gnu::always_inline]] inline void each_or_special(std::span<double> values, Test is_ordinary, Usual usual,
                                                   Special special) {
    if (all_ordinary(values, is_ordinary)) {
        for (double& x : values) x = usual(x);
        return;
    }
    for (double& x : values) x = is_ordinary(x) ? usual(x) : special(x);
}

}  // namespace pral::numerics
