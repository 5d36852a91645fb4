// Rows of named columns, written as an aligned table, as CSV or as JSON while they arrive.
#pragma once

#include <fmt/format.h>

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace cli {

enum class Format { table, csv, json };

/// A number that a table shows with so many digits behind the point; CSV and JSON have all of it.
struct Rounded {
    double value;
    int digits;
};

/// A number that a table shows with so many significant digits.
struct Significant {
    double value;
    int digits;
};

/// Numbers with names: "mu=1.5 sigma=2", to six digits in a table; an object in JSON.
using NamedNumbers = std::vector<std::pair<std::string, double>>;

using Cell = std::variant<double, std::string, Rounded, Significant, NamedNumbers>;

/// The shortest text that reads back as the same double; "inf" and "-inf" for the library's infinities.
std::string number_text(double value);

/// JSON has no infinities and no NaN: there they are strings.
nlohmann::ordered_json json_number(double value);

/// The JSON text of a string.
std::string json_text(const std::string& text);

/// How wide a page of text is.
inline constexpr std::size_t kPageWidth = 80;

/// Writes to the standard output; a failure to write is an exception.
void write(std::string_view text);

/// Table: columns aligned over the first rows, numbers to the right; later rows keep those widths. CSV: RFC 4180 with a
/// header. JSON: an array with one object a row; since JSON has no infinities, they are the strings "inf" and "-inf".
class Rows {
  public:
    /// `line_width`: where the lines of a table are cut off, unless 0.
    Rows(Format format, std::vector<std::string> columns, std::size_t line_width = 0);
    void add(const std::vector<Cell>& row);
    /// Lines of a table below the last row.
    void note(std::string lines);
    void end();

  private:
    void add_csv(const std::vector<Cell>& row);
    void add_json(const std::vector<Cell>& row);
    void add_table(const std::vector<std::string>& row);
    void flush_table();
    void write_buffer();

    Format format_;
    std::vector<std::string> columns_;
    std::size_t line_width_;
    std::vector<bool> is_number_;
    std::vector<std::size_t> widths_;
    std::vector<std::vector<std::string>> waiting_;  // rows of a table whose widths are not settled
    std::vector<std::string> notes_;                 // below them, most of them empty
    bool settled_ = false, any_ = false;
    fmt::memory_buffer buffer_;
};

/// An object, as JSON, or as CSV with a row for each field.
void write_fields(Format format, const nlohmann::ordered_json& object);

}  // namespace cli
