// The classic calls, read from the public header's own list.
#include "classic_table.h"

#include <pral_core/core_api.h>

#include <algorithm>
#include <cmath>

#include "text.h"

// Prototypes are shown without the import and linkage words.
#undef PRAL_API
#define PRAL_API

namespace cli {

const ClassicFamily* find_classic(std::string_view name) {
    static const std::vector<ClassicFamily> list = {
#define PRAL_FAMILY PRAL_FAMILY_ELEMENT
#include <pral_core/core_api.h>
    };
    const auto found = std::ranges::find(list, name, &ClassicFamily::name);
    return found == list.end() ? nullptr : &*found;
}

double classic_number(double value) { return std::isinf(value) ? std::copysign(DBL_MAX, value) : value; }

std::vector<std::string> split_prototypes(std::string_view declarations) {
    std::vector<std::string> prototypes;
    for (const std::string_view declaration : split(declarations, ';')) {
        if (!declaration.empty()) prototypes.push_back(std::string(declaration) + ";");
    }
    return prototypes;
}

}  // namespace cli
