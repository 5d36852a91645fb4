// Maximisation of a log-likelihood over a handful of coordinates.
#pragma once

#include <functional>
#include <span>
#include <vector>

#include "fitting/deadline.h"

namespace pral::fitting {

/// A function of the coordinates; infinite or NaN where it has no value.
using Objective = std::function<double(std::span<const double>)>;
using Point = std::vector<double>;

struct Maximum {
    Point point;
    double value;
};

/// How GSL's Nelder-Mead simplex searches.
struct SimplexRules {
    double step;       // of every coordinate, to the first vertices
    double tolerance;  // of the simplex's size, absolute
    int most_iterations;
    bool incremental;  // nmsimplex2, otherwise nmsimplex
};

/// Moves `point` to the lowest vertex that the simplex finds. Ends early, with what it has, when GSL reports an error or
/// when the values around are the same to rounding. Throws TimedOut at the deadline.
void minimise(const Objective& objective, Point& point, const SimplexRules& rules, const Deadline& deadline);

/// A local maximum near `start`: Newton's method on central differences, damped after Levenberg and Marquardt, for
/// coordinates of which a step of 1 is a large one; with Nelder-Mead where the function has no second derivatives. The
/// value is within some ten times `negligible` of the maximum. Throws TimedOut at the deadline: what has not been finished
/// is no result.
Maximum maximise(const Objective& objective, const Point& start, const Deadline& deadline,
                 double negligible = 1e-8);

}  // namespace pral::fitting
