#include "distributions/continuous/logistic.h"

#include "distributions/exports.h"

PRAL_EXPORT_FAMILY(Logistic, (double alpha, double beta), (alpha, beta));
PRAL_EXPORT_FAMILY(GLogistic, (double alpha, double beta, double gamma), (alpha, beta, gamma));
PRAL_EXPORT_FAMILY(LogLogistic, (double alpha, double beta), (alpha, beta));
PRAL_EXPORT_FAMILY(LogLogisticAlt,
                   (double value1, double probability1, double value2, double probability2, double minimum),
                   (value1, probability1, value2, probability2, minimum));
PRAL_EXPORT_FAMILY(HS, (double mu, double sigma), (mu, sigma));
