#include "classic/variants.h"
#define PRAL_KIN_truncated PRAL_THIS_KIN
#include "classic/family_list.h"
