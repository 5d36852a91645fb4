// The families of the library as data.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace cli {

/// A parameter of a family: a number, or a table of numbers.
struct Parameter {
    std::string name;
    bool is_table;
    std::string text;  // what it is, where the library says so of it alone
};

struct Family {
    std::string name, kind, text;
    std::vector<Parameter> parameters;
};

/// All families, in the library's order.
const std::vector<Family>& families();

/// The family of that name, in any case; otherwise a UsageError with the library's suggestions.
const Family& find_family(const std::string& name);

/// What else the family is called, by words that its text does not hold; empty for most.
std::string_view other_names(const Family& family);

/// "mu, sigma", tables with brackets behind their names.
std::string parameter_names(const Family& family);

}  // namespace cli
