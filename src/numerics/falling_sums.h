// Integrals and sums of functions that fall too far for doubles, from their logarithms.
#pragma once

namespace pral::numerics {

/// A function of one number that is only looked at while a call lasts: what the caller has, without a copy of the callee
/// for each kind of function.
class FunctionView {
  public:
    template <class F>
    FunctionView(const F& f)
        : function_(&f),
          call_([](const void* function, double x) { return (*static_cast<const F*>(function))(x); }) {}
    double operator()(double x) const { return call_(function_, x); }

  private:
    const void* function_;
    double (*call_)(const void*, double);
};

/// The sum of f(0), f(1), ... less the integral of f from -1/2 on, of a function that is smooth there: the Euler-Maclaurin
/// formula [delta/24 - 17/5760 delta^3 + ...] f(-1/2) in central differences.
double sum_less_integral(FunctionView f);

/// ln of the integral of e^log_f over [0, room] for an f that falls; -inf for none. The search for the length of the first
/// panel begins at `scale`.
double log_falling_integral(FunctionView log_f, double room, double scale);

/// ln of the sum of f(0), f(1), ..., `terms` of them, for an f that falls; -inf for none. One by one or, where that would
/// take thousands, as the integral from -1/2 on, corrected; then log_f is asked at real numbers, and at some below 0.
double log_falling_sum(FunctionView log_f, double terms);

}  // namespace pral::numerics
