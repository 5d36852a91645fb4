// Two series or samples against each other, and a table read between its points.
#pragma once

#include "base/message.h"
#include "statistics/moments.h"

namespace pral::statistics {

/// Theil's inequality coefficient of two series of equal length: |x - y| / (|x| + |y|), Euclidean norms.
double theil_u(Data x, Data y);

/// Stochastic dominance between two samples (neither empty, all values finite), larger values being preferred:
///   1   x dominates y in the first order: F_x <= F_y everywhere, and < somewhere
///   2   x dominates y in the second order only: the integral of F_y - F_x from the left is >= 0 everywhere, and > 0
///       somewhere
///   -1, -2  the same of y over x;  0  neither
/// F are the empirical distribution functions; first order is decided exactly, the integral to 1e-12 of the area
/// between them.
int dominance(Data x, Data y);

/// Whether x lies between the smallest and the largest of the values.
bool covers(Data xs, double x);

/// The polygon through the points (xs, ys), taken in the given order, at x: the first stretch that holds x decides.
/// Returns the message of the failing check, or null.
Message interpolate(double x, Data xs, Data ys, double& out);

}  // namespace pral::statistics
