// Numbers as they stand on the command line.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace cli {

/// One number; "inf" and "-inf" become the library's DBL_MAX and -DBL_MAX. `what` names it in the UsageError.
double parse_number(std::string_view text, std::string_view what);

/// The same, and NaN is none.
double parse_real(std::string_view text, std::string_view what);

/// A number, a comma list "1,2.5,4", or a column of a file: @FILE.csv:COLUMN, or @FILE.csv for its first one of numbers.
std::vector<double> parse_numbers(const std::string& text, std::string_view what);

/// Negative numbers in a form that cannot be taken for options: "-.5" is -0.5, "-inf" is -DBL_MAX.
std::string unmistakable(std::string argument);

}  // namespace cli
