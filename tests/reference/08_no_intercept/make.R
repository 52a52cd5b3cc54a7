source("../lib.R")
# a model without intercept
data(api)
d <- with(apistrat, data.frame(stype = as.character(stype), grp = as.character(stype), fpc, pw, swide = as.character(sch.wide), meals))
d <- csv_data(d)
design <- list(stages = list(list(strata = "stype", method = "equal_wor", size = list(kind = "popsize", way = "variable", variable = "fpc"))), weight = "pw")
f <- ref_fit(d, design, list(dep = "swide", factors = "grp", covs = "meals", effects = c("grp", "meals"), intercept = FALSE))
cmd <- c("TAVOREG swide BY grp WITH meals", "  /PLAN FILE='plan.xml'", "  /MODEL grp meals", "  /INTERCEPT INCLUDE=NO", "  /STATISTICS PARAMETER SE TTEST EXP", "  /PRINT SUMMARY CLASSTABLE HISTORY(1) GEF.")
case_write("08", design, cmd, c(chk_params(f, c("B", "Std. Error", "t", "Significance", "Exp(B)")), chk_effects(f), chk_summary(f), chk_class(f), chk_history(f), chk_gef(f)), list(verify_glm(f), verify_total(f)), extra = list(status = "ok"))
