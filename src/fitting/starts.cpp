#include "fitting/starts.h"

namespace pral::fitting {

std::vector<double> thinned(std::span<const double> values, std::size_t count) {
    if (values.size() <= count) return {values.begin(), values.end()};
    const Sample x(values);
    std::vector<double> part = {x.min(), x.max()};
    const std::size_t step = values.size() / count;
    for (std::size_t i = 0; i < values.size(); i += step) part.push_back(values[i]);
    return part;
}

std::vector<double> moved(const Sample& x, double origin) {
    std::vector<double> values(x.values().begin(), x.values().end());
    for (double& value : values) value -= origin;
    return values;
}

std::vector<double> logarithms(const Sample& x) {
    std::vector<double> values(x.values().begin(), x.values().end());
    for (double& value : values) value = std::log(value);
    return values;
}

std::span<const double> end_distances() {
    static constexpr std::array kDistances = {0.002, 0.02, 0.2, 1.0};
    return kDistances;
}

}  // namespace pral::fitting
