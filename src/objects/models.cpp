#include "objects/models.h"

#include <algorithm>

#include "fitting/fit.h"
#include "objects/family_row.h"
#include "objects/handles.h"

namespace pral::objects {

namespace {

std::vector<inference::Model> made_models() {
    std::vector<inference::Model> all;
    for (const ListedFamily& family : listed_families()) {
        const fitting::FittedFamily* const fitted = fitting::fitted_family(family.row->name);
        if (fitted == nullptr) continue;
        const auto make = [row = family.row](std::span<const double> parameters) {
            FamilyArguments arguments;
            for (const double parameter : parameters) arguments.push_back({parameter});
            std::string objection;
            return row->make(std::move(arguments), objection);
        };
        all.push_back({fitted, family.row->kind == FamilyKind::discrete, make});
    }
    return all;
}

}  // namespace

std::span<const inference::Model> models() {
    static const std::vector<inference::Model> all = made_models();
    return all;
}

const inference::Model& model(const std::string& family) {
    const ListedFamily* const listed = find_family(family);
    if (listed == nullptr) made_of(family, {});  // says that there is no such family
    const auto found =
        std::ranges::find(models(), std::string_view(listed->row->name), &inference::Model::name);
    if (found == models().end())
        refuse(PRAL_ERROR_FAMILY, std::string(listed->row->name) + " cannot be fitted");
    return *found;
}

}  // namespace pral::objects
