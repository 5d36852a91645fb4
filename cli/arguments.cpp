// Numbers as they stand on the command line and in CSV files.
#include "arguments.h"

#include <fmt/format.h>

#include <algorithm>
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

/// Calls `visit` with the line number and the fields of each row that has any text, until it returns false.
template <class Visit>
void visit_rows(const std::string& file, Visit visit) {
    std::ifstream in(file);
    if (!in) throw UsageError(fmt::format("cannot read the file {}", file));
    std::string line;
    for (int line_number = 1; std::getline(in, line); ++line_number) {
        if (line_number == 1 && line.starts_with("\xEF\xBB\xBF"))
            line.erase(0, 3);  // a spreadsheet's UTF-8 mark
        const auto fields = csv_fields(line);
        const bool blank = std::ranges::all_of(fields, [](const auto& field) { return field.empty(); });
        if (!blank && !visit(line_number, fields)) return;
    }
}

/// The place of a column by its number, or among the names; none when there is no such column.
struct ColumnPlace {
    std::size_t place;
    bool by_name;
};
std::optional<ColumnPlace> column_place(const std::vector<std::string>& names, const std::string& column) {
    const auto place = number(column);
    if (place && *place >= 1 && *place <= static_cast<double>(names.size()))
        return ColumnPlace{static_cast<std::size_t>(*place) - 1, false};
    const auto name = std::ranges::find(names, column);
    if (name == names.end()) return std::nullopt;
    return ColumnPlace{static_cast<std::size_t>(name - names.begin()), true};
}

}  // namespace

double parse_number(std::string_view text, std::string_view what) {
    const auto value = number(text);
    if (!value)
        throw UsageError(
            fmt::format("{}: \"{}\" is not a number, or beyond the range of numbers", what, text));
    return *value;
}

std::vector<double> read_csv_column(const std::string& file, const std::string& column,
                                    Completeness completeness) {
    std::vector<double> values;
    std::optional<ColumnPlace> found;
    visit_rows(file, [&](int line_number, const std::vector<std::string>& fields) {
        const bool first_row = !found;
        if (first_row) {
            found = column_place(fields, column);
            if (!found) throw UsageError(fmt::format("{} has no column {}", file, column));
        }
        const std::string cell = found->place < fields.size() ? fields[found->place] : "";
        if (first_row && (found->by_name || !number(cell))) return true;  // the names
        const std::string where = fmt::format("{}:{}", file, line_number);
        if (cell.empty()) {
            if (completeness == Completeness::some) return true;
            throw UsageError(fmt::format("{}: the cell of column {} is empty", where, column));
        }
        values.push_back(parse_number(cell, where));
        if (completeness == Completeness::all && !(std::fabs(values.back()) < DBL_MAX))
            throw UsageError(fmt::format("{}: \"{}\" is not a finite number", where, cell));
        return true;
    });
    if (values.empty()) throw UsageError(fmt::format("{} holds no numbers", file));
    return values;
}

std::string first_numeric_column(const std::string& file) {
    std::optional<std::size_t> place;
    visit_rows(file, [&](int, const std::vector<std::string>& fields) {
        for (std::size_t i = 0; i < fields.size() && !place; ++i) {
            if (number(fields[i])) place = i;
        }
        return !place;
    });
    if (!place) throw UsageError(fmt::format("{} holds no numbers", file));
    return fmt::format("{}", *place + 1);
}

std::vector<double> parse_numbers(const std::string& text, std::string_view what) {
    if (text.starts_with('@')) {
        const auto colon = text.rfind(':');
        const bool drive_letter = colon == 2;  // @C:\values.csv
        if (colon == text.npos || drive_letter) return read_csv_column(text.substr(1), "1");
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
