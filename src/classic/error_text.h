// The one error text of the process and the messages that more than one part of the library writes into it.
#pragma once

#include <string>

#include "base/message.h"

namespace pral {

inline constexpr Message kPercentileMessage = "Error: U must be between [0,1]";
inline constexpr Message kOutputArrayMessage = "Error: Output array is not valid";
inline constexpr Message kNullOutputMessage = "Error: out must not be null";
inline constexpr Message kNullValuesMessage = "Error: x must not be null";

/// The error text, zero-terminated, at most 1,023 characters.
const char* error_text();

/// Replaces the error text (cut after 1,023 characters) and returns false, so that a check can return its
/// failure.
bool fail(const char* message);
inline bool fail(const std::string& message) { return fail(message.c_str()); }

/// Reports bounds whose lower number is not <= their upper number. `as_values`: the numbers are values of the
/// variable, and the infinities print as words; otherwise they are percentiles. Returns false.
bool fail_bounds(double lower, double upper, bool as_values);

/// A number as messages print it: 16 decimals at most, trailing zeros removed. The removal also eats the
/// zeros of an exponent (1e-30 prints as "1e-3"); the messages have always looked so.
std::string number_text(double value);

}  // namespace pral
