// What classic fits keep: the time that they may take, and the results of earlier ones, found again by exactly equal
// requests, since a workbook repeats its fits at every recalculation.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "base/recently_used.h"
#include "fitting/fitted_family.h"

namespace pral::classic {

using fitting::Parameters;

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

/// The memory of the process.
struct FitMemory {
    /// A fit may take this long.
    double timeout_seconds = 60;
    ResultCache results;
    /// How often the likelihood has been evaluated by fits that succeeded, since the library was loaded.
    long evaluations = 0;
};
FitMemory& fit_memory();

}  // namespace pral::classic
