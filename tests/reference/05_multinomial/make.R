source("../lib.R")
# three categories, two stages without replacement
data(api)
d <- with(apiclus2, data.frame(dnum, snum, fpc1, fpc2 = as.numeric(fpc2), pw = round(pw, 6), stype = as.character(stype), swide = as.character(sch.wide), meals, enroll))
d$enroll[is.na(d$enroll)] <- NA
d <- csv_data(d)
design <- list(stages = list(list(clusters = "dnum", method = "equal_wor", size = list(kind = "popsize", way = "variable", variable = "fpc1")),
  list(clusters = "snum", method = "equal_wor", size = list(kind = "popsize", way = "variable", variable = "fpc2"))), weight = "pw")
f <- ref_fit(d, design, list(dep = "stype", factors = "swide", covs = c("meals", "enroll"), effects = c("swide", "meals", "enroll")))
cmd <- c("TAVOREG stype BY swide WITH meals enroll", "  /PLAN FILE='plan.xml'", "  /MODEL swide meals enroll", "  /STATISTICS PARAMETER SE TTEST CINTERVAL DEFF", "  /PRINT SAMPLEINFO VARIABLEINFO SUMMARY HISTORY(1) COVB CORB CLASSTABLE GEF.")
case_write("05", design, cmd, c(chk_params(f, c("B", "Std. Error", "Lower", "Upper", "t", "Significance", "Design Effect")), chk_effects(f), chk_summary(f), chk_sample(f), chk_variables(f), chk_class(f), chk_cov(f), chk_cov(f, TRUE), chk_history(f), chk_gef(f)),
  list(verify_total(f), verify_multinom(f)), extra = list(status = "ok"))
