// Linked annual series for economic projections: price and wage inflation, dividends, share yields, interest rates. Each is
// driven by price inflation, simulated within the call or given by the caller.
#pragma once

#include <span>

#include "timeseries/path.h"

namespace pral::timeseries {

inline bool within_one(double weight) { return weight >= -1 && weight <= 1; }

/// A first-order autoregression about a mean: x_t ~ Normal(mu + a (x_(t-1) - mu), sd).
struct Autoregression {
    double mu, sd, a, x;

    double next(Draws& draws) {
        x = draws.normal(mu + a * (x - mu), sd);
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
    double next(Draws& draws) { return process.next(draws); }
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
    double next(Draws&) { return *++inflation; }
};

struct PriceInflation {
    Message check() const { return nullptr; }
    template <class Inflation>
    void simulate(std::span<double> out, Inflation inflation, Draws& draws) const {
        out[0] = 1;
        for (std::size_t t = 1; t < out.size(); ++t) out[t] = grown(out[t - 1], inflation.next(draws));
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
    void simulate(std::span<double> out, Inflation inflation, Draws& draws) const {
        Autoregression residual{WMU, WSD, WA, 0};
        double before = inflation.first();
        out[0] = 100;
        for (std::size_t t = 1; t < out.size(); ++t) {
            const double own = residual.next(draws);
            const double now = inflation.next(draws);
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
    void simulate(std::span<double> out, Inflation inflation, Draws& draws) const {
        double smoothed = 1;
        out[0] = 0;
        for (std::size_t t = 1; t < out.size(); ++t) {
            const double residual = draws.normal(0, 1);
            const double now = inflation.next(draws);
            smoothed = (1 - DD) * smoothed + DD * now;
            out[t] =
                draws.normal(DW * smoothed + DX * now + DMU + YSD * DY * residual + DSD * DB * residual, DSD);
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
    void simulate(std::span<double> out, Inflation inflation, Draws& draws) const {
        const double mean = finite_or_limit(std::log(YMU));
        Autoregression residual{mean, YSD, YA, mean};
        out[0] = 0;
        for (std::size_t t = 1; t < out.size(); ++t) {
            const double own = residual.next(draws);
            out[t] = finite_or_limit(YW * inflation.next(draws) + own);
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
    void simulate(std::span<double> out, Inflation inflation, Draws& draws) const {
        double smoothed = inflation.smoothed_first();
        // The logarithm of the real rate over CMU, and its past.
        double real = 0, before = 0, long_before = 0;
        out[0] = finite_or_limit(CW * smoothed + CMU);
        for (std::size_t t = 1; t < out.size(); ++t) {
            const double yield_shock = draws.normal(0, YSD);
            smoothed = CD * inflation.next(draws) + (1 - CD) * smoothed;
            const double next =
                draws.normal(CA * real + CAA * before + CAAA * long_before + CY * yield_shock, CSD);
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
    void simulate(std::span<double> out, const double* long_term, Draws& draws) const {
        Autoregression spread{BMU, BSD, BA, BMU};
        for (std::size_t t = 0; t < out.size(); ++t) {
            const double B = t == 0 ? BMU : spread.next(draws);
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
    void simulate(std::span<double> out, Inflation inflation, Draws& draws) const {
        long_term.simulate(out, inflation, draws);
        spread.simulate(out, out.data(), draws);
    }
};

/// A series over its inflation, whose arguments are checked first. Returns the first objection, or null; what has been
/// written before it stays.
template <class Inflation, class Series>
Message economic_path(std::span<double> out, const Inflation& inflation, const Series& series,
                      RandomStream& stream) {
    if (const Message objection = inflation.check(static_cast<int>(out.size()))) return objection;
    if (const Message objection = series.check()) return objection;
    if (out.empty()) return nullptr;
    return unless_refused(stream, [&](Draws& draws) { series.simulate(out, inflation, draws); });
}

/// The short-term rate over a long-term rate that the caller has.
inline Message short_term_path(std::span<double> out, std::span<const double> long_term,
                               const ShortTermSpread& spread, RandomStream& stream) {
    if (const Message objection = spread.check()) return objection;
    return unless_refused(stream, [&](Draws& draws) { spread.simulate(out, long_term.data(), draws); });
}

}  // namespace pral::timeseries
