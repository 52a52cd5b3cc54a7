source("../lib.R")
# three categories, clusters with replacement, a domain; statistics over all cases and the domain
data(api)
d <- with(apiclus1, data.frame(dnum, pw, stype = as.character(stype), comp = as.character(comp.imp), swide = as.character(sch.wide), meals, mobility))
d <- csv_data(d)
design <- list(stages = list(list(clusters = "dnum", method = "wr")), weight = "pw", srs = "wr")
f <- ref_fit(d, design, list(dep = "stype", covs = c("meals", "mobility")), list(domain = list(var = "swide", value = "Yes")))
cmd <- c("TAVOREG stype WITH meals mobility", "  /PLAN FILE='plan.xml'", "  /DOMAIN VARIABLE=swide('Yes')", "  /STATISTICS PARAMETER SE TTEST CINTERVAL DEFF", "  /PRINT SAMPLEINFO VARIABLEINFO SUMMARY CLASSTABLE.")
# second way: the covariance from a subset design
des <- svydesign(ids = ~dnum, weights = ~pw, data = f$d); V <- vcov(svytotal(f$infl[f$ind, f$ak], subset(des, swide == "Yes"))); stopifnot(max(abs(V / f$V - 1)) < 1e-6)
case_write("06", design, cmd, c(chk_params(f, c("B", "Std. Error", "Lower", "Upper", "t", "degrees of freedom", "Significance", "Design Effect")), chk_effects(f), chk_summary(f), chk_sample(f), chk_variables(f), chk_class(f)),
  list(verify_total(f), verify_multinom(f), "same covariance from survey's subset design"), extra = list(status = "ok"))
