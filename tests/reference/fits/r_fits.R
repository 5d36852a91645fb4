# Maximum likelihood fits by R's fitdistrplus: prints the rows of published.tsv that stem from it, and with an argument
# writes the data sets into data/. Run: Rscript r_fits.R [write]
suppressMessages(library(fitdistrplus))
version <- sprintf("%s, fitdistrplus %s", sub(" \\(.*", "", R.version.string), packageVersion("fitdistrplus"))
data(list = c("groundbeef", "danishuni", "toxocara"))

sets <- list(
  ground_beef = groundbeef$serving, toxocara = toxocara$number, rivers = rivers, precipitation = as.numeric(precip),
  rock_shape = rock$shape, discoveries = as.numeric(discoveries), michelson = morley$Speed / 1000 + 299,
  danish = danishuni$Loss)
sources <- list(
  ground_beef = c("Serving sizes of ground beef (g): Delignette-Muller and Cornu (2008), Int. J. Food Microbiol. 128,",
                  "158-164; R package fitdistrplus (GPL >= 2)"),
  toxocara = c("Parasites in cats: Fromont et al. (2001), Parasitology 123, 143-151; R package fitdistrplus (GPL >= 2)"),
  rivers = c("Lengths of North American rivers (miles), US Geological Survey: World Almanac 1975, p. 406; R datasets"),
  precipitation = c("Yearly precipitation in US cities (in.): Statistical Abstracts of the United States 1975; R datasets"),
  rock_shape = c("Shape of pores in petroleum rock: BP Research; R datasets"),
  discoveries = c("Great discoveries in each year 1860-1959: World Almanac 1975, pp. 315-318; R datasets"),
  michelson = c("Speed of light (1000 km/s): Michelson (1882); Michelso.dat of the NIST Statistical Reference Datasets"))
digits <- function(x) format(x, digits = 15, trim = TRUE, drop0trailing = TRUE)
if (length(commandArgs(TRUE))) {
  for (name in names(sources))
    writeLines(c(paste(c("#", sources[[name]]), collapse = " "), "value", sapply(sets[[name]], digits)),
               file.path("data", paste0(name, ".csv")))
  writeLines(c("loss,date", paste(sapply(danishuni$Loss, digits), danishuni$Date, sep = ",")),
             "../../../examples/danish_fire_losses.csv")
}

# Family, R's name, and R's parameters as those of the family.
families <- list(
  Normal = list("norm", identity), LognormalE = list("lnorm", identity), Logistic = list("logis", identity),
  Cauchy = list("cauchy", identity), Weibull = list("weibull", identity), Beta = list("beta", identity),
  Gamma = list("gamma", function(p) c(p[1], 1 / p[2])), Expon = list("exp", function(p) 1 / p),
  Uniform = list("unif", identity), Poisson = list("pois", identity), Geometric = list("geom", identity),
  Polya = list("nbinom", function(p) c(p[1], p[2] / p[1])))
suits <- list(
  ground_beef = c("LognormalE", "Logistic", "Weibull", "Gamma", "Expon", "Uniform"),
  danish = c("LognormalE", "Weibull", "Gamma", "Expon", "Cauchy"),
  rivers = c("LognormalE", "Gamma", "Weibull", "Logistic", "Cauchy"),
  precipitation = c("Logistic", "Gamma", "Weibull", "Cauchy"), rock_shape = "Beta", michelson = c("Logistic", "Cauchy"),
  discoveries = c("Poisson", "Polya", "Geometric"), toxocara = c("Poisson", "Polya", "Geometric"))
for (name in names(suits)) for (family in suits[[name]]) {
  exactly <- list(reltol = 1e-15, maxit = 5000)
  fit <- suppressWarnings(fitdist(sets[[name]], families[[family]][[1]], control = exactly))
  p <- families[[family]][[2]](unname(fit$estimate))
  file <- if (name == "danish") "../../../examples/danish_fire_losses.csv" else paste0("data/", name, ".csv")
  tolerance <- if (family %in% c("Logistic", "Cauchy")) 1e-3 * p[2] + 0 * p else 1e-4 * abs(p)
  cat(family, file, paste(sprintf("%.8g", p), collapse = ","), paste(sprintf("%.1g", tolerance), collapse = ","),
      sprintf("%.7f", fit$loglik), "0.0001", version, sep = "\t", fill = FALSE)
  cat("\n")
}
