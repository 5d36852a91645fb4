#include "classic/variants.h"
#define PRAL_KIN_inflated PRAL_THIS_KIN
#include "classic/family_list.h"
