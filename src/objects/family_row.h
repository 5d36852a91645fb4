// What the second door knows of a family: one row of the list in core_api.h, and how an object of it is made.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "distributions/univariate_family.h"

namespace pral::objects {

/// A parameter as the list gives it.
struct ParameterRow {
    std::string name;
    bool is_table;
    std::string text;
};

struct FamilyRow {
    const char* name;
    const char* kind;        ///< "continuous", "discrete" or "data"
    const char* parameters;  ///< as in C: "(double mu, double sigma)"
    const char* text;
    bool fittable;
    /// Null, with the objection, where the parameters are out of range.
    Shared (*make)(FamilyArguments arguments, std::string& objection);
};

/// All rows, in the order of the list.
std::span<const FamilyRow* const> family_rows();
/// The row of that name, whatever the case of its letters; null where there is none.
const FamilyRow* find_family(std::string_view name);
/// The names that look most like a misspelt one, best first.
std::vector<std::string_view> similar_families(std::string_view name);
/// "(double min, const double* values, int n)" -> min and the table values.
std::vector<ParameterRow> parameters_of(const FamilyRow&);

}  // namespace pral::objects
