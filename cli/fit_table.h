// The families that can be fitted, and their fits behind one signature.
#pragma once

#include <optional>
#include <vector>

#include "families.h"

namespace cli {

/// A sample to which families are fitted.
struct FitData {
    std::vector<double> values;
    std::optional<double> min, max;  // where the sample is truncated
    bool shift = false;              // a shift is fitted as well
};

struct Fitted {
    std::vector<double> parameters;
    std::optional<double> shift;
    double log_likelihood;
};

bool can_be_fitted(const Family& family);

/// Throws the library's error text when there is no fit. A family whose fit takes no shift is fitted without one.
Fitted fit(const Family& family, const FitData& data);

/// The number of identifiable parameters, which information criteria count.
int free_parameters(const Family& family);

}  // namespace cli
