#include "distributions/continuous/normal.h"
#include "distributions/continuous/first_passage.h"
#include "distributions/continuous/johnson.h"
#include "distributions/continuous/lognormal.h"
#define PRAL_KIN_normal PRAL_THIS_KIN
#include "classic/family_list.h"
