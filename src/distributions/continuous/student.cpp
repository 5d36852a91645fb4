#include "distributions/continuous/student.h"

#include "distributions/exports.h"

PRAL_EXPORT_FAMILY(Student, (double nu), (nu));
PRAL_EXPORT_FAMILY(Student3, (double mu, double sigma, double nu), (mu, sigma, nu));
