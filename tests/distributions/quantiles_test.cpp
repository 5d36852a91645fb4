// How quantiles are found: searches end when rounding alone is left, and arrays answer as single calls do.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "distributions/families.h"
#include "distributions/quantile_search.h"
#include "distributions/truncated.h"
#include "support/accuracy.h"

namespace {

using namespace pral;
using namespace pral::test;

/// Counts how often the tails are asked for.
template <class D>
struct Counted {
    const D& d;
    mutable int count = 0;

    Support support() const { return d.support(); }
    double cumulative(double x) const { return ++count, d.cumulative(x); }
    double survival(double x) const { return ++count, d.survival(x); }
    double log_density(double x) const { return d.log_density(x); }
};

template <class D, class Start>
void expect_short_searches(const char* name, const D& d, int most, Start start) {
    for (const Side side : {Side::lower, Side::upper}) {
        for (const double tail : {0.5, 0.37, 0.1, 0.0283, 1e-3, 1e-6, 1e-12, 1e-21, 1e-60, 1e-186}) {
            const Counted<D> counted{d};
            const double x = search_quantile(counted, side, tail, start(side, tail));
            const std::string what = std::string(name) + " tail " + std::to_string(std::log10(tail));
            EXPECT_LE(counted.count, most) << what;
            // As near as the tail's change from one double to the next allows.
            const double reached = side == Side::lower ? d.cumulative(x) : d.survival(x);
            const double step = std::exp(d.log_density(x) - std::log(reached)) * std::fabs(x) * 0x1p-52;
            EXPECT_LE(std::fabs(std::log(reached / tail)), 1e-13 + 2 * step) << what;
        }
    }
}

/// A bracket of all doubles takes 64 halvings; what Newton's steps need depends on where they start.
TEST(Quantiles, SearchesEndWhenRoundingAloneIsLeft) {
    const auto own = [](const auto& d) {
        return [&d](Side side, double tail) { return d.start(side, tail); };
    };
    const auto middle = [](Side, double) { return 1.0; };
    const NCChiSq narrow(2, 1e5), central(50, 0.1), wide(3, 800);
    const NCF ratio(5, 1e4, 300), alike(1e5, 1e5, 1e5);
    expect_short_searches("NCChiSq(2, 1e5)", narrow, 6, own(narrow));
    expect_short_searches("NCChiSq(50, 0.1)", central, 6, own(central));
    expect_short_searches("NCChiSq(3, 800)", wide, 25, own(wide));
    expect_short_searches("NCF(5, 1e4, 300)", ratio, 25, own(ratio));
    expect_short_searches("NCF(1e5, 1e5, 1e5)", alike, 6, own(alike));
    expect_short_searches("skew normal", StandardSkewNormal(3), 25, middle);
    expect_short_searches("normal mixture", StandardNormalMix(2.5), 25, middle);
    expect_short_searches("slash", StandardSlash(), 25, middle);
}

/// Single calls and arrays, each from its own code; an infinite bin of the table must not answer.
TEST(Quantiles, TablesAnswerAsSingleCallsDo) {
    const auto compare = [](const char* name, const auto& d) {
        const Truncated kept(d, true, {});
        std::vector<double> values;
        for (int i = 1; i < 4000; ++i) values.push_back(i / 4000.0);
        const std::vector<double> percentiles = values;
        kept.quantiles(values);
        for (std::size_t i = 0; i < values.size(); ++i) {
            const double single = kept.quantile(percentiles[i]);
            EXPECT_LE(relative_error(values[i], single), 1e-13) << name << " at " << percentiles[i];
        }
    };
    compare("F(1, 0.02)", F(1, 0.02));
    compare("F(0.02, 0.03)", F(0.02, 0.03));
    compare("Pearson6(2, 0.01, 1)", Pearson6(2, 0.01, 1));
    compare("Pearson6(0.01, 0.02, 1)", Pearson6(0.01, 0.02, 1));
    compare("Gamma(0.01, 1)", Gamma(0.01, 1));
    compare("Pearson5(0.02, 1)", Pearson5(0.02, 1));
    compare("Beta(0.01, 0.01)", Beta(0.01, 0.01));
    compare("InvGauss(1, 1e-200)", InvGauss(1, 1e-200));
    compare("Student(1)", Student(1));
}

}  // namespace
