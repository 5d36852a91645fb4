// Counts with more zeros: objects over those of their base families.
#include <string>
#include <utility>

#include "distributions/zeros.h"
#include "objects/family_row.h"

namespace pral::objects {

namespace {

/// Any weight in [0,1] has a meaning here.
Shared inflated(const char* name, FamilyArguments arguments, std::string& objection) {
    const double pi = arguments.back().front();
    arguments.pop_back();
    Shared base = base_of_variant(name, std::move(arguments), objection);
    if (base == nullptr) return base;
    if (pi >= 0 && pi <= 1) return zero_inflated(std::move(base), pi);
    objection = "Error: pi must be between [0,1]";
    return nullptr;
}

}  // namespace

}  // namespace pral::objects

#define PRAL_KIN_inflated PRAL_THIS_KIN
#define PRAL_MAKE_OBJECT(X, PARAMETERS) inflated
#include "objects/family_rows.h"
