// The numbers at which a distribution is evaluated, and where they come from.
#include "values.h"

#include <fmt/format.h>

#include <algorithm>

#include "arguments.h"
#include "errors.h"
#include "terminal.h"
#include "text.h"

namespace cli {

namespace {

/// The numbers of a text that holds nothing else; none of a text that holds other words, too.
std::optional<std::vector<double>> numbers_between_blanks(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r\n";
    std::vector<double> numbers;
    for (auto begin = text.find_first_not_of(kBlanks); begin != text.npos;) {
        const auto end = std::min(text.find_first_of(kBlanks, begin), text.size());
        const auto value = number(text.substr(begin, end - begin));
        if (!value) return std::nullopt;
        numbers.push_back(*value);
        begin = text.find_first_not_of(kBlanks, end);
    }
    return numbers;
}

bool asks_for_column(const CsvRequest& csv) {
    return !csv.column.empty() || csv.names || csv.decimal || csv.skip_missing;
}

std::vector<double> read_standard_input(const CsvRequest& csv) {
    const std::string text = read_file("-");
    if (trimmed(text).empty())
        throw UsageError("values are wanted behind the distribution, and the standard input is empty");
    if (!asks_for_column(csv)) {
        if (auto numbers = numbers_between_blanks(text)) return std::move(*numbers);
    }
    return read_csv_column(text, "standard input", csv).values;
}

}  // namespace

std::vector<double> read_values(const ValueOptions& options, const std::vector<std::string>& behind,
                                std::string_view option) {
    const int places = !behind.empty() + !options.given.empty() + options.file.has_value();
    if (places > 1)
        throw UsageError(fmt::format(
            "values stand behind the distribution, after {}, or in --csv FILE: in one place only", option));
    if (options.file) return read_csv_column(read_file(*options.file), *options.file, options.csv).values;
    std::vector<std::string> texts = behind.empty() ? options.given : behind;
    if (texts.empty() && is_terminal(stdin))
        throw UsageError(
            fmt::format("values are wanted: behind the distribution, after {}, in --csv FILE or on the "
                        "standard input",
                        option));
    if (texts.empty()) texts = {"-"};
    if (asks_for_column(options.csv) && std::ranges::find(texts, "-") == texts.end())
        throw UsageError(
            "--column, --header, --decimal and --skip-missing are for --csv FILE and the standard input");
    std::vector<double> values;
    for (const std::string& text : texts) {
        const auto more = text == "-" ? read_standard_input(options.csv) : parse_numbers(text, option);
        values.insert(values.end(), more.begin(), more.end());
    }
    return values;
}

}  // namespace cli
