// Every family type of the library, for those who need them all.
#pragma once

#include "distributions/continuous/cauchy.h"
#include "distributions/continuous/exponential.h"
#include "distributions/continuous/extreme_value.h"
#include "distributions/continuous/gamma.h"
#include "distributions/continuous/lognormal.h"
#include "distributions/continuous/normal.h"
#include "distributions/continuous/uniform.h"
#include "distributions/continuous/weibull.h"
#include "distributions/data/cumulative.h"
#include "distributions/data/density.h"
#include "distributions/data/discrete_table.h"
#include "distributions/data/step_uniform.h"
#include "distributions/discrete/binomial.h"
#include "distributions/discrete/poisson.h"
