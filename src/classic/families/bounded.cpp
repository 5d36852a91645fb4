#include "distributions/continuous/kumaraswamy.h"
#include "distributions/continuous/pareto.h"
#include "distributions/continuous/triangle.h"
#include "distributions/continuous/uniform.h"
#define PRAL_KIN_bounded PRAL_THIS_KIN
#include "classic/family_list.h"
