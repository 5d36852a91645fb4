// Families made of the normal, logistic and Laplace distributions.
#include "family_benchmarks.h"

PRAL_BENCHMARK_FAMILY(LognormalE, 0.0, 1.0);
PRAL_BENCHMARK_FAMILY(NormalMix, 0.0, 1.0, 1.5);
PRAL_BENCHMARK_FAMILY(SkewNormal, 0.0, 1.0, 3.0);
PRAL_BENCHMARK_FAMILY(Slash, 0.0, 1.0);
PRAL_BENCHMARK_FAMILY(LogLogistic, 4.0, 1.0);
PRAL_BENCHMARK_FAMILY(HS, 0.0, 1.0);
PRAL_BENCHMARK_FAMILY(Laplace, 0.0, 1.0);
PRAL_BENCHMARK_FAMILY(Error, 0.0, 1.0, 1.5);
PRAL_BENCHMARK_FAMILY(JohnsonB, 0.0, 1.0, 0.0, 1.0);
PRAL_BENCHMARK_FAMILY(JohnsonU, 0.0, 1.0, 1.0, 0.0);
PRAL_BENCHMARK_FAMILY(Fatigue, 0.0, 1.0, 0.5);
PRAL_BENCHMARK_FAMILY(InvGauss, 1.0, 1.0);
PRAL_BENCHMARK_FAMILY(Levy, 1.0, 0.0);
