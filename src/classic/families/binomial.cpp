#include "classic/short_cuts.h"
#include "distributions/discrete/beta_mixtures.h"
#include "distributions/discrete/logarithmic.h"
#define PRAL_KIN_binomial PRAL_THIS_KIN
#include "classic/family_list.h"
