#include "distributions/data/segments.h"

namespace pral::data {

Knots knots_of_masses(std::vector<double> x, std::vector<double> masses) {
    const std::size_t count = masses.size();
    Knots knots{std::move(x), std::vector<double>(count + 1), running_sums_from_above(masses),
                std::move(masses)};
    running_sums(knots.rise, std::span(knots.lower).subspan(1));
    knots.upper.push_back(0);
    const double total = knots.lower.back();
    for (double& sum : knots.lower) sum /= total;
    for (double& sum : knots.upper) sum = std::min(sum / total, 1.0);
    for (double& mass : knots.rise) mass /= total;
    return knots;
}

}  // namespace pral::data
