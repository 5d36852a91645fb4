// Reading the tables of reference/: lines of fields between tabs, comments after #.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace pral::test {

using Parameters = std::vector<double>;

inline std::vector<std::vector<std::string>> table(const char* path) {
    std::ifstream file(path);
    EXPECT_TRUE(file) << path;
    std::vector<std::vector<std::string>> rows;
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line[0] == '#') continue;
        std::istringstream fields(line);
        rows.emplace_back();
        for (std::string field; std::getline(fields, field, '\t');) rows.back().push_back(field);
    }
    return rows;
}

/// All tables of a folder, one after another.
inline std::vector<std::vector<std::string>> tables(const char* folder) {
    std::vector<std::vector<std::string>> rows;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        for (auto& row : table(entry.path().string().c_str())) rows.push_back(std::move(row));
    }
    EXPECT_FALSE(rows.empty()) << folder;
    return rows;
}

/// The numbers of a field, between blanks.
inline Parameters numbers(const std::string& text) {
    std::istringstream words(text);
    Parameters values;
    for (std::string word; words >> word;) values.push_back(std::strtod(word.c_str(), nullptr));
    return values;
}

/// A row's cell as a number; decimal or hexadecimal.
inline double number(const std::vector<std::string>& row, std::size_t column) {
    return std::strtod(row.at(column).c_str(), nullptr);
}

/// The cells of a row before `end`, for messages.
inline std::string place(const std::vector<std::string>& row, std::size_t begin, std::size_t end) {
    std::string text;
    for (std::size_t i = begin; i < end; ++i) text += (i == begin ? "" : " ") + row.at(i);
    return text;
}

}  // namespace pral::test
