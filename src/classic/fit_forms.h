// Fits of the forms that families have in classic calls.
#pragma once

#include "fitting/fitted_family.h"

namespace pral::classic {

/// The fit with the values, and where they differ the likelihood and the ranges, of the family's classic form.
fitting::FittedFamily in_classic_form(const fitting::FittedFamily& family);

}  // namespace pral::classic
