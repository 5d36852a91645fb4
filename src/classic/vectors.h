// Exports with a vector of results: the line that makes both forms of one, and the frame of those that leave zeros where
// they fail.
#pragma once

#include <algorithm>

#include "classic/call.h"
#include "classic/core_api.h"

#define PRAL_AFTER_COMMA(...) __VA_OPT__(, ) __VA_ARGS__

/// PRAL_EXPORT_VECTOR(MA1, (double mu, ...), (mu, ...), ma1(out, size, mu, ...)) defines PralMA1_Core(out, size, mu, ...) as
/// that call, and PralMA1VB_Core(array, mu, ...), which passes it the elements of an automation array.
#define PRAL_EXPORT_VECTOR(X, PARAMETERS, ARGUMENTS, ...)                                          \
    bool Pral##X##_Core(double* out, int size PRAL_AFTER_COMMA PARAMETERS) { return __VA_ARGS__; } \
    bool Pral##X##VB_Core(SAFEARRAY** array PRAL_AFTER_COMMA PARAMETERS) {                         \
        return pral::with_locked_array(array, [&](double* elements, int count) {                   \
            return Pral##X##_Core(elements, count PRAL_AFTER_COMMA ARGUMENTS);                     \
        });                                                                                        \
    }                                                                                              \
    static_assert(true)

namespace pral::classic {

/// Runs `body`, which returns the success flag and writes what the function promises, no element more. A failed call
/// leaves `count` zeros in `out`.
template <class Body>
bool guarded_vector(double* out, long long count, Body body) noexcept {
    if (out == nullptr && count > 0) return fail(kNullOutputMessage);
    if (guarded(body)) return true;
    std::fill_n(out, std::max(count, 0LL), 0.0);
    return false;
}

}  // namespace pral::classic
