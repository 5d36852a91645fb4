#include "fitting/maximise.h"

#include <gsl/gsl_errno.h>
#include <gsl/gsl_multimin.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <exception>
#include <memory>
#include <new>
#include <optional>

#include "matrix/decomposition.h"
#include "numerics/gsl.h"

namespace pral::fitting {

namespace {

struct FreeMinimiser {
    void operator()(gsl_multimin_fminimizer* minimiser) const { gsl_multimin_fminimizer_free(minimiser); }
};

/// The objective as GSL calls it, with vectors that are contiguous: always a finite number, and no exception on its way
/// through C. It notices when nothing is left to tell points apart.
class Watched {
  public:
    Watched(const Objective& objective, const Deadline& deadline)
        : objective_(objective), deadline_(deadline) {}

    static double call(const gsl_vector* x, void* watched) noexcept {
        return static_cast<Watched*>(watched)->value({x->data, x->size});
    }
    /// The last so many values have all been the lowest to rounding: the steps are too short for the parameters.
    bool flat(std::size_t values) const { return level_ >= values; }
    /// Hands on what the objective has thrown; values since then count for nothing.
    void rethrow() const {
        if (thrown_) std::rethrow_exception(thrown_);
    }

  private:
    static constexpr double kRefused = 1e100;

    double value(std::span<const double> x) noexcept {
        if (thrown_) return kRefused;
        try {
            deadline_.check();
            return noted(objective_(x));
        } catch (...) {
            thrown_ = std::current_exception();
            return kRefused;
        }
    }
    double noted(double value) {
        constexpr double kRounding = 1e-12;
        if (!std::isfinite(value)) value = kRefused;
        level_ = std::fabs(value - lowest_) <= kRounding * std::fabs(lowest_) ? level_ + 1 : 0;
        lowest_ = std::min(lowest_, value);
        return value;
    }

    const Objective& objective_;
    const Deadline& deadline_;
    std::exception_ptr thrown_;
    double lowest_ = HUGE_VAL;
    std::size_t level_ = 0;
};

}  // namespace

void minimise(const Objective& objective, Point& point, const SimplexRules& rules, const Deadline& deadline) {
    const numerics::GslErrorsReturn guard;
    const std::size_t dimension = point.size();
    if (!std::ranges::all_of(point, [](double x) { return std::isfinite(x); })) return;
    Watched watched(objective, deadline);
    gsl_multimin_function function = {Watched::call, dimension, &watched};
    Point steps(dimension, rules.step);
    const auto start = gsl_vector_view_array(point.data(), dimension);
    const auto step = gsl_vector_view_array(steps.data(), dimension);
    const auto* type =
        rules.incremental ? gsl_multimin_fminimizer_nmsimplex2 : gsl_multimin_fminimizer_nmsimplex;
    const std::unique_ptr<gsl_multimin_fminimizer, FreeMinimiser> minimiser(
        gsl_multimin_fminimizer_alloc(type, dimension));
    if (!minimiser) throw std::bad_alloc();
    int status = gsl_multimin_fminimizer_set(minimiser.get(), &function, &start.vector, &step.vector);
    watched.rethrow();
    for (int i = 0; status == GSL_SUCCESS && i < rules.most_iterations; ++i) {
        status = gsl_multimin_fminimizer_iterate(minimiser.get());
        watched.rethrow();
        if (status != GSL_SUCCESS || watched.flat(4 * (dimension + 1))) break;
        const double size = gsl_multimin_fminimizer_size(minimiser.get());
        if (gsl_multimin_test_size(size, rules.tolerance) == GSL_SUCCESS) break;
    }
    for (std::size_t i = 0; i < dimension; ++i) point[i] = gsl_vector_get(minimiser->x, i);
}

namespace {

constexpr std::size_t kMost = 6;
using Row = std::array<double, kMost>;

using Square = std::array<Row, kMost>;

/// The steps along which differences are taken, one a row.
struct Axes {
    Square steps = {};

    /// Along each coordinate.
    explicit Axes(std::size_t n) {
        constexpr double kStep = 1e-3;
        for (std::size_t i = 0; i < n; ++i) steps[i][i] = kStep;
    }
    /// So many of the steps, in coordinates.
    Row sum(const Row& times, std::size_t n) const {
        Row sum = {};
        for (std::size_t i = 0; i < n; ++i) {
            for (std::size_t j = 0; j < n; ++j) sum[j] += times[i] * steps[i][j];
        }
        return sum;
    }
};

/// The value, gradient and Hessian of a function at a point, in units of the axes' steps.
class LocalModel {
  public:
    LocalModel(const Objective& f, const Maximum& at, const Axes& axes) : n_(at.point.size()) {
        Point x;
        const auto value_at = [&](std::size_t i, double up, std::size_t j) {
            x = at.point;
            for (std::size_t k = 0; k < n_; ++k) x[k] += up * axes.steps[i][k];
            if (j != i) {
                for (std::size_t k = 0; k < n_; ++k) x[k] += axes.steps[j][k];
            }
            return f(x);
        };
        Row above = {};
        for (std::size_t i = 0; i < n_; ++i) {
            above[i] = value_at(i, 1, i);
            const double below = value_at(i, -1, i);
            gradient_[i] = (above[i] - below) / 2;
            hessian_[i][i] = above[i] - 2 * at.value + below;
            valid_ = valid_ && std::isfinite(above[i]) && std::isfinite(below);
        }
        for (std::size_t i = 0; i < n_ && valid_; ++i) {
            for (std::size_t j = 0; j < i; ++j) {
                const double both = value_at(i, 1, j);
                hessian_[i][j] = hessian_[j][i] = both - above[i] - above[j] + at.value;
                valid_ = valid_ && std::isfinite(both);
            }
        }
    }

    bool valid() const { return valid_; }

    /// The step to the maximum of the model whose Hessian's diagonal has been raised by (1 + damping); false when even that
    /// is not negative definite. Cholesky's decomposition.
    bool step(double damping, Row& step) const {
        Square l = {};
        for (std::size_t i = 0; i < n_; ++i) {
            for (std::size_t j = 0; j <= i; ++j) {
                double sum = i == j ? -hessian_[i][i] + damping * std::fabs(hessian_[i][i]) : -hessian_[i][j];
                for (std::size_t k = 0; k < j; ++k) sum -= l[i][k] * l[j][k];
                if (i == j && !(sum > 1e-10 * std::fabs(hessian_[i][i]))) return false;
                l[i][j] = i == j ? std::sqrt(sum) : sum / l[j][j];
            }
        }
        step = gradient_;
        for (std::size_t i = 0; i < n_; ++i) {
            for (std::size_t k = 0; k < i; ++k) step[i] -= l[i][k] * step[k];
            step[i] /= l[i][i];
        }
        for (std::size_t i = n_; i-- > 0;) {
            for (std::size_t k = i + 1; k < n_; ++k) step[i] -= l[k][i] * step[k];
            step[i] /= l[i][i];
        }
        return true;
    }

    double gain(const Row& step) const {
        double sum = 0;
        for (std::size_t i = 0; i < n_; ++i) sum += gradient_[i] * step[i];
        return 0.5 * sum;
    }

    /// The Hessian's principal axes and the curvatures along them.
    struct Principal {
        Square directions = {};
        Row curvatures = {};
        bool concave = true;
    };
    std::optional<Principal> principal() const {
        std::vector<double> matrix;
        for (std::size_t i = 0; i < n_; ++i)
            matrix.insert(matrix.end(), hessian_[i].begin(),
                          hessian_[i].begin() + static_cast<std::ptrdiff_t>(n_));
        const auto found = matrix::symmetric_eigen(matrix.data(), static_cast<int>(n_));
        if (!found) return std::nullopt;
        Principal principal;
        for (std::size_t k = 0; k < n_; ++k) {
            principal.curvatures[k] = std::fabs(found->values[k]);
            principal.concave = principal.concave && found->values[k] < 0;
            for (std::size_t i = 0; i < n_; ++i) principal.directions[k][i] = found->vectors[i * n_ + k];
        }
        return principal;
    }
    /// The step upwards that is Newton's where the function is concave, and as long along the axes where it is not.
    Row step(const Principal& principal) const {
        Row step = {};
        for (std::size_t k = 0; k < n_; ++k) {
            double slope = 0;
            for (std::size_t i = 0; i < n_; ++i) slope += principal.directions[k][i] * gradient_[i];
            const double length = slope / std::fmax(principal.curvatures[k], 1e-300);
            for (std::size_t i = 0; i < n_; ++i) step[i] += length * principal.directions[k][i];
        }
        return step;
    }

  private:
    std::size_t n_;
    bool valid_ = true;
    Row gradient_ = {};
    Square hessian_ = {};
};

constexpr double kLongestStep = 2;

/// One damped step upwards; false when none is found. A step that was damped, or that gained more than the model promised,
/// as on a slope that levels off exponentially, is doubled as long as that leads higher.
bool climb(const Objective& objective, const LocalModel& model, const Axes& axes, Maximum& best,
           double& damping) {
    constexpr double kFirstDamping = 1e-3, kMostDamping = 1e9, kExcess = 1.2;
    for (; damping < kMostDamping; damping = std::max(kFirstDamping, 10 * damping)) {
        Row times = {};
        if (!model.step(damping, times)) continue;
        const Row step = axes.sum(times, best.point.size());
        const Point start = best.point;
        const double before = best.value;
        const auto reach = [&](double factor) {
            Point next = start;
            for (std::size_t i = 0; i < next.size(); ++i)
                next[i] += factor * std::clamp(step[i], -kLongestStep, kLongestStep);
            const double value = objective(next);
            if (!(value > best.value)) return false;
            best = {std::move(next), value};
            return true;
        };
        if (!reach(1)) continue;
        if (damping > 0 || best.value - before > kExcess * model.gain(times)) {
            for (double factor = 2; factor < 100 && reach(factor); factor *= 2) {
            }
        }
        damping = damping > kFirstDamping ? 0.1 * damping : 0;
        return true;
    }
    return false;
}

/// Newton's method from `best` upwards; whether it ends where the gradient vanishes, or on a slope towards infinity that has
/// become level.
bool newton(const Objective& objective, Maximum& best, double negligible) {
    constexpr int kMostSteps = 60, kLevelSteps = 2;
    const double level_gain = std::max(negligible, 1e-6);
    const Axes axes(best.point.size());
    double damping = 0;
    for (int i = 0, level = 0; i < kMostSteps; ++i) {
        const LocalModel model(objective, best, axes);
        if (!model.valid()) return false;
        Row full = {};
        const bool concave = model.step(0, full);
        if (concave && model.gain(full) < negligible) return true;
        const double before = best.value;
        if (!climb(objective, model, axes, best, damping)) return false;
        level = best.value - before < level_gain ? level + 1 : 0;
        if (level == kLevelSteps) return true;
    }
    return false;
}

/// The best of the points that lie on the way of a step, at it, before or beyond it; false when none is higher than `best`.
bool search_along(const Objective& objective, const Row& step, Maximum& best) {
    constexpr double kShortest = 1e-4, kLongest = 1e3;
    double longest = 0;
    for (const double part : step) longest = std::fmax(longest, std::fabs(part));
    const double first = longest > kLongestStep ? kLongestStep / longest : 1;
    const Point start = best.point;
    const auto reach = [&](double factor) {
        Point next = start;
        for (std::size_t i = 0; i < next.size(); ++i) next[i] += factor * step[i];
        const double value = objective(next);
        if (!(value > best.value)) return false;
        best = {std::move(next), value};
        return true;
    };
    double factor = first;
    while (factor > kShortest * first && !reach(factor)) factor *= 0.5;
    if (!(factor > kShortest * first)) return false;
    if (factor == first) {
        while (factor < kLongest && reach(2 * factor)) factor *= 2;
    } else {
        reach(0.5 * factor);
    }
    return true;
}

/// Climbs along a ridge, which differences along the coordinates do not show: they are taken along the principal axes of the
/// Hessian before, by steps that change the function alike.
bool follow_ridge(const Objective& objective, Maximum& best, double negligible) {
    constexpr int kMostSteps = 40, kLevelSteps = 3;
    constexpr double kChange = 1e-4, kLongestAxis = 0.25;
    const std::size_t n = best.point.size();
    Axes axes(n);
    for (int i = 0, level = 0; i < kMostSteps; ++i) {
        const LocalModel model(objective, best, axes);
        if (!model.valid()) return false;
        const auto principal = model.principal();
        if (!principal) return false;
        const Row times = model.step(*principal);
        if (i > 0 && principal->concave && model.gain(times) < negligible) return true;
        const double before = best.value;
        const bool higher = search_along(objective, axes.sum(times, n), best);
        if (!higher && i > 1) return false;
        level = best.value - before < negligible ? level + 1 : 0;
        if (level == kLevelSteps) return true;
        Axes next(n);
        for (std::size_t k = 0; k < n; ++k) {
            Row axis = axes.sum(principal->directions[k], n);
            double longest = 0;
            for (const double part : axis) longest = std::fmax(longest, std::fabs(part));
            const double scale =
                std::fmin(std::sqrt(2 * kChange / principal->curvatures[k]), kLongestAxis / longest);
            for (double& part : axis) part *= scale;
            next.steps[k] = axis;
        }
        axes = next;
    }
    return false;
}

}  // namespace

Maximum maximise(const Objective& objective, const Point& start, const Deadline& deadline,
                 double negligible) {
    const Objective timed = [&](std::span<const double> x) {
        deadline.check();
        const double value = objective(x);
        return std::isfinite(value) ? value : -HUGE_VAL;
    };
    Maximum best = {start, timed(start)};
    if (start.empty() || start.size() > kMost || !std::isfinite(best.value)) return best;
    constexpr int kMostRounds = 4;
    const double worth_a_round = std::max(negligible, 1e-5);
    constexpr SimplexRules kSimplex = {0.25, 1e-4, 400, true};
    const Objective descent = [&](std::span<const double> x) { return -objective(x); };
    for (int round = 0; round < kMostRounds; ++round) {
        const double before = best.value;
        const bool level = newton(timed, best, negligible);
        if (follow_ridge(timed, best, negligible) || level) return best;
        Point point = best.point;
        minimise(descent, point, kSimplex, deadline);
        if (const double value = timed(point); value > best.value) best = {point, value};
        if (round > 0 && best.value - before < worth_a_round) return best;
    }
    return best;
}

}  // namespace pral::fitting
