#include "distributions/inflated/variants.h"
#define PRAL_KIN_truncated PRAL_THIS_KIN
#include "objects/family_rows.h"
