// What all simulated paths share: draws that may be refused, steps of time, and the way from log returns to prices.
#pragma once

#include <cmath>
#include <span>

#include "distributions/continuous/normal.h"
#include "distributions/draws.h"
#include "numerics/constants.h"

namespace pral::timeseries {

using numerics::finite_or_limit;

/// Ends a path: a family has refused the parameters of a draw.
struct RefusedDraw {
    Message objection;
};

/// Values as bare calls of the families draw them, of one stream.
class Draws {
  public:
    explicit Draws(RandomStream& stream) : stream_(stream) {}

    template <Family D>
    double operator()(const D& d) {
        double value = 0;
        if (const Message objection = draw(value, d, stream_)) throw RefusedDraw{objection};
        return value;
    }
    double normal(double mean, double deviation) { return (*this)(Normal{mean, deviation}); }

  private:
    RandomStream& stream_;
};

/// Simulates what `body` writes. A refused draw ends it, and what was written stays; the objection is returned, or null.
template <class Body>
Message unless_refused(RandomStream& stream, Body body) {
    Draws draws(stream);
    try {
        body(draws);
        return nullptr;
    } catch (const RefusedDraw& refused) {
        return refused.objection;
    }
}

/// The lengths of successive steps: those between time stamps, the first one from `now`, or 1 without any.
class Clock {
  public:
    Clock(const double* stamps, double now) : stamps_(stamps), now_(now) {}

    Message check(int n) const {
        for (int i = 0; stamps_ != nullptr && i + 1 < n; ++i) {
            if (!(stamps_[i] < stamps_[i + 1]))
                return "Error: {TimeStamps} array must be sorted by ascending order";
        }
        return nullptr;
    }
    double step() {
        if (stamps_ == nullptr) return 1;
        const double before = now_;
        now_ = *stamps_++;
        return now_ - before;
    }

  private:
    const double* stamps_;
    double now_;
};

/// What a price model makes of its log returns: the returns themselves when `log_return` is not 0, else prices.
struct Output {
    int log_return;
    double last_value;
};

/// Objections that several models share. The text of the first one names another number than its check.
inline constexpr Message kTwoStepsMessage = "Error: output array size must be >=1";
inline constexpr Message kPositiveLastValue = "if LogReturn is False then LastValue must be >0";

/// Simulates a model of log returns, which has
///
///   check(n)            the message of the first argument that is out of its range for a path of n steps, or null
///   start(draws)        draws the shocks before the first step, where it needs any
///   next(draws)         the log return of the next step
///   kLastValueMessage   the objection to a last price that is not positive, where it has one
///
/// A price beyond the largest double stays there until a fall leads it back. Returns the first objection, or null; what has
/// been written before it stays.
template <class Model>
Message price_path(std::span<double> out, Model model, Output output, RandomStream& stream) {
    if (const Message objection = model.check(static_cast<int>(out.size()))) return objection;
    if constexpr (requires { Model::kLastValueMessage; }) {
        if (output.log_return == 0 && !(output.last_value > 0)) return Model::kLastValueMessage;
    }
    return unless_refused(stream, [&](Draws& draws) {
        if constexpr (requires { model.start(draws); }) model.start(draws);
        double price = output.last_value;
        for (double& value : out) {
            const double log_return = model.next(draws);
            if (output.log_return == 0) {
                price = finite_or_limit(price * finite_or_limit(std::exp(log_return)));
                value = price;
            } else {
                value = finite_or_limit(log_return);
            }
        }
    });
}

}  // namespace pral::timeseries
