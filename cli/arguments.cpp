// Numbers as they stand on the command line and in CSV files.
#include "arguments.h"

#include <fmt/format.h>

#include <cfloat>
#include <charconv>
#include <cmath>
#include <fstream>
#include <optional>

#include "errors.h"
#include "text.h"

namespace cli {

namespace {

std::optional<double> number(std::string_view text) {
    text = trimmed(text);
    if (text.starts_with('+')) text.remove_prefix(1);
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
    return std::isinf(value) ? std::copysign(DBL_MAX, value) : value;
}

/// The fields of one CSV line; a doubled quote inside quotes stands for one.
std::vector<std::string> csv_fields(std::string_view line) {
    std::vector<std::string> fields(1);
    bool quoted = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        if (quoted && c == '"' && i + 1 < line.size() && line[i + 1] == '"') {
            fields.back() += line[++i];
        } else if (c == '"') {
            quoted = !quoted;
        } else if (c == ',' && !quoted) {
            fields.emplace_back();
        } else {
            fields.back() += c;
        }
    }
    for (auto& field : fields) field = trimmed(field);
    return fields;
}

/// The place of a column among the names, or by its number; none when there is no such column.
std::optional<std::size_t> column_place(const std::vector<std::string>& names, const std::string& column) {
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (names[i] == column) return i;
    }
    const auto place = number(column);
    if (!place || !(*place >= 1 && *place <= static_cast<double>(names.size()))) return std::nullopt;
    return static_cast<std::size_t>(*place) - 1;
}

}  // namespace

double parse_number(std::string_view text, std::string_view what) {
    const auto value = number(text);
    if (!value)
        throw UsageError(
            fmt::format("{}: \"{}\" is not a number, or beyond the range of numbers", what, text));
    return *value;
}

std::vector<double> read_csv_column(const std::string& file, const std::string& column) {
    std::ifstream in(file);
    if (!in) throw UsageError(fmt::format("cannot read the file {}", file));
    std::vector<double> values;
    std::optional<std::size_t> place;
    std::string line;
    for (int line_number = 1; std::getline(in, line); ++line_number) {
        if (line_number == 1 && line.starts_with("\xEF\xBB\xBF"))
            line.erase(0, 3);  // a spreadsheet's UTF-8 mark
        if (trimmed(line).empty()) continue;
        const auto fields = csv_fields(line);
        const bool first_row = !place;
        if (first_row) {
            place = column_place(fields, column.empty() ? "1" : column);
            if (!place) throw UsageError(fmt::format("{} has no column {}", file, column));
        }
        const std::string cell = *place < fields.size() ? fields[*place] : "";
        if (first_row && (cell == column || !number(cell))) continue;  // the names
        if (!cell.empty()) values.push_back(parse_number(cell, fmt::format("{}:{}", file, line_number)));
    }
    if (values.empty()) throw UsageError(fmt::format("{} holds no numbers", file));
    return values;
}

std::vector<double> parse_numbers(const std::string& text, std::string_view what) {
    if (text.starts_with('@')) {
        const auto colon = text.rfind(':');
        const bool drive_letter = colon == 2;  // @C:\values.csv
        if (colon == text.npos || drive_letter) return read_csv_column(text.substr(1), "");
        return read_csv_column(text.substr(1, colon - 1), text.substr(colon + 1));
    }
    std::vector<double> values;
    for (const std::string_view part : split(text, ',')) values.push_back(parse_number(part, what));
    return values;
}

std::string unmistakable(std::string argument) {
    for (const std::string_view infinity : {"-infinity", "-inf"}) {
        if (lower_case(argument).starts_with(infinity)) {
            return argument.replace(0, infinity.size(), fmt::format("{}", -DBL_MAX));
        }
    }
    if (argument.starts_with("-.")) argument.insert(1, "0");
    return argument;
}

}  // namespace cli
