// The families' list for programs.
#include <algorithm>
#include <climits>
#include <cmath>
#include <string>
#include <vector>

#include "objects/family_row.h"
#include "objects/handles.h"

namespace pral::objects {

namespace {

const ListedFamily& required_family(const std::string& name) {
    if (const ListedFamily* family = find_family(name)) return *family;
    std::string text = "there is no family \"" + name.substr(0, 64) + "\"";
    const auto similar = similar_families(name);
    for (std::size_t i = 0; i < similar.size(); ++i)
        text += (i == 0                   ? "; did you mean "
                 : i + 1 < similar.size() ? ", "
                                          : " or ") +
                std::string(similar[i]);
    refuse(PRAL_ERROR_FAMILY, text + (similar.empty() ? "" : "?"));
}

static_assert(static_cast<int>(FamilyKind::continuous) == PRAL_CONTINUOUS &&
              static_cast<int>(FamilyKind::discrete) == PRAL_DISCRETE &&
              static_cast<int>(FamilyKind::data) == PRAL_TABLE);

}  // namespace

Shared made_of(const std::string& family, FamilyArguments arguments) {
    const auto& [row, fittable, wanted] = required_family(family);
    if (arguments.size() != wanted.size()) {
        std::string text = std::string(row->name) + " has " + std::to_string(wanted.size()) + " parameters (";
        for (std::size_t i = 0; i < wanted.size(); ++i) text += (i > 0 ? ", " : "") + wanted[i].name;
        refuse(PRAL_ERROR_PARAMETER, text + "), " + std::to_string(arguments.size()) + " given");
    }
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        if (!wanted[i].is_table && arguments[i].size() != 1)
            refuse(PRAL_ERROR_PARAMETER, wanted[i].name + " must be one number",
                   static_cast<std::int64_t>(i));
        if (!wanted[i].is_table && std::isnan(arguments[i].front()))
            refuse(PRAL_ERROR_PARAMETER, std::string(row->name) + ": " + wanted[i].name + " must be a number",
                   static_cast<std::int64_t>(i));
        if (arguments[i].size() > INT_MAX)
            refuse(PRAL_ERROR_PARAMETER, wanted[i].name + " has too many elements",
                   static_cast<std::int64_t>(i));
        for (double& number : arguments[i])
            if (!wanted[i].is_table) number += 0.0;  // -0.0 is 0
    }
    std::string objection;
    Shared distribution = row->make(std::move(arguments), objection);
    if (distribution == nullptr)
        refuse(PRAL_ERROR_PARAMETER, std::string(row->name) + ": " + without_prefix(objection));
    return distribution;
}

}  // namespace pral::objects

using namespace pral::objects;

size_t pral_family_count(void) { return listed_families().size(); }

const char* pral_family_name(size_t index) {
    return index < listed_families().size() ? listed_families()[index].row->name : nullptr;
}

pral_status pral_family_info(const char* family, pral_family* out, pral_error* error) {
    return guarded(error, [&] {
        pral_family& target = sized(out, "out");
        const auto& [row, fittable, parameters] = required_family(&required(family, "family"));
        target.name = row->name;
        target.kind = static_cast<std::int32_t>(row->kind);
        target.fittable = fittable;
        target.parameter_count = parameters.size();
        target.text = row->text;
    });
}

pral_status pral_family_parameter(const char* family, size_t index, pral_parameter* out, pral_error* error) {
    return guarded(error, [&] {
        pral_parameter& target = sized(out, "out");
        const auto& [row, fittable, parameters] = required_family(&required(family, "family"));
        if (index >= parameters.size())
            refuse(PRAL_ERROR_ARGUMENT,
                   std::string(row->name) + " has " + std::to_string(parameters.size()) + " parameters");
        target.name = parameters[index].name.c_str();
        target.is_table = parameters[index].is_table;
        target.text = parameters[index].text.c_str();
    });
}
