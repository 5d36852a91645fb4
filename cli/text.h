// Small helpers for text.
#pragma once

#include <algorithm>
#include <cctype>
#include <cfloat>
#include <charconv>
#include <cmath>
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

/// The number that a whole text is, none otherwise; "inf" and "-inf" are the library's DBL_MAX and -DBL_MAX.
inline std::optional<double> number(std::string_view text) {
    text = trimmed(text);
    if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
    return std::isinf(value) ? std::copysign(DBL_MAX, value) : value;
}

/// Foreign text as a message shows it: its beginning, cut between two UTF-8 characters, nothing that drives a terminal.
inline std::string shown(std::string_view text) {
    constexpr std::size_t longest = 60;
    const bool cut = text.size() > longest;
    if (cut) {
        std::size_t end = longest;
        while (end > longest - 4 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
        text = text.substr(0, end);
    }
    std::string plain(text);
    std::ranges::replace_if(
        plain, [](unsigned char c) { return c < ' ' || c == 0x7F; }, '?');
    return plain + (cut ? "..." : "");
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
