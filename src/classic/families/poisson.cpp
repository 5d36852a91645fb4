#include "classic/short_cuts.h"
#include "distributions/discrete/delaporte.h"
#include "distributions/discrete/poisson_mixtures.h"
#include "distributions/discrete/skellam.h"
#define PRAL_KIN_poisson PRAL_THIS_KIN
#include "classic/family_list.h"
