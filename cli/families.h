// The families of the library, and a call of one of them as the command line tells it.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "family_table.h"
#include "output.h"

namespace cli {

/// All families, in the header's order.
const std::vector<Family>& families();

/// The family of that name, in any case; otherwise a UsageError that suggests the nearest name.
const Family& find_family(const std::string& name);

/// What else the family is called, by words that its line in the header does not hold; empty for most.
std::string_view other_names(const Family& family);

/// "mu, sigma", tables with brackets behind their names.
std::string parameter_names(const Family& family);

/// A family, its parameters and modifiers as given.
struct FamilyOptions {
    std::string family;
    std::vector<std::string> parameters;
    std::optional<double> min, max, min_percentile, max_percentile, shift;
    Format format = Format::table;
};

/// The same, ready to be called.
struct FamilyCall {
    const Family& family;
    Arguments arguments;
    Modifiers modifiers;
};

FamilyCall make_call(const FamilyOptions& options);

}  // namespace cli
