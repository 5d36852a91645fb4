// pral quantile: the values at given percentiles of either tail, which may be given by their logarithms.
#include <fmt/format.h>

#include <algorithm>

#include "commands.h"
#include "errors.h"

namespace cli {

void quantile(const QuantileOptions& options) {
    const DistributionParts parts = parts_of(options, true);
    const auto distribution = make_distribution(options, parts);
    const std::vector<double> percentiles = read_values(options.percentiles, parts.values, "-u");
    for (const double u : percentiles) {
        if (options.log ? u <= 0 : u >= 0 && u <= 1) continue;
        throw UsageError(
            options.log ? fmt::format("the logarithm of a percentile is 0 at most, not {}", number_text(u))
                        : fmt::format("a percentile lies between 0 and 1, not at {}", number_text(u)));
    }

    std::vector<double> values(percentiles.size());
    if (options.log)
        options.upper ? distribution.log_upper_quantile(percentiles, values)
                      : distribution.log_quantile(percentiles, values);
    else
        options.upper ? distribution.upper_quantile(percentiles, values)
                      : distribution.quantile(percentiles, values);
    Rows rows(options.format,
              {fmt::format("{}{}u", options.log ? "log_" : "", options.upper ? "upper_" : ""), "quantile"});
    for (std::size_t i = 0; i < values.size(); ++i) rows.add({percentiles[i], values[i]});
    rows.end();
}

}  // namespace cli
