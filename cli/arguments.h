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

/// Whether every row of a column must have a number, and a finite one.
enum class Completeness { some, all };

/// A column of a CSV file (comma-separated, fields in double quotes where needed), given by its number from 1 or its name
/// in the first row. With a number the first row counts as names when the cell is none. Rows without any field are passed
/// over, and of a column that need not be complete those whose cell is empty.
std::vector<double> read_csv_column(const std::string& file, const std::string& column,
                                    Completeness completeness = Completeness::some);

/// The number of the column that the first number in the file stands in.
std::string first_numeric_column(const std::string& file);

/// Negative numbers in a form that cannot be taken for options: "-.5" is -0.5, "-inf" is -DBL_MAX.
std::string unmistakable(std::string argument);

}  // namespace cli
