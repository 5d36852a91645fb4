// Numbers as they stand on the command line.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

/// One number, infinite ones included. `what` names it in the UsageError.
double parse_number(std::string_view text, std::string_view what);

/// The same, and NaN is none.
double parse_real(std::string_view text, std::string_view what);

/// A whole number of digits alone.
std::optional<std::uint64_t> whole_number(std::string_view text);

/// A number, a comma list "1,2.5,4", or a column of a file: @FILE.csv:COLUMN, or @FILE.csv for its first one of numbers.
std::vector<double> parse_numbers(const std::string& text, std::string_view what);

/// Negative numbers that could be taken for options, "-.5" and "-inf", behind a blank.
std::string unmistakable(std::string argument);

}  // namespace cli
