#include "distributions/continuous/cauchy.h"
#include "distributions/continuous/laplace.h"
#include "distributions/continuous/logistic.h"
#define PRAL_KIN_symmetric PRAL_THIS_KIN
#include "classic/family_list.h"
