#include "distributions/data/cumulative.h"
#include "distributions/data/density.h"
#include "distributions/data/discrete_table.h"
#include "distributions/data/step_uniform.h"
#define PRAL_KIN_table PRAL_THIS_KIN
#include "objects/family_rows.h"
