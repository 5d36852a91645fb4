// Families with elementary cumulatives: extreme values, Weibull, Pareto, intervals, lifetimes.
#include "family_benchmarks.h"

PRAL_BENCHMARK_FAMILY(ExtValueMax, 1.0, 2.0);
PRAL_BENCHMARK_FAMILY(GEV, 1.0, 2.0, 0.25);
PRAL_BENCHMARK_FAMILY(Weibull, 2.0, 3.0);
PRAL_BENCHMARK_FAMILY(WeibullAlt, 1.0, 0.1, 5.0, 0.9, 0.0);
PRAL_BENCHMARK_FAMILY(Pareto, 2.0, 1.0);
PRAL_BENCHMARK_FAMILY(Burr, 1.0, 2.0, 3.0, 0.5);
PRAL_BENCHMARK_FAMILY(Triangle, 0.0, 1.0, 3.0);
PRAL_BENCHMARK_FAMILY(TriangleAlt, 1.0, 2.0, 4.0, 0.1, 0.9);
PRAL_BENCHMARK_FAMILY(GTU, 0.0, 1.0, 2.0, 4.0, 2.5, 3.0);
PRAL_BENCHMARK_FAMILY(LogUniform, 1.0, 10.0);
PRAL_BENCHMARK_FAMILY(Kumaraswamy, 2.0, 3.0);
PRAL_BENCHMARK_FAMILY(Lifetime3, 1.0, -1.0, 1.0);
