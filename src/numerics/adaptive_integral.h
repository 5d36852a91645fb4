// Integrals of functions whose smoothness is not known: panels are halved until the halves agree with the whole.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <span>
#include <vector>

#include "numerics/gauss_legendre.h"

namespace pral::numerics {

/// The integrals over [a, b] of N functions. `values(points, out)` fills out[i] with the N values at points[i], many points
/// at a time, so that costly functions may be evaluated in one call. A panel is accepted when halving it changes no
/// integral by more than `tolerance` of the sum of their absolute values so far; at most kMostPanels panels, which bounds
/// the cost of functions with many steps.
template <std::size_t N, class Values>
std::array<double, N> adaptive_integral(double a, double b, double tolerance, Values values) {
    constexpr std::size_t kMostPanels = 4000, kPoints = 2 * std::size(kLegendre);
    struct Panel {
        double from, to;
        std::array<double, N> sum;
        int depth;
    };
    std::array<double, kPoints> points;
    std::array<std::array<double, N>, kPoints> at;
    std::array<double, N> total = {}, size = {};
    const auto panel = [&](double from, double to, int depth) {
        const double middle = 0.5 * (from + to), half = 0.5 * (to - from);
        for (std::size_t i = 0; i < std::size(kLegendre); ++i) {
            points[2 * i] = middle - half * kLegendre[i][0];
            points[2 * i + 1] = middle + half * kLegendre[i][0];
        }
        values(std::span<const double>(points), std::span<std::array<double, N>>(at));
        Panel made = {from, to, {}, depth};
        for (std::size_t i = 0; i < kPoints; ++i)
            for (std::size_t k = 0; k < N; ++k) made.sum[k] += half * kLegendre[i / 2][1] * at[i][k];
        return made;
    };
    std::vector<Panel> waiting = {panel(a, b, 0)};
    for (std::size_t k = 0; k < N; ++k) size[k] = std::fabs(waiting[0].sum[k]);
    for (std::size_t done = 0; !waiting.empty(); ++done) {
        const Panel whole = waiting.back();
        waiting.pop_back();
        const double middle = 0.5 * (whole.from + whole.to);
        const Panel left = panel(whole.from, middle, whole.depth + 1),
                    right = panel(middle, whole.to, whole.depth + 1);
        bool agree = true;
        for (std::size_t k = 0; k < N; ++k) {
            const double both = left.sum[k] + right.sum[k];
            size[k] = std::max(size[k], std::fabs(total[k]) + std::fabs(both));
            agree &= !(std::fabs(both - whole.sum[k]) > tolerance * size[k]);
        }
        constexpr int kDeepest = 60;
        if (agree || whole.depth >= kDeepest || done + waiting.size() >= kMostPanels) {
            for (std::size_t k = 0; k < N; ++k) total[k] += left.sum[k] + right.sum[k];
        } else {
            waiting.push_back(right);
            waiting.push_back(left);
        }
    }
    return total;
}

}  // namespace pral::numerics
