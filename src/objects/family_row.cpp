#include "objects/family_row.h"

#include <algorithm>
#include <cctype>
#include <numeric>
#include <utility>

#include "classic/core_api.h"
#include "objects/parameter_texts.h"

namespace pral::objects {

#define PRAL_FAMILY(X, KIND, KIN, PARAMETERS, TEXT) extern const FamilyRow row_of_##X;
#include "classic/core_api.h"
#define PRAL_FAMILY(X, KIND, KIN, PARAMETERS, TEXT) extern const FamilyRow row_of_##X;
#include "objects/own_families.h"

namespace {

constexpr const FamilyRow* kRows[] = {
#define PRAL_FAMILY(X, KIND, KIN, PARAMETERS, TEXT) &row_of_##X,
#include "classic/core_api.h"
#define PRAL_FAMILY(X, KIND, KIN, PARAMETERS, TEXT) &row_of_##X,
#include "objects/own_families.h"
};

#define PRAL_NAME(X) #X,
constexpr std::string_view kFitted[] = {PRAL_FITTED_FAMILIES(PRAL_NAME) "Uniform", "Student3"};
#undef PRAL_NAME

std::string lower_case(std::string_view text) {
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return lower;
}

/// Letters to insert, delete or replace (Levenshtein).
std::size_t distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t changed = diagonal + (a[i - 1] != b[j - 1]);
            diagonal = row[j];
            row[j] = std::min({row[j] + 1, row[j - 1] + 1, changed});
        }
    }
    return row.back();
}

std::vector<ParameterRow> parameters_of(const FamilyRow& row) {
    std::vector<ParameterRow> parameters;
    std::vector<std::string> texts = parameter_texts(row.name);
    std::string_view rest = row.parameters;
    rest = rest.substr(1, rest.size() - 2);
    while (!rest.empty()) {
        const std::string_view declaration = rest.substr(0, rest.find(','));
        rest.remove_prefix(std::min(declaration.size() + 1, rest.size()));
        const std::string name(declaration.substr(declaration.find_last_of(" *") + 1));
        if (declaration.find("int ") != std::string_view::npos) continue;  // counts the table before it
        parameters.push_back({name, declaration.find('*') != std::string_view::npos, {}});
    }
    for (std::size_t i = 0; i < std::min(texts.size(), parameters.size()); ++i)
        parameters[i].text = std::move(texts[i]);
    return parameters;
}

/// The families, and their places in the order of their names in small letters.
struct Register {
    std::vector<ListedFamily> families;
    std::vector<std::pair<std::string, std::size_t>> by_name;

    Register() {
        for (const FamilyRow* row : kRows) {
            const bool fittable =
                std::ranges::find(kFitted, std::string_view(row->name)) != std::end(kFitted);
            by_name.emplace_back(lower_case(row->name), families.size());
            families.push_back({row, fittable, parameters_of(*row)});
        }
        std::ranges::sort(by_name);
    }
};
const Register& the_register() {
    static const Register made;
    return made;
}

}  // namespace

std::span<const ListedFamily> listed_families() { return the_register().families; }

const ListedFamily* find_family(std::string_view name) {
    const auto& by_name = the_register().by_name;
    const std::string wanted = lower_case(name);
    const auto found =
        std::ranges::lower_bound(by_name, wanted, {}, &std::pair<std::string, std::size_t>::first);
    const bool listed = found != by_name.end() && found->first == wanted;
    return listed ? &the_register().families[found->second] : nullptr;
}

Shared base_of_variant(const char* name, FamilyArguments arguments, std::string& objection) {
    return find_family(name + 2)->row->make(std::move(arguments), objection);
}

std::vector<std::string_view> similar_families(std::string_view name) {
    constexpr std::size_t kMost = 3, kLongest = 64;
    const std::string wanted = lower_case(name.substr(0, kLongest));
    std::vector<std::pair<std::size_t, std::string_view>> ranked;
    for (const FamilyRow* row : kRows) {
        const std::string candidate = lower_case(row->name);
        const bool part = wanted.size() >= 3 &&
                          (candidate.find(wanted) != std::string::npos || wanted.find(candidate) == 0);
        const std::size_t far = part ? 1 : distance(wanted, candidate);
        if (far <= std::max<std::size_t>(2, wanted.size() / 3)) ranked.emplace_back(far, row->name);
    }
    std::ranges::stable_sort(ranked, {}, &std::pair<std::size_t, std::string_view>::first);
    std::vector<std::string_view> names;
    for (const auto& [far, similar] : ranked)
        if (names.size() < kMost) names.push_back(similar);
    return names;
}

}  // namespace pral::objects
