// Reading the text that the header's list gives: parameter lists and prototypes.
#include "family_table.h"

#include <algorithm>

#include "text.h"

namespace cli {

std::vector<Parameter> parse_parameters(std::string_view list) {
    list.remove_prefix(1);
    list.remove_suffix(1);
    std::vector<Parameter> parameters;
    for (const std::string_view declaration : split(list, ',')) {
        const auto space = declaration.rfind(' ');
        const std::string_view type = declaration.substr(0, space);
        const bool is_count = type == "int";  // follows from its table
        if (!is_count) {
            parameters.push_back({std::string(declaration.substr(space + 1)), type.find('*') != type.npos});
        }
    }
    return parameters;
}

std::vector<std::string> split_prototypes(std::string_view declarations) {
    std::vector<std::string> prototypes;
    for (const std::string_view declaration : split(declarations, ';')) {
        if (!declaration.empty()) prototypes.push_back(std::string(declaration) + ";");
    }
    return prototypes;
}

}  // namespace cli
