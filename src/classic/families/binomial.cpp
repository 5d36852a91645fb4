#include "distributions/discrete/binomial.h"
#include "distributions/discrete/beta_mixtures.h"
#include "distributions/discrete/logarithmic.h"
#include "distributions/discrete/negative_binomial.h"
#define PRAL_KIN_binomial PRAL_THIS_KIN
#include "classic/family_list.h"
