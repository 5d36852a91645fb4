// The results of earlier fits, found again by exactly equal requests: a workbook asks for the same fit at every
// recalculation.
#pragma once

#include <cstdint>
#include <deque>
#include <span>
#include <string>
#include <vector>

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
    const Parameters* find(const FitKey& key, std::span<const double> data) const;
    /// Forgets the oldest results when there are more than 64, or data of more than four million values.
    void store(const FitKey& key, std::span<const double> data, const Parameters& parameters);

  private:
    struct Entry {
        FitKey key;
        std::uint64_t hash;
        std::vector<double> data;
        Parameters parameters;
    };
    std::deque<Entry> entries_;
    std::size_t values_ = 0;
};

}  // namespace pral::fitting
