// Integrals of smooth functions.
#pragma once

namespace pral::numerics {

/// Positive abscissas and weights of the Gauss-Legendre rule with 20 points on [-1, 1] (DLMF 3.5.21).
inline constexpr double kLegendre[][2] = {
    {0.99312859918509492479, 0.017614007139152118312}, {0.96397192727791379127, 0.040601429800386941331},
    {0.91223442825132590587, 0.06267204833410906357},  {0.83911697182221882339, 0.083276741576704748725},
    {0.74633190646015079261, 0.10193011981724043504},  {0.63605368072651502545, 0.11819453196151841731},
    {0.510867001950827098, 0.1316886384491766269},     {0.37370608871541956067, 0.14209610931838205133},
    {0.22778585114164507808, 0.14917298647260374679},  {0.076526521133497333755, 0.1527533871307258507},
};

/// The integral of f over [0, width] in equal panels.
template <typename F>
double integrate(double width, int panels, F f) {
    const double half = 0.5 * width / panels;
    double sum = 0;
    for (int i = panels - 1; i >= 0; --i) {
        const double middle = half * (2 * i + 1);
        for (const auto& [x, weight] : kLegendre) {
            sum += weight * (f(middle - half * x) + f(middle + half * x));
        }
    }
    return half * sum;
}

}  // namespace pral::numerics
