// What every function of the second door does around its work: arguments checked, failures told, no exception let out.
#pragma once

#include <cstddef>
#include <cstdint>
#include <new>
#include <string>
#include <utility>

#include "base/philox.h"
#include "distributions/univariate_family.h"
#include "objects/objects.h"

/// A handle is one allocation that opens with a mark, so that a null, freed or foreign pointer is told apart from it as far
/// as that can be.
struct pral_distribution {
    static constexpr std::uint64_t kMark = 0x7072616c64697374;
    std::uint64_t mark = kMark;
    pral::Shared distribution;
};
struct pral_stream {
    static constexpr std::uint64_t kMark = 0x7072616c73747265;
    std::uint64_t mark = kMark;
    pral::PhiloxStream stream;
};

namespace pral::objects {

/// Why a call fails. Thrown and caught inside of the door only.
struct Failure {
    pral_status code;
    std::string text;
    std::int64_t index = -1;
};

/// Writes the failure to the caller's struct, unless it is null or of another size, and returns its code.
pral_status report(const Failure& failure, pral_error* error) noexcept;
/// The exception that is being handled, as a status.
pral_status report_current(pral_error* error) noexcept;

/// Runs `body`; whatever it throws becomes a status.
template <class Body>
pral_status guarded(pral_error* error, Body body) noexcept {
    try {
        body();
        return PRAL_OK;
    } catch (...) {
        return report_current(error);
    }
}

[[noreturn]] inline void refuse(pral_status code, std::string text, std::int64_t index = -1) {
    throw Failure{code, std::move(text), index};
}
/// The library's texts for the classic calls open with "Error: ".
std::string without_prefix(const std::string& message);

template <class T>
T& required(T* pointer, const char* name) {
    if (pointer == nullptr) refuse(PRAL_ERROR_ARGUMENT, std::string(name) + " must not be null");
    return *pointer;
}
/// The same for `n` elements: none is needed of none.
template <class T>
void required_array(T* pointer, std::size_t n, const char* name) {
    if (n > 0) required(pointer, name);
}
template <class Struct>
Struct& sized(Struct* out, const char* name) {
    if (required(out, name).size != sizeof(Struct))
        refuse(PRAL_ERROR_ARGUMENT, std::string(name) + "->size must be the size of the struct");
    return *out;
}
template <class Handle>
Handle& checked(Handle* handle, const char* name) {
    if (required(handle, name).mark != Handle::kMark)
        refuse(PRAL_ERROR_ARGUMENT, std::string(name) + " is not one, or has been freed");
    return *handle;
}
inline const Univariate& checked(const pral_distribution* distribution) {
    return *checked(distribution, "distribution").distribution;
}

/// Runs `make`, which returns the shared distribution, and hands out a handle of it; null when it fails.
template <class Make>
pral_status made(pral_distribution** out, pral_error* error, Make make) noexcept {
    if (out != nullptr) *out = nullptr;
    return guarded(error, [&] {
        required(out, "out");
        *out = new pral_distribution{.distribution = make()};
    });
}

/// The distribution that text describes.
Shared parsed(const std::string& text);
/// The one of that family with those parameters.
Shared made_of(const std::string& family, FamilyArguments arguments);

}  // namespace pral::objects
