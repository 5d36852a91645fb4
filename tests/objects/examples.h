// One ordinary distribution of every family, from the tables of references.
#pragma once

#include <pral_core/objects.h>

#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "support/table.h"

namespace pral::test {

inline pral_family family_of(const std::string& name) {
    pral_family family = {};
    family.size = sizeof family;
    EXPECT_EQ(pral_family_info(name.c_str(), &family, nullptr), PRAL_OK) << name;
    return family;
}
inline pral_parameter parameter_of(const std::string& name, std::size_t index) {
    pral_parameter parameter = {};
    parameter.size = sizeof parameter;
    EXPECT_EQ(pral_family_parameter(name.c_str(), index, &parameter, nullptr), PRAL_OK) << name;
    return parameter;
}

/// Numbers stand together in one cell, each table in one of its own, in the order of the parameters.
inline std::vector<std::vector<double>> parameters_with_tables(const std::string& family,
                                                               const std::string& text) {
    std::vector<std::vector<double>> parameters;
    std::istringstream cells(text);
    for (std::string cell; std::getline(cells, cell, ';');) {
        const Parameters all = numbers(cell);
        if (parameter_of(family, parameters.size()).is_table)
            parameters.push_back(all);
        else
            for (const double each : all) parameters.push_back({each});
    }
    return parameters;
}

using Examples = std::map<std::string, std::vector<std::vector<double>>>;

inline Examples examples() {
    Examples examples;
    for (const char* folder : {"reference/families/values", "reference/objects/families/values"}) {
        for (const auto& row : tables(folder)) {
            if (row.at(1) != "ordinary" || examples.contains(row.at(0))) continue;
            for (const double each : numbers(row.at(2))) examples[row[0]].push_back({each});
        }
    }
    for (const auto& row : table("reference/data_values.tsv"))
        if (!examples.contains(row.at(0))) examples[row[0]] = parameters_with_tables(row[0], row.at(1));
    examples.try_emplace("OgiveU", examples.at("Ogive"));
    for (std::size_t i = 0; i < pral_family_count(); ++i)
        EXPECT_TRUE(examples.contains(pral_family_name(i))) << pral_family_name(i) << " has no reference";
    return examples;
}

}  // namespace pral::test
