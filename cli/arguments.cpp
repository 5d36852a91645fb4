// Numbers as they stand on the command line.
#include "arguments.h"

#include <fmt/format.h>

#include <charconv>
#include <cmath>

#include "csv.h"
#include "errors.h"
#include "text.h"

namespace cli {

double parse_number(std::string_view text, std::string_view what) {
    const auto value = number(text);
    if (!value)
        throw UsageError(
            fmt::format("{}: \"{}\" is not a number, or beyond the range of numbers", what, shown(text)));
    return *value;
}

double parse_real(std::string_view text, std::string_view what) {
    const double value = parse_number(text, what);
    if (std::isnan(value)) throw UsageError(fmt::format("{}: a number is wanted, not {}", what, shown(text)));
    return value;
}

std::optional<std::uint64_t> whole_number(std::string_view text) {
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
    return value;
}

std::vector<double> parse_numbers(const std::string& text, std::string_view what) {
    if (text.starts_with('@')) {
        const auto colon = text.rfind(':');
        const bool drive_letter = colon == 2 && text.size() > 3 && (text[3] == '\\' || text[3] == '/');
        const bool has_column = colon != text.npos && !drive_letter;  // not in @C:\values.csv
        const std::string file = text.substr(1, has_column ? colon - 1 : text.npos);
        return read_csv_column(read_file(file), file, {.column = has_column ? text.substr(colon + 1) : ""})
            .values;
    }
    std::vector<double> values;
    for (const std::string_view part : split(text, ',')) values.push_back(parse_number(part, what));
    return values;
}

std::string unmistakable(std::string argument) {
    const bool number = argument.starts_with("-.") || lower_case(argument).starts_with("-inf");
    return number ? ' ' + argument : argument;
}

}  // namespace cli
