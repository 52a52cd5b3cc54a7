source("../lib.R")
# a string value as the reference
data(api)
d <- with(apiclus1, data.frame(dnum, pw, fpc, stype = as.character(stype), swide = as.character(sch.wide), meals))
d <- csv_data(d)
design <- list(stages = list(list(clusters = "dnum", method = "equal_wor", size = list(kind = "incprob", way = "value", value = 0.0198))), weight = "pw")
f <- ref_fit(d, design, list(dep = "stype", ref = list("H"), factors = "swide", covs = "meals", effects = c("swide", "meals")))
cmd <- c("TAVOREG stype ('H') BY swide WITH meals", "  /PLAN FILE='plan.xml'", "  /MODEL swide meals", "  /STATISTICS PARAMETER SE TTEST DEFF", "  /PRINT SAMPLEINFO VARIABLEINFO SUMMARY CLASSTABLE.")
case_write("09b", design, cmd, c(chk_params(f, c("B", "Std. Error", "t", "Significance", "Design Effect")), chk_effects(f), chk_summary(f), chk_sample(f), chk_variables(f), chk_class(f)), list(verify_total(f), verify_multinom(f)), extra = list(status = "ok"))
