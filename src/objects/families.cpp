// The families' list for programs.
#include <algorithm>
#include <climits>
#include <string>
#include <vector>

#include "objects/family_row.h"
#include "objects/handles.h"

namespace pral::objects {

namespace {

const FamilyRow& required_family(const std::string& name) {
    if (const FamilyRow* row = find_family(name)) return *row;
    std::string text = "there is no family \"" + name.substr(0, 64) + "\"";
    const auto similar = similar_families(name);
    for (std::size_t i = 0; i < similar.size(); ++i)
        text += (i == 0                   ? "; did you mean "
                 : i + 1 < similar.size() ? ", "
                                          : " or ") +
                std::string(similar[i]);
    refuse(PRAL_ERROR_FAMILY, text + (similar.empty() ? "" : "?"));
}

std::int32_t kind_of(const FamilyRow& row) {
    switch (row.kind[0]) {
        case 'c':
            return PRAL_CONTINUOUS;
        case 'd':
            return row.kind[1] == 'i' ? PRAL_DISCRETE : PRAL_TABLE;
        default:
            return -1;
    }
}

/// The parameters of every family, read from the list once, when the library is first asked for one of them.
const std::vector<std::vector<ParameterRow>>& all_parameters() {
    static const auto all = [] {
        std::vector<std::vector<ParameterRow>> parameters;
        for (const FamilyRow* row : family_rows()) parameters.push_back(parameters_of(*row));
        return parameters;
    }();
    return all;
}
const std::vector<ParameterRow>& parameters(const FamilyRow& row) {
    const auto rows = family_rows();
    return all_parameters()[static_cast<std::size_t>(std::ranges::find(rows, &row) - rows.begin())];
}

}  // namespace

Shared made_of(const std::string& family, FamilyArguments arguments) {
    const FamilyRow& row = required_family(family);
    const auto& wanted = parameters(row);
    if (arguments.size() != wanted.size()) {
        std::string text = std::string(row.name) + " has " + std::to_string(wanted.size()) + " parameters (";
        for (std::size_t i = 0; i < wanted.size(); ++i) text += (i > 0 ? ", " : "") + wanted[i].name;
        refuse(PRAL_ERROR_PARAMETER, text + "), " + std::to_string(arguments.size()) + " given");
    }
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        if (!wanted[i].is_table && arguments[i].size() != 1)
            refuse(PRAL_ERROR_PARAMETER, wanted[i].name + " must be one number",
                   static_cast<std::int64_t>(i));
        if (arguments[i].size() > INT_MAX)
            refuse(PRAL_ERROR_PARAMETER, wanted[i].name + " has too many elements",
                   static_cast<std::int64_t>(i));
        for (double& number : arguments[i])
            if (!wanted[i].is_table) number += 0.0;  // -0.0 is 0
    }
    std::string objection;
    Shared distribution = row.make(std::move(arguments), objection);
    if (distribution == nullptr)
        refuse(PRAL_ERROR_PARAMETER, std::string(row.name) + ": " + without_prefix(objection));
    return distribution;
}

}  // namespace pral::objects

using namespace pral::objects;

size_t pral_family_count(void) { return family_rows().size(); }

const char* pral_family_name(size_t index) {
    return index < family_rows().size() ? family_rows()[index]->name : nullptr;
}

pral_status pral_family_info(const char* family, pral_family* out, pral_error* error) {
    return guarded(error, [&] {
        pral_family& target = sized(out, "out");
        const FamilyRow& row = required_family(&required(family, "family"));
        target.name = row.name;
        target.kind = kind_of(row);
        target.fittable = row.fittable;
        target.parameter_count = parameters(row).size();
        target.text = row.text;
    });
}

pral_status pral_family_parameter(const char* family, size_t index, pral_parameter* out, pral_error* error) {
    return guarded(error, [&] {
        pral_parameter& target = sized(out, "out");
        const FamilyRow& row = required_family(&required(family, "family"));
        const auto& all = parameters(row);
        if (index >= all.size())
            refuse(PRAL_ERROR_ARGUMENT,
                   std::string(row.name) + " has " + std::to_string(all.size()) + " parameters");
        target.name = all[index].name.c_str();
        target.is_table = all[index].is_table;
        target.text = all[index].text.c_str();
    });
}
