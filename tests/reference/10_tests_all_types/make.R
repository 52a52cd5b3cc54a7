source("../lib.R")
# four test types with five adjustments of the significance: twenty commands in one file
data(api)
d <- with(apiclus2, data.frame(dnum, snum, fpc1, fpc2 = as.numeric(fpc2), pw = round(pw, 6), stype = as.character(stype), award = as.character(awards), meals, mobility))
d <- csv_data(d)
design <- list(stages = list(list(clusters = "dnum", method = "equal_wor", size = list(kind = "popsize", way = "variable", variable = "fpc1")),
  list(clusters = "snum", method = "equal_wor", size = list(kind = "popsize", way = "variable", variable = "fpc2"))), weight = "pw")
f <- ref_fit(d, design, list(dep = "award", factors = "stype", covs = c("meals", "mobility"), effects = c("stype", "meals", "mobility")))
rows <- list(list(eff = list(stype = c(1, -1, 0))), list(eff = list(stype = c(1, 0, -1))), list(eff = list(stype = c(2, -2, 0))), list(eff = list(stype = c(0, 1, -1))))
cmd <- character(0); checks <- list(); k <- 0
for (ty in c("F", "ADJF", "CHISQUARE", "ADJCHISQUARE")) for (pa in c("LSD", "BONFERRONI", "SEQBONFERRONI", "SIDAK", "SEQSIDAK")) {
  cmd <- c(cmd, "TAVOREG award BY stype WITH meals mobility", "  /PLAN FILE='plan.xml'", "  /MODEL stype meals mobility", sprintf("  /TEST TYPE=%s PADJUST=%s", ty, pa),
    "  /CUSTOM LABEL='pairs' LMATRIX=stype 1 -1 0; stype 1 0 -1; stype 2 -2 0; stype 0 1 -1", "  /PRINT NONE.", "")
  cc <- c(chk_effects(f, ty, pa), chk_custom(f, rows, type = ty, padj = pa))
  checks <- c(checks, lapply(cc, function(z) { z$command <- k; z })); k <- k + 1 }
# the second-order correction by eigenvalues
L <- ref_effect_L(f, 1)$L; D <- solve(L %*% f$Vs %*% t(L)) %*% (L %*% f$V %*% t(L)); ev <- Re(eigen(D)$values); o <- ref_effect_test(f, 1, "ADJCHISQUARE")
stopifnot(abs(o$df1 - sum(ev)^2 / sum(ev^2)) < 1e-9, abs(o$wald - o$X * sum(ev) / sum(ev^2)) < 1e-7)
case_write("10", design, cmd, checks, list(verify_glm(f), verify_total(f), "second-order correction checked by the eigenvalues of the generalised design effects", "sequential adjustments: see p.adjust for the Bonferroni form"), extra = list(status = "ok"))
a <- ref_custom(f, rows, type = "F", padj = "SEQBONFERRONI"); p <- sapply(a$rows, function(r) r$sig)[c(1, 2, 4)]; stopifnot(max(abs(p.adjust(p, "holm") - sapply(a$rows, function(r) r$adj)[c(1, 2, 4)])) < 1e-12)
