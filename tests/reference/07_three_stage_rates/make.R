source("../lib.R")
# three stages, strata in the first, sampling rates given as values, simulated
set.seed(7001)
R <- 3; rows <- list()
for (r in 1:R) for (p in 1:(3 + r)) { up <- rnorm(1, 0, .5); for (s in 1:3) { us <- rnorm(1, 0, .3); m <- 3 + (p + s) %% 3
  for (k in 1:m) rows[[length(rows) + 1]] <- data.frame(region = r, psu = p, ssu = s, u = up + us) } }
d <- do.call(rbind, rows); n <- nrow(d)
d$x <- round(rnorm(n), 4); d$z <- round(rexp(n), 4); d$g <- sample(c("a", "b", "c"), n, TRUE, c(.3, .3, .4))
eta <- d$u + 0.7 * d$x - 0.4 * d$z + c(a = .5, b = 0, c = -.5)[d$g]; d$y <- rbinom(n, 1, plogis(eta)) + 1; d$u <- NULL
d$wt <- round(c(20, 35, 50)[d$region] * runif(n, .8, 1.2), 3)
d <- csv_data(d)
design <- list(stages = list(list(label = "primary", strata = "region", clusters = "psu", method = "equal_wor", size = list(kind = "incprob", way = "value", value = 0.25)),
  list(clusters = "ssu", method = "equal_wor", size = list(kind = "incprob", way = "value", value = 0.5)),
  list(method = "equal_wor", size = list(kind = "incprob", way = "value", value = 0.4))), weight = "wt")
f <- ref_fit(d, design, list(dep = "y", factors = "g", covs = c("x", "z"), effects = c("g", "x", "z", "g*x")))
cmd <- c("TAVOREG y BY g WITH x z", "  /PLAN FILE='plan.xml'", "  /MODEL g x z g*x", "  /STATISTICS PARAMETER SE DEFF", "  /PRINT SAMPLEINFO SUMMARY COVB.")
case_write("07", design, cmd, c(chk_params(f, c("B", "Std. Error", "Design Effect")), chk_effects(f), chk_summary(f), chk_sample(f), chk_cov(f)), list(verify_glm(f), verify_total(f), verify_type3(f)), extra = list(status = "ok"))
