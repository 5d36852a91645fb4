#include "distributions/continuous/gamma.h"
#include "distributions/continuous/noncentral.h"
#define PRAL_KIN_gamma PRAL_THIS_KIN
#include "classic/family_list.h"
