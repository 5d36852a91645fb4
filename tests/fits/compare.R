# Public data sets and the log-likelihoods that R's packages reach on them, a line each, for compare.py:
#   values <set> <kind> <x,...>        censored <set> <left,...> <right,...> <weights,...>
#   peer <set> <family> <package> <log-likelihood>
packages <- c("MASS", "fitdistrplus", "actuar", "evd")
missing <- packages[!vapply(packages, requireNamespace, TRUE, quietly = TRUE)]
if (length(missing) > 0) {
  cat("missing", missing, sep = "\t")
  quit(status = 0)
}
suppressWarnings(suppressMessages(for (package in packages) library(package, character.only = TRUE)))
from <- function(package, name) {
  where <- new.env()
  data(list = name, package = package, envir = where)
  get(name, envir = where)
}

positive <- list(
  rivers = rivers, precip = precip, eruptions = faithful$eruptions, waiting = faithful$waiting, Nile = Nile,
  mpg = mtcars$mpg, hp = mtcars$hp, trees = trees$Volume, wind = airquality$Wind, ozone = na.omit(airquality$Ozone),
  sepals = iris$Sepal.Length, quakes = quakes$mag, islands = islands, chickens = chickwts$weight, lynx = lynx,
  fertility = swiss$Fertility, LakeHuron = LakeHuron, teeth = ToothGrowth$len, murder = USArrests$Murder,
  permeability = rock$perm, galaxies = from("MASS", "galaxies"), chem = from("MASS", "chem"),
  abbey = from("MASS", "abbey"), GAGurine = from("MASS", "GAGurine")$GAG, medv = from("MASS", "Boston")$medv,
  hearts = from("MASS", "cats")$Hwt, michelson = from("MASS", "michelson")$Speed,
  danishuni = from("fitdistrplus", "danishuni")$Loss, groundbeef = from("fitdistrplus", "groundbeef")$serving,
  endosulfan = from("fitdistrplus", "endosulfan")$ATV, failure = from("evd", "failure"),
  dental = from("actuar", "dental"), ALAE = from("evd", "lossalae")$ALAE)
real <- list(
  newcomb = from("MASS", "newcomb"), SP500 = from("MASS", "SP500"), dataFAQscale1 = from("fitdistrplus", "dataFAQscale1"))
maxima <- list(
  portpirie = from("evd", "portpirie"), oxford = from("evd", "oxford"), sask = from("evd", "sask"),
  lisbon = from("evd", "lisbon"), venice = na.omit(from("evd", "venice")[, 1]),
  dover = na.omit(from("evd", "sealevel")$dover), fox = from("evd", "fox")$wright)
unit <- list(rock = rock$shape, accel = attenu$accel, agriculture = swiss$Agriculture / 100)
counts <- list(
  discoveries = discoveries, insects = InsectSprays$count, breaks = warpbreaks$breaks, stations = quakes$stations,
  quine = from("MASS", "quine")$Days, epil = from("MASS", "epil")$y, claims = from("MASS", "Insurance")$Claims,
  toxocara = from("fitdistrplus", "toxocara")$number)
gdental <- from("actuar", "gdental")
censored <- list(
  salinity = from("fitdistrplus", "salinity"), smokedfish = from("fitdistrplus", "smokedfish"),
  fluazinam = from("fitdistrplus", "fluazinam"))

of_positive <- c(Normal = "norm", Lognormal = "lnorm", Gamma = "gamma", Weibull = "weibull", Logistic = "logis",
                 Expon = "exp", LogLogistic = "llogis", Pareto2 = "pareto", Dagum = "invburr", Pearson5 = "invgamma")
of_real <- c(Normal = "norm", Logistic = "logis")
of_unit <- c(Beta = "beta", Normal = "norm", Gamma = "gamma")
of_counts <- c(Poisson = "pois", NegBin = "nbinom", Geometric = "geom")
of_censored <- c(Normal = "norm", Lognormal = "lnorm", Gamma = "gamma", Weibull = "weibull", Logistic = "logis",
                 LogLogistic = "llogis")

line <- function(...) cat(paste(..., sep = "\t"), "\n", sep = "")
numbers <- function(x) paste(format(as.numeric(x), digits = 17, trim = TRUE), collapse = ",")
quiet <- function(expression) {
  sink(nullfile())
  on.exit(sink())
  suppressWarnings(suppressMessages(tryCatch(expression, error = function(e) NA_real_)))
}
# In units of the median where the search fails in those of the data; inverse Burr has no start there.
fitted_to <- function(x, family) {
  start <- if (family == "invburr") list(shape1 = 1, shape2 = 2, rate = 1) else NULL
  unit <- median(abs(x))
  first <- if (family == "invburr") NA else quiet(fitdistrplus::fitdist(x, family, keepdata = FALSE)$loglik)
  if (!is.na(first)) return(first)
  quiet(fitdistrplus::fitdist(x / unit, family, start = start, keepdata = FALSE)$loglik) - length(x) * log(unit)
}
peer <- function(set, family, package, log_likelihood) line("peer", set, family, package, format(log_likelihood, digits = 15))

compare <- function(sets, kind, families) {
  for (set in names(sets)) {
    x <- as.numeric(sets[[set]])
    line("values", set, kind, numbers(x))
    for (family in names(families))
      peer(set, family, "fitdistrplus", fitted_to(x, families[[family]]))
    if (kind %in% c("maxima", "real")) {
      peer(set, "GEV", "evd", quiet(-evd::fgev(x, std.err = FALSE)$deviance / 2))
      peer(set, "ExtValueMax", "evd", quiet(-evd::fgev(x, shape = 0, std.err = FALSE)$deviance / 2))
    }
  }
}
compare(positive, "positive", of_positive)
compare(real, "real", of_real)
compare(maxima, "maxima", of_positive[c("Normal", "Gamma", "Logistic")])
compare(unit, "unit", of_unit)
compare(counts, "counts", of_counts)

compare_censored <- function(set, rows, weights) {
  left <- ifelse(is.na(rows$left), -Inf, rows$left)
  right <- ifelse(is.na(rows$right), Inf, rows$right)
  line("censored", set, numbers(left), numbers(right), numbers(weights))
  rows <- rows[rep(seq_along(weights), weights), ]
  for (family in names(of_censored))
    peer(set, family, "fitdistrplus", quiet(fitdistrplus::fitdistcens(rows, of_censored[[family]])$loglik))
}
for (set in names(censored)) {
  rows <- as.data.frame(censored[[set]])
  rows <- data.frame(left = as.numeric(rows$left), right = as.numeric(rows$right))
  compare_censored(set, rows, rep(1, nrow(rows)))
}
ends <- c(0, 25, 50, 100, 150, 250, 500, 1000, 1500, 2500, 4000)
compare_censored("gdental", data.frame(left = head(ends, -1), right = tail(ends, -1)), as.numeric(gdental[, 2]))
