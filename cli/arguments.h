// Numbers as they stand on the command line and in CSV files.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace cli {

/// One number; "inf" and "-inf" become the library's DBL_MAX and -DBL_MAX. `what` names it in the UsageError.
double parse_number(std::string_view text, std::string_view what);

/// A number, a comma list "1,2.5,4", or @FILE.csv:COLUMN.
std::vector<double> parse_numbers(const std::string& text, std::string_view what);

/// A column of a CSV file (comma-separated, fields in double quotes where needed), given by its name in the first row or
/// its number from 1. Without a name the first row counts as names when it is not numeric. Rows whose cell is empty are
/// passed over.
std::vector<double> read_csv_column(const std::string& file, const std::string& column);

/// Negative numbers in a form that cannot be taken for options: "-.5" is -0.5, "-inf" is -DBL_MAX.
std::string unmistakable(std::string argument);

}  // namespace cli
