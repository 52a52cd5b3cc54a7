source("../lib.R")
# odds ratios of factors and covariates with control values and interactions; three categories
data(api)
d <- with(apiclus2, data.frame(dnum, snum, fpc1, fpc2 = as.numeric(fpc2), pw = round(pw, 6), stype = as.character(stype), swide = as.character(sch.wide), aw = as.integer(awards == "Yes"), meals, mobility))
d <- csv_data(d)
design <- list(stages = list(list(clusters = "dnum", method = "equal_wor", size = list(kind = "popsize", way = "variable", variable = "fpc1")),
  list(clusters = "snum", method = "equal_wor", size = list(kind = "popsize", way = "variable", variable = "fpc2"))), weight = "pw")
f <- ref_fit(d, design, list(dep = "stype", ref = list("E"), factors = c("aw"), covs = c("meals", "mobility"), effects = c("aw", "meals", "aw*meals", "mobility")))
f2 <- ref_fit(d, design, list(dep = "aw", factors = c("stype", "swide"), covs = "meals", effects = c("stype", "meals", "stype*meals")))
cmd <- c("TAVOREG stype ('E') BY aw WITH meals mobility", "  /PLAN FILE='plan.xml'", "  /MODEL aw meals aw*meals mobility", "  /STATISTICS PARAMETER SE",
  "  /ODDSRATIOS FACTOR=[aw]", "  /ODDSRATIOS FACTOR=[aw(0)] CONTROL=[meals(20)]", "  /ODDSRATIOS COVARIATE=[meals(1 10) mobility(-5)]", "  /ODDSRATIOS COVARIATE=[meals(10)] CONTROL=[aw(LOW) mobility(MEAN)].", "",
  "TAVOREG aw BY stype swide WITH meals", "  /PLAN FILE='plan.xml'", "  /MODEL stype meals stype*meals", "  /STATISTICS PARAMETER SE CINTERVAL", "  /CRITERIA CILEVEL=90",
  "  /ODDSRATIOS FACTOR=[stype(LOW)] CONTROL=[meals(33)]", "  /ODDSRATIOS FACTOR=[stype('H')]", "  /ODDSRATIOS COVARIATE=[meals] CONTROL=[stype('H')].")
f2$conf <- 90; f2$crit <- qt(.95, f2$df)
c2 <- c(chk_params(f2, c("B", "Std. Error", "Lower", "Upper")), chk_or(f2, factor = list(stype = "LOW"), control = list(meals = 33), nth = 1), chk_or(f2, factor = list(stype = "H"), nth = 2), chk_or(f2, cov = list(meals = 1), control = list(stype = "H"), nth = 3))
checks <- c(chk_params(f), chk_or(f, factor = list(aw = "HIGH"), nth = 1), chk_or(f, factor = list(aw = 0), control = list(meals = 20), nth = 2), chk_or(f, cov = list(meals = c(1, 10), mobility = -5), nth = 3),
  chk_or(f, cov = list(meals = 10), control = list(aw = "LOW"), nth = 4), lapply(c2, function(z) { z$command <- 1; z }))
# by hand: the ratio of meals at stype H is exp(b + b_interaction)
o <- ref_or(f2, cov = list(meals = 1), control = list(stype = "H")); i <- match(c("meals", "[stype=H] * meals"), f2$pn); stopifnot(abs(o[[1]]$or / exp(sum(f2$b[i])) - 1) < 1e-12)
# a factor ratio and its limits at meals 33 by svyglm with its own coding and svycontrast
g <- svyglm(I(aw == 0) ~ relevel(factor(stype), "E") * meals, svydesign(ids = ~dnum + snum, fpc = ~fpc1 + fpc2, weights = ~pw, data = d), family = quasibinomial(), control = glm.control(epsilon = 1e-14))
k <- svycontrast(g, c(0, 1, 0, 0, 33, 0)); h <- ref_or(f2, factor = list(stype = "LOW"), control = list(meals = 33))[[1]]     # H against E
stopifnot(h$lab == "H vs. E", abs(c(coef(k), coef(k) + c(-1, 1) * f2$crit * SE(k)) - log(c(h$or, h$lo, h$hi))) < 1e-6)
case_write("12", design, cmd, checks, list(verify_total(f), verify_multinom(f), verify_glm(f2), "odds ratio and limits by svycontrast"), extra = list(status = "ok"))
