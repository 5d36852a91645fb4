// A family as a Univariate: the family's functions, made total. One instantiation a family serves all callers that choose
// a distribution while they run. It holds the functions inside of the support only: what is the same for all families is
// compiled once (univariate.cpp).
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "distributions/arrays.h"
#include "distributions/discrete/exact_inversion.h"
#include "distributions/univariate.h"

namespace pral {

/// The parameters of a family in order: a number is an array of one.
using FamilyArguments = std::vector<std::vector<double>>;

/// What an object of a family is made from. Bit i of `tables` stands for a parameter i that is a table.
struct FamilyOrigin {
    const char* name;
    std::uint64_t tables;
    FamilyArguments arguments;
};

/// What is objected to when integers may be real numbers where the mathematics lets them: not the trials of a family whose
/// support ends with them (kWholeTrials).
template <Family D>
Message check_real(const D& d) {
    if constexpr (requires { D::kWholeTrials; })
        return d.check();
    else if constexpr (requires { d.check_range(); })
        return d.check_range();
    else
        return d.check();
}

namespace detail {

/// The library's largest double as the infinity that it stands for.
inline double infinite_again(double x) {
    if (x >= numerics::kInfinity) return HUGE_VAL;
    return x <= -numerics::kInfinity ? -HUGE_VAL : x;
}

/// One value with all of the probability.
void evaluate_point(double point, Function function, std::span<const double> in, std::span<double> out);

/// Splits `in` into what lies inside, which `inner` changes in place, all at once, and the others, which get answers of
/// their own: look(x, answer) tells whether x is inside and may change it, or else gives the answer. The arrays may be the same.
template <class Look, class Inner>
void evaluate_inside(std::span<const double> in, std::span<double> out, Look look, Inner inner) {
    std::uint64_t outside = 0;
    for (const double given : in) {
        double x = given, answer = 0;
        outside |= look(x, answer) ? std::uint64_t{0} : std::uint64_t{1};
    }
    if (outside == 0) {
        for (std::size_t i = 0; i < in.size(); ++i) {
            double x = in[i], answer = 0;
            look(x, answer);
            out[i] = x;
        }
        if (!in.empty()) inner(out);
        return;
    }
    std::vector<std::pair<std::size_t, double>> answers;
    std::size_t inside = 0;
    for (std::size_t i = 0; i < in.size(); ++i) {
        double x = in[i], answer = 0;
        if (look(x, answer))
            out[inside++] = x;
        else
            answers.emplace_back(i, answer);
    }
    if (inside > 0) inner(out.first(inside));
    for (std::size_t i = in.size(); !answers.empty();) {
        --i;
        const bool answered = answers.back().first == i;
        out[i] = answered ? answers.back().second : out[--inside];
        if (answered) answers.pop_back();
    }
}

/// Whether p is a percentile inside (0,1); otherwise the end of the support that it stands for, or NaN.
inline bool is_inner_percentile(double p, Side side, const Support& support, double& end) {
    const double at_zero = side == Side::lower ? support.lower : support.upper,
                 at_one = side == Side::lower ? support.upper : support.lower;
    end = p == 0 ? at_zero : p == 1 ? at_one : numerics::kNaN;
    return (p > 0) & (p < 1);
}

/// The largest integer up to x, by additions that vectors have.
inline double whole_below(double x) {
    constexpr double kToInteger = 0x1.8p52, kFractions = 0x1p51;
    const double nearest = (x + kToInteger) - kToInteger, below = nearest > x ? nearest - 1 : nearest;
    return std::fabs(x) < kFractions ? below : x < 0 || x > 0 ? std::floor(x) : x;
}

/// evaluate(values), in place, for a function of each value alone. Where the values are integers that repeat in a long
/// array each of them is evaluated once.
template <class Evaluate>
void each_once(std::span<double> x, Evaluate evaluate) {
    constexpr std::size_t kFewest = 32;
    constexpr double kMostForEach = 8;  // places in the table of the integers between the extremes
    if (x.size() < kFewest) return evaluate(x);
    double least = x[0], most = x[0];
    std::uint64_t others = 0;
    for (const double k : x) {
        others |= (std::fabs(k) < 0x1p51) & (k == whole_below(k)) ? std::uint64_t{0} : std::uint64_t{1};
        least = k < least ? k : least;
        most = k > most ? k : most;
    }
    if (others != 0 || !(most - least < kMostForEach * static_cast<double>(x.size()))) return evaluate(x);
    const auto place = [least](double k) { return static_cast<std::size_t>(k - least); };
    std::vector<double> table(place(most) + 1, numerics::kNaN), distinct;
    for (const double k : x) table[place(k)] = k;
    for (const double k : table)
        if (!std::isnan(k)) distinct.push_back(k);
    if (distinct.size() > x.size() / 2) return evaluate(x);
    std::vector<double> results = distinct;
    evaluate(std::span(results));
    for (std::size_t i = 0; i < distinct.size(); ++i) table[place(distinct[i])] = results[i];
    for (double& k : x) k = table[place(k)];
}

}  // namespace detail

/// What the objects of all families have in common.
class FamilyObject : public Univariate {
  public:
    /// The objection to the parameters; without one all else may be called.
    Message check() const { return objection_; }

    Values values() const override { return values_; }
    Support support() const override { return support_; }
    void evaluate(Function function, std::span<const double> in, std::span<double> out) const override;
    Tails tails_below(double x) const override;
    double log_within(double lower, double upper) const override;
    std::optional<Moments> moments() const override;
    std::optional<double> mode() const override;
    std::string text() const override;

  protected:
    explicit FamilyObject(FamilyOrigin origin) : origin_(std::move(origin)) {}
    const FamilyArguments& arguments() const { return origin_.arguments; }
    void refuse(Message objection) { objection_ = objection; }
    void complete(Values values, const Support& support, const std::optional<double>& point);

    /// The function of each x inside the support, or of each probability inside (0,1), in place. False where the family has
    /// no such function of its own, which only logarithms of tails may lack.
    virtual bool inside(Function function, std::span<double> x) const = 0;
    /// ln P(from < X <= to), both finite and inside the support, from the density, which falls towards `side`; NaN where
    /// that is no way.
    virtual double log_far_probability(double from, double to, Side side) const = 0;
    virtual std::optional<Moments> own_moments() const = 0;
    virtual std::optional<double> own_mode() const = 0;
    /// Whether numbers next to a value count as that value.
    virtual bool counts_neighbours() const = 0;
    /// Whether the family's logarithms of tails come from logarithms where the tails are beyond doubles, and never from a
    /// denormal number (kExactLogarithms).
    virtual bool has_exact_logarithms() const = 0;

  private:
    void evaluate_all(Function function, std::span<const double> in, std::span<double> out) const;
    double log_beyond(Side side, double x) const;
    void log_tails(Side side, std::span<double> x) const;
    void log_tails_from(Side side, std::span<const double> x, std::span<double> logs) const;

    FamilyOrigin origin_;
    Message objection_ = nullptr;
    Values values_ = Values::continuous;
    Support support_ = {};
    std::optional<double> point_;
};

template <Family D>
class UnivariateFamily final : public FamilyObject {
  public:
    /// `make` turns the arguments, which this keeps, into the family.
    template <class Make>
    UnivariateFamily(FamilyOrigin origin, Make make)
        : FamilyObject(std::move(origin)), d_(make(arguments())) {
        refuse(check_real(d_));
        if (check() != nullptr) return;
        if constexpr (requires { d_.complete(); }) d_.complete();
        constexpr Values kValues = [] {
            if constexpr (requires { D::kIntegers; }) return Values::integers;
            if constexpr (requires { D::kDiscrete; }) return Values::countable;
            return Values::continuous;
        }();
        complete(kValues, d_.support(), d_.point_mass());
    }

    double moment_limit(Side side) const override {
        if constexpr (requires { d_.moment_limit(side); })
            return d_.moment_limit(side);
        else
            return HUGE_VAL;
    }

  private:
    bool inside(Function function, std::span<double> x) const override {
        if constexpr (HasArrays<D>) {
            for (; !x.empty(); x = x.subspan(std::min(kArrayBlock, x.size())))
                evaluate_each(d_, function, x.first(std::min(kArrayBlock, x.size())));
            return true;
        } else {
            return inside_one_by_one(function, x);
        }
    }
    bool inside_one_by_one(Function function, std::span<double> x) const {
        switch (function) {
            case Function::log_density:
                return each(x, [this](double at) { return d_.log_density(at); });
            case Function::cumulative:
                return each(x, [this](double at) { return d_.cumulative(at); });
            case Function::survival:
                return each(x, [this](double at) { return d_.survival(at); });
            case Function::log_cumulative:
                if constexpr (requires { d_.log_cumulative(x[0]); })
                    return each(x, [this](double at) { return d_.log_cumulative(at); });
                else
                    return false;
            case Function::log_survival:
                if constexpr (requires { d_.log_survival(x[0]); })
                    return each(x, [this](double at) { return d_.log_survival(at); });
                else
                    return false;
            case Function::quantile:
                return invert(Side::lower, x);
            case Function::upper_quantile:
                return invert(Side::upper, x);
        }
        return false;
    }
    template <class F>
    static bool each(std::span<double> x, F function) {
        for (double& at : x) at = function(at);
        return true;
    }

    double log_far_probability([[maybe_unused]] double from, [[maybe_unused]] double to,
                               [[maybe_unused]] Side side) const override {
        if constexpr (HasFarTails<D>) return log_probability(d_, from, to, side);
        return numerics::kNaN;
    }
    std::optional<Moments> own_moments() const override {
        if constexpr (requires { d_.moments(); }) return d_.moments();
        return std::nullopt;
    }
    std::optional<double> own_mode() const override {
        if constexpr (requires { d_.mode(); })
            return d_.mode();
        else if constexpr (requires { d_.peak(); })
            return d_.peak();
        else
            return std::nullopt;
    }
    bool counts_neighbours() const override {
        if constexpr (requires { D::kCountsNeighbours; }) return D::kCountsNeighbours;
        return false;
    }

    bool has_exact_logarithms() const override {
        return requires { D::kExactLogarithms; };
    }

    bool invert(Side side, std::span<double> tails) const {
        if constexpr (requires { D::kIntegers; }) {
            exact_inverses(d_, side, tails);
            return true;
        } else if constexpr (requires { d_.quantiles(tails); }) {
            if (side == Side::lower) {
                d_.quantiles(tails);
                return true;
            }
            if constexpr (HasUpperQuantiles<D>) {
                d_.quantiles_upper(tails);
                return true;
            }
        }
        if constexpr (requires { d_.quantile_table(); }) {
            constexpr std::size_t kTableFrom = 300;  // fewer values do not repay the bins
            if (tails.size() >= kTableFrom) {
                auto table = d_.quantile_table();
                const Side other = side == Side::lower ? Side::upper : Side::lower;
                return each(tails, [&](double tail) {
                    const double x = tail > 0.5 ? table(other, 1 - tail) : table(side, tail);
                    return std::isnan(x) ? exact_inverse(d_, {side, tail}) : x;
                });
            }
        }
        return each(tails, [&](double tail) { return exact_inverse(d_, {side, tail}); });
    }

    D d_;
};

}  // namespace pral
