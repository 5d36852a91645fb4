// Small helpers for text.
#pragma once

#include <algorithm>
#include <cctype>
#include <charconv>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

inline std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    const auto first = text.find_first_not_of(blanks);
    if (first == text.npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

/// The parts between separators, without the blanks around them; an empty text has one empty part.
inline std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    for (;;) {
        const auto end = text.find(separator);
        parts.push_back(trimmed(text.substr(0, end)));
        if (end == text.npos) return parts;
        text.remove_prefix(end + 1);
    }
}

inline std::string lower_case(std::string_view text) {
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(), [](unsigned char c) { return std::tolower(c); });
    return lower;
}

/// The number that a whole text is, none otherwise; "inf" and "nan" are numbers.
inline std::optional<double> number(std::string_view text) {
    text = trimmed(text);
    if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
    return value;
}

/// Foreign text without what drives a terminal.
inline std::string printable(std::string text) {
    std::ranges::replace_if(
        text, [](unsigned char c) { return c < ' ' || c == 0x7F; }, '?');
    return text;
}

/// The same as a message shows it: its beginning, cut between two UTF-8 characters.
inline std::string shown(std::string_view text) {
    constexpr std::size_t longest = 60;
    const bool cut = text.size() > longest;
    if (cut) {
        std::size_t end = longest;
        while (end > longest - 4 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
        text = text.substr(0, end);
    }
    return printable(std::string(text)) + (cut ? "..." : "");
}

/// The text in lines that end before column `width`, broken at blanks, or where `glue` is another, such as ", ", behind it.
/// All of them begin at column `indent`; the first has come so far already. `mark` ends every line that is broken.
inline std::string wrapped(std::string_view text, std::size_t width, std::size_t indent = 0,
                           std::string_view glue = " ", std::string_view mark = "") {
    std::string all;
    std::size_t column = indent;
    for (const std::string_view part : split(text, glue.front())) {
        if (column > indent && column + glue.size() + part.size() + 1 + mark.size() > width) {
            all += trimmed(glue);
            all += mark;
            all += '\n' + std::string(indent, ' ');
            column = indent;
        } else if (!all.empty()) {
            all += glue;
            column += glue.size();
        }
        all += part;
        column += part.size();
    }
    return all;
}

/// Joins what `text_of` makes of each element.
template <class Range, class TextOf>
std::string joined(const Range& range, std::string_view separator, TextOf text_of) {
    std::string all;
    for (const auto& element : range) {
        if (!all.empty()) all += separator;
        all += text_of(element);
    }
    return all;
}

}  // namespace cli
