// Columns of numbers out of a CSV file. What cannot be read with certainty is refused, never guessed.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

/// What stands before the digits behind the one.
enum class DecimalMark { point, comma };

/// What a column is for. In data and values a cell that is empty or NA is missing, and data are finite. Among ends of
/// intervals it is an end that is open: NaN. A table may end before other columns do, but has no gaps.
enum class Purpose { data, values, ends, table };

struct CsvRequest {
    std::string column =
        {};  // a name, or a number from 1 on; empty: the first one that has a name and numbers
    Purpose purpose = Purpose::table;
    bool skip_missing = false;
    std::optional<bool> names = {};  // whether the first row holds names; not given: seen from its cells
    std::optional<DecimalMark> decimal = {};  // not given: seen from the cells
};

struct CsvColumn {
    std::vector<double> values;
    std::size_t missing = 0;
    std::size_t number = 1, width = 1;  // which column it is, of how many
    std::string name;                   // empty without names
    bool has_names = false;
    char separator = ',';
    DecimalMark decimal = DecimalMark::point;
};

/// Columns of the same rows: a row in which one of them has a missing cell is left out of all.
struct CsvTable {
    std::vector<CsvColumn> columns;
    std::size_t missing = 0;
    std::vector<std::size_t> lines;  // where the rows stand in the file
};

struct CsvPart {
    std::string column;
    Purpose purpose;
};

/// The text of a file, or of the standard input when it is "-". Read once, so that a pipe will do; one without an end is
/// refused.
std::string read_file(const std::string& file);

/// A column of a text whose fields are separated by commas, semicolons or tabs, in double quotes where needed (RFC 4180).
/// The separator is that of the first row. With semicolons and tabs a decimal comma is understood. The first row holds names
/// when none of its cells is a number. Empty rows are passed over, but in a text of one column they are missing cells.
/// `file` names the text in the UsageErrors.
CsvColumn read_csv_column(std::string_view text, const std::string& file, const CsvRequest& request);

/// The same with more columns beside that of the request, which comes first.
CsvTable read_csv_columns(std::string_view text, const std::string& file, const CsvRequest& request,
                          const std::vector<CsvPart>& more);

}  // namespace cli
