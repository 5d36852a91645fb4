#include "statistics/resampling.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "statistics/ranks.h"

namespace pral::statistics {

void shuffle(int count, double* out, RandomStream& stream) {
    // A uniform is its 32-bit word to scale, so the words sort alike.
    std::vector<SortEntry> draws(static_cast<std::size_t>(std::max(count, 0)));
    for (std::size_t i = 0; i < draws.size(); ++i) draws[i] = {stream.word(), static_cast<std::uint32_t>(i)};
    sort_by_key(draws);
    std::transform(draws.begin(), draws.end(), out,
                   [](const SortEntry& draw) { return static_cast<double>(draw.index); });
}

std::vector<double> resample(Data data, RandomStream& stream) {
    std::vector<double> drawn(data.size());
    for (double& value : drawn) value = data[draw_index(data.size(), stream)];
    return drawn;
}

double percentile(std::vector<double>& values, double p) {
    if (!(p >= 0 && p <= 1)) return 0;
    const auto ascending = [](double a, double b) { return a < b || (std::isnan(b) && !std::isnan(a)); };
    const double h = static_cast<double>(values.size() - 1) * p + 1, whole = std::floor(h);
    const auto at = values.begin() + static_cast<std::ptrdiff_t>(whole) - 1;
    std::nth_element(values.begin(), at, values.end(), ascending);
    if (h == whole) return *at;
    const double next = *std::min_element(at + 1, values.end(), ascending);
    return *at + (h - whole) * (next - *at);
}

}  // namespace pral::statistics
