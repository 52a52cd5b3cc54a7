source("../lib.R")
# one stage, stratified, equal probabilities without replacement, population size by variable, binary dependent
data(api)
d <- with(apistrat, data.frame(stype = as.character(stype), fpc, pw, swide = as.character(sch.wide), yr = as.character(yr.rnd), meals, ell, api99))
d <- csv_data(d)
design <- list(stages = list(list(strata = "stype", method = "equal_wor", size = list(kind = "popsize", way = "variable", variable = "fpc"))), weight = "pw")
f <- ref_fit(d, design, list(dep = "swide", factors = "yr", covs = c("meals", "ell")))
cmd <- c("TAVOREG swide BY yr WITH meals ell", "  /PLAN FILE='plan.xml'", "  /CRITERIA MXITER=100", "  /STATISTICS PARAMETER SE TTEST CINTERVAL DEFF DEFFSQRT",
  "  /PRINT SAMPLEINFO VARIABLEINFO SUMMARY HISTORY(1) COVB CORB CLASSTABLE GEF.")
case_write("01", design, cmd, c(chk_params(f, c("B", "Std. Error", "Lower", "Upper", "t", "degrees of freedom", "Significance", "Design Effect", "Square Root Design Effect")),
  chk_effects(f), chk_summary(f), chk_sample(f), chk_variables(f), chk_class(f), chk_cov(f), chk_cov(f, TRUE), chk_history(f), chk_gef(f)),
  list("binary logit of every category against the highest", verify_glm(f), verify_total(f), verify_multinom(f)), extra = list(status = "ok"))
