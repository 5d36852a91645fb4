// A distribution as it stands on the command line.
#include "distribution.h"

#include <fmt/format.h>

#include <cmath>

#include "arguments.h"
#include "errors.h"
#include "text.h"

namespace cli {

namespace {

bool is_text(const std::string& distribution) { return distribution.find('(') != distribution.npos; }

pral::Distribution parsed(const std::string& text) {
    try {
        return pral::Distribution::parse(text);
    } catch (const pral::Error& error) {
        if (error.code() == PRAL_ERROR_PARAMETER) throw;
        throw UsageError(printable(error.what()));
    }
}

double percentile(double value) {
    if (value >= 0 && value <= 1) return value;
    throw UsageError("--min-percentile and --max-percentile lie between 0 and 1");
}

pral::Distribution truncated(const pral::Distribution& whole, const DistributionOptions& options) {
    const auto& [min, max, min_p, max_p] =
        std::tie(options.min, options.max, options.min_percentile, options.max_percentile);
    if ((min && min_p) || (max && max_p)) throw UsageError("a bound is a value or a percentile, not both");
    if (!min && !max)
        return whole.truncated_to_percentiles(percentile(min_p.value_or(0)), percentile(max_p.value_or(1)));
    using End = pral::Distribution::End;
    return whole.truncated(min_p ? End(pral::Percentile{percentile(*min_p)}) : End(min.value_or(-INFINITY)),
                           max_p ? End(pral::Percentile{percentile(*max_p)}) : End(max.value_or(INFINITY)));
}

}  // namespace

DistributionParts parts_of(const DistributionOptions& options, bool with_values) {
    if (is_text(options.distribution)) {
        if (!with_values && !options.numbers.empty())
            throw UsageError(
                fmt::format("\"{}\" is the whole distribution; behind it stands {}, which is not wanted",
                            shown(options.distribution), shown(options.numbers.front())));
        return {nullptr, {}, options.numbers};
    }
    const Family& family = find_family(options.distribution);
    const std::size_t wanted = family.parameters.size(), given = options.numbers.size();
    if (given < wanted || (given > wanted && !with_values))
        throw UsageError(fmt::format("{} takes {} parameter{} ({}), not {}", family.name, wanted,
                                     wanted == 1 ? "" : "s", parameter_names(family), given));
    DistributionParts parts = {&family, {}, {}};
    for (std::size_t i = 0; i < wanted; ++i) {
        const Parameter& parameter = family.parameters[i];
        const std::string& text = options.numbers[i];
        parts.parameters.push_back(parameter.is_table ? parse_numbers(text, parameter.name)
                                                      : std::vector{parse_number(text, parameter.name)});
    }
    parts.values.assign(options.numbers.begin() + static_cast<std::ptrdiff_t>(wanted), options.numbers.end());
    return parts;
}

pral::Distribution make_distribution(const DistributionOptions& options, const DistributionParts& parts) {
    auto made = parts.family == nullptr ? parsed(options.distribution)
                                        : pral::Distribution(parts.family->name, parts.parameters);
    if (options.min || options.max || options.min_percentile || options.max_percentile)
        made = truncated(made, options);
    return options.shift ? made.shifted(*options.shift) : std::move(made);
}

}  // namespace cli
