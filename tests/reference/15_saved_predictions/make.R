source("../lib.R")
# saved predicted categories and probabilities with a domain
data(api)
d <- with(apiclus2, data.frame(dnum, snum, fpc1, fpc2 = as.numeric(fpc2), pw = round(pw, 6), stype = as.character(stype), swide = as.character(sch.wide), meals, mobility))
d <- csv_data(d)
design <- list(stages = list(list(clusters = "dnum", method = "equal_wor", size = list(kind = "popsize", way = "variable", variable = "fpc1")),
  list(clusters = "snum", method = "equal_wor", size = list(kind = "popsize", way = "variable", variable = "fpc2"))), weight = "pw")
f <- ref_fit(d, design, list(dep = "stype", covs = c("meals", "mobility")), list(domain = list(var = "swide", value = "Yes")))
cmd <- c("TAVOREG stype WITH meals mobility", "  /PLAN FILE='plan.xml'", "  /DOMAIN VARIABLE=swide('Yes')", "  /STATISTICS PARAMETER SE", "  /PRINT CLASSTABLE", "  /SAVE PREDPROB(prob:25) PREDVAL(pred).")
case_write("15", design, cmd, c(chk_params(f), chk_class(f)), list(verify_total(f), verify_multinom(f)), saved = chk_saved(f, "prob", rows = 1:60, predval = "pred"), extra = list(status = "ok"))
