source("../lib.R")
# lowest category as the reference
data(api)
d <- with(apiclus1, data.frame(dnum, pw, fpc, level = match(as.character(stype), c("E", "M", "H")), swide = as.character(sch.wide), meals))
d <- csv_data(d)
design <- list(stages = list(list(clusters = "dnum", method = "equal_wor", size = list(kind = "popsize", way = "variable", variable = "fpc"))), weight = "pw")
f <- ref_fit(d, design, list(dep = "level", ref = "LOW", factors = "swide", covs = "meals", effects = c("meals", "swide")))
cmd <- c("/* the lowest category is the reference */", "TAVOREG level (LOW) BY swide WITH meals", "  /PLAN FILE='plan.xml'", "  /STATISTICS PARAMETER SE TTEST DEFF", "  /PRINT SAMPLEINFO SUMMARY CLASSTABLE.")
case_write("09a", design, cmd, c(chk_params(f, c("B", "Std. Error", "t", "Significance", "Design Effect")), chk_effects(f), chk_summary(f), chk_sample(f), chk_class(f)), list("no MODEL: covariates come before factors", verify_total(f), verify_multinom(f)), extra = list(status = "ok"))
