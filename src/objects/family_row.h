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

enum class FamilyKind { continuous, discrete, data };

struct FamilyRow {
    const char* name;
    FamilyKind kind;
    const char* parameters;  ///< as in C: "(double mu, double sigma)"
    const char* text;
    /// Null, with the objection, where the parameters are out of range.
    Shared (*make)(FamilyArguments arguments, std::string& objection);
};

/// A row with what follows from it.
struct ListedFamily {
    const FamilyRow* row;
    bool fittable;
    /// "(double min, const double* values, int n)" gives min and the table values.
    std::vector<ParameterRow> parameters;
};

/// All families, in the order of the list. Made when first asked for.
std::span<const ListedFamily> listed_families();
/// The one of that name, whatever the case of its letters; null where there is none.
const ListedFamily* find_family(std::string_view name);
/// The names that look most like a misspelt one, best first.
std::vector<std::string_view> similar_families(std::string_view name);
/// The base family's object for a variant of it named with two letters before: "ZIPoisson" and "Poisson".
Shared base_of_variant(const char* name, FamilyArguments arguments, std::string& objection);

}  // namespace pral::objects
