#include "distributions/continuous/exponential.h"
#include "distributions/continuous/extreme_value.h"
#include "distributions/continuous/lifetime.h"
#include "distributions/continuous/pareto.h"
#include "distributions/continuous/weibull.h"
#define PRAL_KIN_extreme PRAL_THIS_KIN
#include "classic/family_list.h"
