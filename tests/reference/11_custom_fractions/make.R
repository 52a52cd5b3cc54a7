source("../lib.R")
# custom hypotheses with fractions, several rows, K values, an intercept-only test and all-parameter rows
data(api)
d <- with(apiclus1, data.frame(dnum, pw, stype = as.character(stype), swide = as.character(sch.wide), yr = as.integer(api.stu > 400), meals))
d <- csv_data(d)
design <- list(stages = list(list(clusters = "dnum", method = "wr")), weight = "pw")
f <- ref_fit(d, design, list(dep = "swide", factors = c("stype", "yr"), covs = "meals", effects = c("stype", "yr", "meals")))
R1 <- list(list(eff = list(stype = c(1, -1/2, -1/2))), list(eff = list(stype = c(0, 1, -1))))
R2 <- list(list(int = 1, eff = list(stype = c(1/3, 1/3, 1/3), yr = c(1/2, 1/2), meals = 50)))
R3 <- list(list(all = c(0, 1, -1, 0, 0, 0, 0)), list(all = c(0, 0, 0, 0, 1, -1, 1/4)))
R5 <- list(list(eff = list(stype = c(1, -1, 0))), list(eff = list(stype = c(2, -2, 0))), list(eff = list(stype = c(0, 0, 0))))
cmd <- c("TAVOREG swide BY stype yr WITH meals", "  /PLAN FILE='plan.xml'", "  /MODEL stype yr meals", "  /STATISTICS PARAMETER SE",
  "  /CUSTOM LABEL='levels' LMATRIX=stype 1 -1/2 -1/2; stype 0 1 -1 KMATRIX=0.5; -0.25",
  "  /CUSTOM LMATRIX=1 stype 1/3 1/3 1/3 yr 1/2 1/2 meals 50",
  "  /CUSTOM LMATRIX=ALL 0 1 -1 0 0 0 0; ALL 0 0 0 0 1 -1 1/4",
  "  /CUSTOM KMATRIX=1", "  /CUSTOM LMATRIX=stype 1 -1 0; stype 2 -2 0; stype 0 0 0", "  /TEST TYPE=F PADJUST=SIDAK.")
cc <- function(L, nth) { o <- list(); for (k in seq_len(nrow(L))) for (i in seq_len(f$p)) o[[length(o) + 1]] <- chk("ContrastCoefficients", f$pn[i], paste0("L", k), L[k, i], nth = nth); o }
case_write("11", design, cmd, c(chk_params(f), chk_effects(f, "F", "SIDAK"), chk_custom(f, R1, c(.5, -.25), "F", "SIDAK", 1), chk_custom(f, R2, NULL, "F", "SIDAK", 2), chk_custom(f, R3, NULL, "F", "SIDAK", 3),
  chk_custom(f, list(), 1, "F", "SIDAK", 4), chk_custom(f, R5, NULL, "F", "SIDAK", 5), cc(ref_custom(f, R1)$L, 1), cc(ref_custom(f, R2)$L, 2)), list(verify_glm(f), verify_total(f)), extra = list(status = "ok"))
