// Counts without zeros: objects over those of their base families.
#include <string>
#include <utility>

#include "distributions/zeros.h"
#include "objects/family_row.h"

namespace pral::objects {

namespace {

Shared without_zeros(const char* name, FamilyArguments arguments, std::string& objection) {
    Shared base = base_of_variant(name, std::move(arguments), objection);
    return base == nullptr ? base : zero_truncated(std::move(base));
}

}  // namespace

}  // namespace pral::objects

#define PRAL_KIN_truncated PRAL_THIS_KIN
#define PRAL_MAKE_OBJECT(X, PARAMETERS) without_zeros
#include "objects/family_rows.h"
