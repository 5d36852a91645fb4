// The exported economic series: what they check and draw stands in timeseries/economic.h.
#include "classic/stream.h"
#include "classic/vectors.h"
#include "timeseries/economic.h"

using namespace pral::timeseries;

namespace {

/// Runs `body` on the path; an exception within it has a message of its own here.
template <class Body>
bool economic_frame(double* out, int n, Body body) {
    return pral::guarded(out, n, [&](int count) {
        try {
            return body(std::span<double>(out, static_cast<std::size_t>(count)));
        } catch (...) {
            return pral::fail("Error: Unknown error!");
        }
    });
}

template <class Inflation, class Series>
bool economic(double* out, int n, const Inflation& inflation, const Series& series) {
    return economic_frame(out, n, [&](std::span<double> path) {
        return pral::succeeded(economic_path(path, inflation, series, pral::random_stream()));
    });
}

bool short_term(double* out, int n, const double* long_term, int rates, const ShortTermSpread& spread) {
    return economic_frame(out, n, [&](std::span<double> path) {
        const int count = static_cast<int>(path.size());
        if (rates < count)
            return pral::fail("Error: {longTermRate} array length must be >= output array length");
        if (!pral::given({{"longTermRate", long_term}}, count)) return false;
        return pral::succeeded(
            short_term_path(path, {long_term, path.size()}, spread, pral::random_stream()));
    });
}

}  // namespace

PRAL_EXPORT_VECTOR(TimePriceInflation, (double QMU, double QSD, double QA), (QMU, QSD, QA),
                   economic(out, size, SimulatedInflation(QMU, QSD, QA), PriceInflation{}));

PRAL_EXPORT_VECTOR(TimeWageInflation,
                   (double QMU, double QSD, double QA, double WMU, double WSD, double WA, double WW1,
                    double WW2),
                   (QMU, QSD, QA, WMU, WSD, WA, WW1, WW2),
                   economic(out, size, SimulatedInflation(QMU, QSD, QA),
                            WageInflation{WMU, WSD, WA, WW1, WW2}));

PRAL_EXPORT_VECTOR(TimeWageInflationA,
                   (const double* inflation, int inflationN, double WMU, double WSD, double WA, double WW1,
                    double WW2),
                   (inflation, inflationN, WMU, WSD, WA, WW1, WW2),
                   economic(out, size, GivenInflation{inflation, inflationN},
                            WageInflation{WMU, WSD, WA, WW1, WW2}));

PRAL_EXPORT_VECTOR(TimeDividends,
                   (double QMU, double QSD, double QA, double YSD, double DMU, double DSD, double DB,
                    double DW, double DX, double DD, double DY),
                   (QMU, QSD, QA, YSD, DMU, DSD, DB, DW, DX, DD, DY),
                   economic(out, size, SimulatedInflation(QMU, QSD, QA),
                            Dividends{YSD, DMU, DSD, DB, DW, DX, DD, DY}));

PRAL_EXPORT_VECTOR(TimeDividendsA,
                   (const double* inflation, int inflationN, double YSD, double DMU, double DSD, double DB,
                    double DW, double DX, double DD, double DY),
                   (inflation, inflationN, YSD, DMU, DSD, DB, DW, DX, DD, DY),
                   economic(out, size, GivenInflation{inflation, inflationN},
                            Dividends{YSD, DMU, DSD, DB, DW, DX, DD, DY}));

PRAL_EXPORT_VECTOR(TimeShareYields,
                   (double QMU, double QSD, double QA, double YMU, double YSD, double YA, double YW),
                   (QMU, QSD, QA, YMU, YSD, YA, YW),
                   economic(out, size, SimulatedInflation(QMU, QSD, QA), ShareYields{YMU, YSD, YA, YW}));

PRAL_EXPORT_VECTOR(TimeShareYieldsA,
                   (const double* inflation, int inflationN, double YMU, double YSD, double YA, double YW),
                   (inflation, inflationN, YMU, YSD, YA, YW),
                   economic(out, size, GivenInflation{inflation, inflationN}, ShareYields{YMU, YSD, YA, YW}));

PRAL_EXPORT_VECTOR(TimeLongTermInterestRate,
                   (double QMU, double QSD, double QA, double YSD, double CMU, double CSD, double CA,
                    double CD, double CAA, double CAAA, double CW, double CY),
                   (QMU, QSD, QA, YSD, CMU, CSD, CA, CD, CAA, CAAA, CW, CY),
                   economic(out, size, SimulatedInflation(QMU, QSD, QA),
                            LongTermInterestRate{YSD, CMU, CSD, CA, CD, CAA, CAAA, CW, CY}));

PRAL_EXPORT_VECTOR(TimeLongTermInterestRateA,
                   (const double* inflation, int inflationN, double YSD, double CMU, double CSD, double CA,
                    double CD, double CAA, double CAAA, double CW, double CY),
                   (inflation, inflationN, YSD, CMU, CSD, CA, CD, CAA, CAAA, CW, CY),
                   economic(out, size, GivenInflation{inflation, inflationN},
                            LongTermInterestRate{YSD, CMU, CSD, CA, CD, CAA, CAAA, CW, CY}));

PRAL_EXPORT_VECTOR(
    TimeShortTermInterestRate,
    (double QMU, double QSD, double QA, double YSD, double CMU, double CSD, double CA, double CD, double CAA,
     double CAAA, double CW, double CY, double BMU, double BSD, double BA),
    (QMU, QSD, QA, YSD, CMU, CSD, CA, CD, CAA, CAAA, CW, CY, BMU, BSD, BA),
    economic(out, size, SimulatedInflation(QMU, QSD, QA),
             ShortTermInterestRate{{YSD, CMU, CSD, CA, CD, CAA, CAAA, CW, CY}, {BMU, BSD, BA}}));

PRAL_EXPORT_VECTOR(TimeShortTermInterestRateA,
                   (const double* longTermRate, int rateN, double BMU, double BSD, double BA),
                   (longTermRate, rateN, BMU, BSD, BA),
                   short_term(out, size, longTermRate, rateN, {BMU, BSD, BA}));
