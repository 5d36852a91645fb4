#include "fitting/starts.h"

namespace pral::fitting {

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

}  // namespace pral::fitting
