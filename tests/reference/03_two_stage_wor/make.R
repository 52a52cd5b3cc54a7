source("../lib.R")
# two stages, equal probabilities without replacement, population sizes by variables in both
data(api)
d <- with(apiclus2, data.frame(dnum, snum, fpc1, fpc2 = as.numeric(fpc2), pw = round(pw, 6), stype = as.character(stype), award = as.character(awards), meals, mobility))
d <- csv_data(d)
design <- list(stages = list(list(label = "districts", clusters = "dnum", method = "equal_wor", size = list(kind = "popsize", way = "variable", variable = "fpc1")),
  list(label = "schools", clusters = "snum", method = "equal_wor", size = list(kind = "popsize", way = "variable", variable = "fpc2"))), weight = "pw", srs = "wor")
f <- ref_fit(d, design, list(dep = "award", factors = "stype", covs = c("meals", "mobility")))
g <- { des <- svydesign(ids = ~dnum + snum, fpc = ~fpc1 + fpc2, weights = ~pw, data = d)
  svyglm(I(award == "No") ~ meals + mobility + relevel(factor(stype), "M"), des, family = quasibinomial(), control = glm.control(epsilon = 1e-14)) }
cf <- coef(g)[c(1, 2, 3, 4, 5)]; stopifnot(max(abs(cf / f$b[f$ak] - 1)) < 1e-8, max(abs(sqrt(diag(vcov(g))) / sqrt(diag(f$V))[f$ak] - 1)) < 1e-7)
cmd <- c("TAVOREG award BY stype WITH meals mobility", "  /PLAN FILE='plan.xml'", "  /STATISTICS PARAMETER SE TTEST CINTERVAL DEFF", "  /PRINT SAMPLEINFO SUMMARY COVB CLASSTABLE.")
case_write("03", design, cmd, c(chk_params(f, c("B", "Std. Error", "Lower", "Upper", "t", "Significance", "Design Effect")), chk_effects(f), chk_summary(f), chk_sample(f), chk_class(f), chk_cov(f)),
  list(verify_glm(f), verify_total(f), "svyglm with its own factor coding and design gives the same"), extra = list(status = "ok"))
