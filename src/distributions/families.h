// Every family type of the library, for those who need them all.
#pragma once

#include "distributions/continuous/exponential.h"
#include "distributions/continuous/normal.h"
#include "distributions/continuous/uniform.h"
