// What every exported function does around its work: zeroed outputs, no exception across the boundary,
// automation arrays.
#pragma once

#include <algorithm>
#include <climits>
#include <cstdio>
#include <exception>
#include <initializer_list>
#include <new>
#include <string>

#include "classic/automation.h"
#include "classic/error_text.h"

// Windows' headers define these everyday words away.
#undef near
#undef far
#undef small

namespace pral {

/// Runs `body`, which returns the success flag; an exception becomes a failure with its text.
template <class Body>
bool guarded(Body body) noexcept {
    try {
        return body();
    } catch (const std::bad_alloc&) {
        return fail("Error: not enough memory");
    } catch (const std::exception& problem) {
        char message[256];  // no allocation that could fail in its turn
        std::snprintf(message, sizeof message, "Error: %s", problem.what());
        return fail(message);
    } catch (...) {
        return fail("Error: unknown problem");
    }
}

/// Fails with the message of a check that had one.
inline bool succeeded(Message objection) { return objection == nullptr || fail(objection); }

struct NamedPointer {
    const char* name;
    const void* pointer;
};

/// False, with a message that names it, when a pointer is null. Of arrays of `count` elements none is needed when
/// the count is not positive.
inline bool given(std::initializer_list<NamedPointer> pointers, long long count = 1) {
    for (const NamedPointer& argument : pointers) {
        if (argument.pointer != nullptr || count <= 0) continue;
        return fail(std::string("Error: ") + argument.name + " must not be null");
    }
    return true;
}

/// The same for a function with `count` outputs (none when negative), which are set to 0 first. `body` gets
/// the count.
template <class Body>
bool guarded(double* out, int count, Body body) noexcept {
    count = std::max(count, 0);
    if (out == nullptr && count > 0) return fail(kNullOutputMessage);
    std::fill_n(out, count, 0.0);
    return guarded([&] { return body(count); });
}

/// Locks an automation array, hands its data and element count to `body` and unlocks it. Anything but a
/// one-dimensional array of 8-byte elements fails.
template <class Body>
bool with_locked_array(SAFEARRAY** array, Body body) noexcept {
    if (array == nullptr || *array == nullptr) return fail(kOutputArrayMessage);
    SAFEARRAY* const target = *array;
    if (target->cDims != 1 || target->cbElements != 8 || target->rgsabound[0].cElements > INT_MAX)
        return fail(kOutputArrayMessage);
    if (FAILED(SafeArrayLock(target))) return fail(kOutputArrayMessage);
    struct Unlock {
        SAFEARRAY* array;
        ~Unlock() { SafeArrayUnlock(array); }
    } unlock{target};
    return body(static_cast<double*>(target->pvData), static_cast<int>(target->rgsabound[0].cElements));
}

}  // namespace pral
