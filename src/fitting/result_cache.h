// The results of earlier fits, found again by exactly equal requests: a workbook asks for the same fit at every
// recalculation.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "base/recently_used.h"
#include "fitting/fitted_family.h"

namespace pral::fitting {

struct FitKey {
    std::string key;
    int code;
    bool uncertainty;
    double TruncMin, TruncMax, first_parameter;
};

class ResultCache {
  public:
    /// The parameters of that fit, or null.
    const Parameters* find(const FitKey& key, std::span<const double> data);
    /// A result with more data than the memory holds is not kept.
    void store(const FitKey& key, std::span<const double> data, const Parameters& parameters);

  private:
    /// 4 million values, with the names.
    static constexpr std::size_t kMostResults = 64, kMostBytes = 32'000'000;
    struct Entry {
        FitKey key;
        std::vector<double> data;
        Parameters parameters;
    };
    RecentlyUsed<Entry> results_{kMostResults, kMostBytes};
};

}  // namespace pral::fitting
