#include "distributions/continuous/beta.h"
#include "distributions/continuous/pert.h"
#include "distributions/continuous/student.h"
#define PRAL_KIN_beta PRAL_THIS_KIN
#include "classic/family_list.h"
