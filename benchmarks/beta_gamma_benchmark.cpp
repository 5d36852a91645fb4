// The gamma and beta kin, Student's t and the noncentral distributions.
#include "family_benchmarks.h"

PRAL_BENCHMARK_FAMILY(Gamma, 0.3, 1.0);
PRAL_BENCHMARK_FAMILY(Gamma, 2.5, 1.0);
PRAL_BENCHMARK_FAMILY(Gamma, 50.0, 1.0);
PRAL_BENCHMARK_FAMILY(Gamma, 1e4, 1.0);
PRAL_BENCHMARK_FAMILY(LogGamma, 2.0, 0.5, 0.0);
PRAL_BENCHMARK_FAMILY(Beta, 2.0, 5.0);
PRAL_BENCHMARK_FAMILY(PERT, -1.0, 0.0, 3.0);
PRAL_BENCHMARK_FAMILY(PERTAlt, 1.0, 2.0, 4.0, 0.1, 0.9);
PRAL_BENCHMARK_FAMILY(F, 3.0, 10.0);
PRAL_BENCHMARK_FAMILY(Student, 3.0);
BENCHMARK(pral::benchmarks::Quantile<PralNCChiSq_Core, 5.0, 10.0>);
BENCHMARK(pral::benchmarks::Array<PralNCChiSqArray_Core, 5.0, 10.0>)->Arg(1000)->Arg(100000);
