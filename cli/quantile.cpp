// pral quantile: the values at given percentiles.
#include "arguments.h"
#include "commands.h"
#include "errors.h"

namespace cli {

void quantile(const QuantileOptions& options) {
    const auto [family, arguments, modifiers] = make_call(options);
    std::vector<std::vector<Cell>> answers;
    for (const std::string& text : options.percentiles) {
        for (const double u : parse_numbers(text, "-u")) {
            // To the library a percentile of -1 is one that was not given.
            if (u == -1) throw UsageError("-u: a percentile lies between 0 and 1");
            double value = 0;
            require(family.value(&value, arguments, &u, modifiers));
            answers.push_back({u, value});
        }
    }
    Rows rows(options.format, {"u", "quantile"});
    for (const auto& answer : answers) rows.add(answer);
    rows.end();
}

}  // namespace cli
