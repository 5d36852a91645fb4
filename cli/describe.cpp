// pral describe: a family by its name alone, otherwise a distribution.
#include "commands.h"
#include "errors.h"

namespace cli {

void describe(const DescribeOptions& options) {
    const bool modified = options.min || options.max || options.min_percentile || options.max_percentile ||
                          options.shift || !options.limits.empty();
    const bool name_alone =
        options.numbers.empty() && !modified && options.distribution.find('(') == std::string::npos;
    if (name_alone) return describe_family(find_family(options.distribution), options.format);
    describe_distribution(options);
}

}  // namespace cli
