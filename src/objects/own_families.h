/* Families that only objects have: read after the list of core_api.h, with a PRAL_FAMILY of the reader's, as that one. */
/* clang-format off */
PRAL_FAMILY(HalfNormal, continuous, normal, (double sigma),
    "scale sigma >= 0, 0 being a point mass at 0; support [0, inf); the absolute value of Normal(0, sigma)")

PRAL_FAMILY(Gompertz, continuous, extreme, (double a, double b),
    "hazard rate a exp(b x), a > 0, b > 0; support [0, inf); F = 1 - exp(-a (exp(b x) - 1)/b)")

PRAL_FAMILY(GPD, continuous, extreme, (double beta, double xi),
    "generalised Pareto, excesses over a threshold: scale beta >= 0, 0 being a point mass at 0, shape xi; support [0, inf), "
    "up to -beta/xi for xi < 0; F = 1 - (1 + xi x/beta)^(-1/xi), xi = 0 being Expon(beta)")
/* clang-format on */

#undef PRAL_FAMILY
