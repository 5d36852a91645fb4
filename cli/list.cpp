// pral list: the families by name, kind or a word of their text or of their other names.
#include <fmt/format.h>

#include <algorithm>
#include <set>

#include "commands.h"
#include "errors.h"
#include "terminal.h"
#include "text.h"

namespace cli {

void list(const ListOptions& options) {
    std::set<std::string> kinds;
    for (const Family& family : families()) kinds.insert(family.kind);
    if (!options.kind.empty() && !kinds.contains(options.kind)) {
        throw UsageError(fmt::format("there is no kind {}; the kinds are {}", options.kind,
                                     joined(kinds, ", ", [](const std::string& kind) { return kind; })));
    }
    const std::string word = lower_case(options.search);
    Rows rows(options.format, {"family", "kind", "parameters", "text"}, screen_width());
    for (const Family& family : families()) {
        const std::string names = parameter_names(family);
        const bool right_kind = options.kind.empty() || options.kind == family.kind;
        const bool found =
            lower_case(fmt::format("{} {} {} {}", family.name, names, family.text, other_names(family)))
                .find(word) != word.npos;
        if (right_kind && found) rows.add({family.name, family.kind, names, family.text});
    }
    rows.end();
}

}  // namespace cli
