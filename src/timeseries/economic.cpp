// Linked annual series for economic projections: price and wage inflation, dividends, share yields, interest rates. Each is
// driven by price inflation, simulated within the call or given by the caller.
#include <span>

#include "timeseries/exports.h"

namespace pral::timeseries {
namespace {

bool within_one(double weight) { return weight >= -1 && weight <= 1; }

/// A first-order autoregression about a mean: x_t ~ Normal(mu + a (x_(t-1) - mu), sd).
struct Autoregression {
    double mu, sd, a, x;

    double next() {
        x = normal(mu + a * (x - mu), sd);
        return x;
    }
};

/// Price inflation that is simulated: I_0 = 0.
struct SimulatedInflation {
    Autoregression process;

    SimulatedInflation(double mu, double sd, double a) : process{mu, sd, a, 0} {}
    Message check(int) const {
        if (!(process.sd >= 0)) return "Error: QSD must be greater or equal to 0!";
        if (!within_one(process.a)) return "Error: QA must be in [-1,1] interval!";
        return nullptr;
    }
    double first() const { return 0; }
    double smoothed_first() const { return process.mu; }
    double next() { return process.next(); }
};

/// Price inflation that the caller has: I_0, I_1, ...
struct GivenInflation {
    const double* inflation;
    int count;

    Message check(int n) const {
        if (count < n) return "Error: {inflation} array length must be >= output array length";
        if (inflation == nullptr && n > 0) return "Error: inflation must not be null";
        return nullptr;
    }
    double first() const { return *inflation; }
    double smoothed_first() const { return *inflation; }
    double next() { return *++inflation; }
};

struct PriceInflation {
    Message check() const { return nullptr; }
    template <class Inflation>
    void simulate(std::span<double> out, Inflation inflation) const {
        out[0] = 1;
        for (std::size_t t = 1; t < out.size(); ++t) out[t] = grown(out[t - 1], inflation.next());
    }
    /// An index after growth by a logarithm.
    static double grown(double index, double log_growth) {
        return finite_or_limit(index * finite_or_limit(std::exp(log_growth)));
    }
};

struct WageInflation {
    double WMU, WSD, WA, WW1, WW2;

    Message check() const {
        if (!(WSD >= 0)) return "Error: WSD must be greater or equal to 0!";
        if (!within_one(WA)) return "Error: WA must be in [-1,1] interval!";
        return nullptr;
    }
    template <class Inflation>
    void simulate(std::span<double> out, Inflation inflation) const {
        Autoregression residual{WMU, WSD, WA, 0};
        double before = inflation.first();
        out[0] = 100;
        for (std::size_t t = 1; t < out.size(); ++t) {
            const double own = residual.next();
            const double now = inflation.next();
            out[t] = PriceInflation::grown(out[t - 1], WW1 * now + WW2 * before + own);
            before = now;
        }
    }
};

struct Dividends {
    double YSD, DMU, DSD, DB, DW, DX, DD, DY;

    Message check() const {
        if (!(YSD >= 0)) return "Error: YSD must be greater or equal to 0!";
        if (!(DSD >= 0)) return "Error: DSD must be greater or equal to 0!";
        if (!within_one(DB)) return "Error: DB must be in [-1,1] interval!";
        if (!within_one(DD)) return "Error: DD must be in [-1,1] interval!";
        return nullptr;
    }
    /// Both residual terms use the same residual, that of the current step.
    template <class Inflation>
    void simulate(std::span<double> out, Inflation inflation) const {
        double smoothed = 1;
        out[0] = 0;
        for (std::size_t t = 1; t < out.size(); ++t) {
            const double residual = normal(0, 1);
            const double now = inflation.next();
            smoothed = (1 - DD) * smoothed + DD * now;
            out[t] = normal(DW * smoothed + DX * now + DMU + YSD * DY * residual + DSD * DB * residual, DSD);
        }
    }
};

struct ShareYields {
    double YMU, YSD, YA, YW;

    Message check() const {
        if (!(YSD >= 0)) return "Error: YSD must be greater or equal to 0!";
        if (!within_one(YA)) return "Error: YA must be in [-1,1] interval!";
        return nullptr;
    }
    template <class Inflation>
    void simulate(std::span<double> out, Inflation inflation) const {
        const double mean = finite_or_limit(std::log(YMU));
        Autoregression residual{mean, YSD, YA, mean};
        out[0] = 0;
        for (std::size_t t = 1; t < out.size(); ++t) {
            const double own = residual.next();
            out[t] = finite_or_limit(YW * inflation.next() + own);
        }
    }
};

struct LongTermInterestRate {
    double YSD, CMU, CSD, CA, CD, CAA, CAAA, CW, CY;

    Message check() const {
        if (!(YSD >= 0)) return "Error: YSD must be greater or equal to 0!";
        if (!(CSD >= 0)) return "Error: CSD must be greater or equal to 0!";
        if (!within_one(CA)) return "Error: CA must be in [-1,1] interval!";
        if (!within_one(CD)) return "Error: CD must be in [-1,1] interval!";
        if (!within_one(CAA)) return "Error: CAA must be in [-1,1] interval!";
        if (!within_one(CAAA)) return "Error: CAAA must be in [-1,1] interval!";
        return nullptr;
    }
    template <class Inflation>
    void simulate(std::span<double> out, Inflation inflation) const {
        double smoothed = inflation.smoothed_first();
        double real = 0, before = 0,
               long_before = 0;  // the logarithm of the real rate over CMU, and its past
        out[0] = finite_or_limit(CW * smoothed + CMU);
        for (std::size_t t = 1; t < out.size(); ++t) {
            const double yield_shock = normal(0, YSD);
            smoothed = CD * inflation.next() + (1 - CD) * smoothed;
            const double next = normal(CA * real + CAA * before + CAAA * long_before + CY * yield_shock, CSD);
            long_before = before;
            before = real;
            real = next;
            out[t] = finite_or_limit(CW * smoothed + CMU * std::exp(real));
        }
    }
};

/// The spread that makes the short-term rate of the long-term one: out[t] = C_t e^(-B_t), B_0 = BMU.
struct ShortTermSpread {
    double BMU, BSD, BA;

    Message check() const {
        if (!(BSD >= 0)) return "Error: BSD must be greater or equal to 0!";
        if (!within_one(BA)) return "Error: BA must be in [-1,1] interval!";
        return nullptr;
    }
    void simulate(std::span<double> out, const double* long_term) const {
        Autoregression spread{BMU, BSD, BA, BMU};
        for (std::size_t t = 0; t < out.size(); ++t) {
            const double B = t == 0 ? BMU : spread.next();
            out[t] = finite_or_limit(long_term[t] * std::exp(-B));
        }
    }
};

struct ShortTermInterestRate {
    LongTermInterestRate long_term;
    ShortTermSpread spread;

    Message check() const {
        const Message objection = long_term.check();
        return objection != nullptr ? objection : spread.check();
    }
    template <class Inflation>
    void simulate(std::span<double> out, Inflation inflation) const {
        long_term.simulate(out, inflation);
        spread.simulate(out, out.data());
    }
};

/// The checks, then what `body` writes into an array that is not empty.
template <class Body>
bool economic_path(std::span<double> out, Message objection, Body body) {
    if (objection != nullptr) return fail(objection);
    if (out.empty()) return true;
    try {
        return unless_refused(body);
    } catch (...) {
        return fail("Error: Unknown error!");
    }
}

/// A series over its inflation, whose arguments are checked first.
template <class Inflation, class Series>
bool economic_path(double* out, int n, const Inflation& inflation, const Series& series) {
    return guarded(out, n, [&](int count) {
        const Message objection = inflation.check(count);
        const std::span<double> path(out, static_cast<std::size_t>(count));
        return economic_path(path, objection != nullptr ? objection : series.check(),
                             [&] { series.simulate(path, inflation); });
    });
}

/// The short-term rate over a long-term rate that the caller has.
bool short_term_path(double* out, int n, const double* long_term, int rates, const ShortTermSpread& spread) {
    return guarded(out, n, [&](int count) {
        if (rates < count) return fail("Error: {longTermRate} array length must be >= output array length");
        if (!given({{"longTermRate", long_term}}, count)) return false;
        const std::span<double> path(out, static_cast<std::size_t>(count));
        return economic_path(path, spread.check(), [&] { spread.simulate(path, long_term); });
    });
}

}  // namespace
}  // namespace pral::timeseries

using namespace pral::timeseries;

PRAL_EXPORT_PATH(PriceInflation, (double QMU, double QSD, double QA), (QMU, QSD, QA),
                 economic_path(out, n, SimulatedInflation(QMU, QSD, QA), PriceInflation{}))

PRAL_EXPORT_PATH(WageInflation,
                 (double QMU, double QSD, double QA, double WMU, double WSD, double WA, double WW1,
                  double WW2),
                 (QMU, QSD, QA, WMU, WSD, WA, WW1, WW2),
                 economic_path(out, n, SimulatedInflation(QMU, QSD, QA),
                               WageInflation{WMU, WSD, WA, WW1, WW2}))

PRAL_EXPORT_PATH(WageInflationA,
                 (const double* inflation, int inflationN, double WMU, double WSD, double WA, double WW1,
                  double WW2),
                 (inflation, inflationN, WMU, WSD, WA, WW1, WW2),
                 economic_path(out, n, GivenInflation{inflation, inflationN},
                               WageInflation{WMU, WSD, WA, WW1, WW2}))

PRAL_EXPORT_PATH(Dividends,
                 (double QMU, double QSD, double QA, double YSD, double DMU, double DSD, double DB, double DW,
                  double DX, double DD, double DY),
                 (QMU, QSD, QA, YSD, DMU, DSD, DB, DW, DX, DD, DY),
                 economic_path(out, n, SimulatedInflation(QMU, QSD, QA),
                               Dividends{YSD, DMU, DSD, DB, DW, DX, DD, DY}))

PRAL_EXPORT_PATH(DividendsA,
                 (const double* inflation, int inflationN, double YSD, double DMU, double DSD, double DB,
                  double DW, double DX, double DD, double DY),
                 (inflation, inflationN, YSD, DMU, DSD, DB, DW, DX, DD, DY),
                 economic_path(out, n, GivenInflation{inflation, inflationN},
                               Dividends{YSD, DMU, DSD, DB, DW, DX, DD, DY}))

PRAL_EXPORT_PATH(ShareYields,
                 (double QMU, double QSD, double QA, double YMU, double YSD, double YA, double YW),
                 (QMU, QSD, QA, YMU, YSD, YA, YW),
                 economic_path(out, n, SimulatedInflation(QMU, QSD, QA), ShareYields{YMU, YSD, YA, YW}))

PRAL_EXPORT_PATH(ShareYieldsA,
                 (const double* inflation, int inflationN, double YMU, double YSD, double YA, double YW),
                 (inflation, inflationN, YMU, YSD, YA, YW),
                 economic_path(out, n, GivenInflation{inflation, inflationN}, ShareYields{YMU, YSD, YA, YW}))

PRAL_EXPORT_PATH(LongTermInterestRate,
                 (double QMU, double QSD, double QA, double YSD, double CMU, double CSD, double CA, double CD,
                  double CAA, double CAAA, double CW, double CY),
                 (QMU, QSD, QA, YSD, CMU, CSD, CA, CD, CAA, CAAA, CW, CY),
                 economic_path(out, n, SimulatedInflation(QMU, QSD, QA),
                               LongTermInterestRate{YSD, CMU, CSD, CA, CD, CAA, CAAA, CW, CY}))

PRAL_EXPORT_PATH(LongTermInterestRateA,
                 (const double* inflation, int inflationN, double YSD, double CMU, double CSD, double CA,
                  double CD, double CAA, double CAAA, double CW, double CY),
                 (inflation, inflationN, YSD, CMU, CSD, CA, CD, CAA, CAAA, CW, CY),
                 economic_path(out, n, GivenInflation{inflation, inflationN},
                               LongTermInterestRate{YSD, CMU, CSD, CA, CD, CAA, CAAA, CW, CY}))

PRAL_EXPORT_PATH(ShortTermInterestRate,
                 (double QMU, double QSD, double QA, double YSD, double CMU, double CSD, double CA, double CD,
                  double CAA, double CAAA, double CW, double CY, double BMU, double BSD, double BA),
                 (QMU, QSD, QA, YSD, CMU, CSD, CA, CD, CAA, CAAA, CW, CY, BMU, BSD, BA),
                 economic_path(out, n, SimulatedInflation(QMU, QSD, QA),
                               ShortTermInterestRate{{YSD, CMU, CSD, CA, CD, CAA, CAAA, CW, CY},
                                                     {BMU, BSD, BA}}))

PRAL_EXPORT_PATH(ShortTermInterestRateA,
                 (const double* longTermRate, int rateN, double BMU, double BSD, double BA),
                 (longTermRate, rateN, BMU, BSD, BA),
                 short_term_path(out, n, longTermRate, rateN, {BMU, BSD, BA}))
