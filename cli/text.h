// Small helpers for text.
#pragma once

#include <algorithm>
#include <cctype>
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
