// What all simulated paths share: draws that may be refused, steps of time, and the way from log returns to prices.
#pragma once

#include <cmath>

#include "boundary/call.h"
#include "distributions/continuous/normal.h"
#include "distributions/members.h"
#include "numerics/constants.h"

namespace pral::timeseries {

using numerics::finite_or_limit;

/// Ends a path: a family has refused the parameters of a draw. Its message stands in the error text already.
struct RefusedDraw {};

/// A value of a bare call of the family.
template <Family D>
double drawn(const D& d) {
    double value = 0;
    if (!draw(&value, d)) throw RefusedDraw{};
    return value;
}

inline double normal(double mean, double deviation) { return drawn(Normal{mean, deviation}); }

/// Simulates what `body` writes; a refused draw ends it, and what was written stays.
template <class Body>
bool unless_refused(Body body) {
    try {
        body();
        return true;
    } catch (const RefusedDraw&) {
        return false;
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
///   start()             draws the shocks before the first step, where it needs any
///   next()              the log return of the next step
///   kLastValueMessage   the objection to a last price that is not positive, where it has one
///
/// A price beyond the largest double stays there until a fall leads it back.
template <class Model>
bool price_path(double* out, int n, Model model, Output output) {
    return guarded(out, n, [&](int count) {
        if (const Message objection = model.check(count)) return fail(objection);
        if constexpr (requires { Model::kLastValueMessage; }) {
            if (output.log_return == 0 && !(output.last_value > 0)) return fail(Model::kLastValueMessage);
        }
        return unless_refused([&] {
            if constexpr (requires { model.start(); }) model.start();
            double price = output.last_value;
            for (int t = 0; t < count; ++t) {
                const double log_return = model.next();
                if (output.log_return == 0) {
                    price = finite_or_limit(price * finite_or_limit(std::exp(log_return)));
                    out[t] = price;
                } else {
                    out[t] = finite_or_limit(log_return);
                }
            }
        });
    });
}

}  // namespace pral::timeseries
