#include "statistics/comparison.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace pral::statistics {

double theil_u(Data x, Data y) {
    double difference = 0, length_x = 0, length_y = 0;
    for (std::size_t i = 0; i < x.size(); ++i) {
        difference += (x[i] - y[i]) * (x[i] - y[i]);
        length_x += x[i] * x[i];
        length_y += y[i] * y[i];
    }
    return std::sqrt(difference) / (std::sqrt(length_y) + std::sqrt(length_x));
}

int dominance(Data x, Data y) {
    std::vector<double> a(x.begin(), x.end()), b(y.begin(), y.end());
    std::sort(a.begin(), a.end());
    std::sort(b.begin(), b.end());
    const double scale = static_cast<double>(a.size()) * static_cast<double>(b.size());
    bool x_first = true, y_first = true, x_second = true, y_second = true;
    double integral = 0, area = 0;
    for (std::size_t i = 0, j = 0; i < a.size() || j < b.size();) {
        const double here = j == b.size() || (i < a.size() && a[i] <= b[j]) ? a[i] : b[j];
        while (i < a.size() && a[i] == here) ++i;
        while (j < b.size() && b[j] == here) ++j;
        // (F_y - F_x) times both counts, exactly
        const auto ahead = static_cast<std::int64_t>(j) * static_cast<std::int64_t>(a.size()) -
                           static_cast<std::int64_t>(i) * static_cast<std::int64_t>(b.size());
        x_first = x_first && ahead >= 0;
        y_first = y_first && ahead <= 0;
        if (i == a.size() && j == b.size()) break;
        const double next = j == b.size() || (i < a.size() && a[i] <= b[j]) ? a[i] : b[j];
        const double step =
            static_cast<double>(ahead) / scale * (next / 2 - here / 2);  // halves cannot overflow
        integral += step;
        area += std::fabs(step);
        const double rounding = 1e-12 * area;
        x_second = x_second && integral >= -rounding;
        y_second = y_second && integral <= rounding;
    }
    if (x_first || y_first) return x_first == y_first ? 0 : (x_first ? 1 : -1);
    if (x_second || y_second) return x_second == y_second ? 0 : (x_second ? 2 : -2);
    return 0;
}

bool covers(Data xs, double x) {
    if (xs.empty()) return false;
    const auto [smallest, largest] = std::minmax_element(xs.begin(), xs.end());
    return x >= *smallest && x <= *largest;
}

Message interpolate(double x, Data xs, Data ys, double& out) {
    if (!covers(xs, x)) return "Error: Value must lie within {independent} range";
    if (std::adjacent_find(xs.begin(), xs.end()) != xs.end())
        return "Error: {independent} must contain unique values";
    out = ys[xs.size() - 1];
    for (std::size_t i = 0; i + 1 < xs.size(); ++i) {
        if (x == xs[i]) {
            out = ys[i];
            break;
        }
        if (xs[i] < x && x < xs[i + 1]) {
            out = ys[i] + (ys[i + 1] - ys[i]) * (x - xs[i]) / (xs[i + 1] - xs[i]);
            break;
        }
    }
    return nullptr;
}

}  // namespace pral::statistics
