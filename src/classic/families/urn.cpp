#include "distributions/discrete/hypergeometric.h"
#define PRAL_KIN_urn PRAL_THIS_KIN
#include "classic/family_list.h"
