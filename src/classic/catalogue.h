// The catalogue of distributions: the names and codes by which classic fits know them.
#pragma once

#include <span>
#include <string_view>

#include "fitting/fit.h"

namespace pral::classic {

struct CatalogueRow {
    const char* name;
    int parameter_count;  // 0 where the name stands for no univariate family of this library
};

/// 137 rows; the index of a row is the distribution's code.
std::span<const CatalogueRow> catalogue();

/// The code of a catalogue name such as "PralNormal", or -1.
int code_of(std::string_view name);

/// What is needed to fit the distribution of that code; null where it cannot be fitted.
const fitting::FittedFamily* fitted_family(int code);

}  // namespace pral::classic
