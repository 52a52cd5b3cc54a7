source("../lib.R")
# one stage of clusters, with replacement, binary dependent, one factor and one covariate
data(api)
d <- with(apiclus1, data.frame(dnum, pw, stype = as.character(stype), swide = as.character(sch.wide), meals))
d <- csv_data(d)
design <- list(stages = list(list(clusters = "dnum", method = "wr")), weight = "pw", srs = "wr")
f <- ref_fit(d, design, list(dep = "swide", factors = "stype", covs = "meals", effects = c("stype", "meals")))
cmd <- c("tavoreg swide by stype with meals", "  /plan file='plan.xml'", "  /model stype meals", "  /statistics parameter se exp deff", "  /print sampleinfo variableinfo summary classtable gef lmatrix.")
lm1 <- ref_effect_L(f, 1)
chk_L <- function(k, title) { l <- ref_effect_L(f, k); o <- list(); for (r in seq_along(l$num)) for (i in seq_len(f$p)) o[[length(o) + 1]] <- chk("EffectsContrast", f$pn[i], paste0("L", l$num[r]), l$L[r, i], title = title); o }
# unweighted-mean contrasts by hand: stype levels against the last, the rest zero
stopifnot(all.equal(unname(lm1$L), rbind(c(0, 1, 0, -1, 0), c(0, 0, 1, -1, 0))))
# equal weights: the covariance under simple random sampling with replacement is that of the design without clusters
g0 <- svyglm(I(swide == "No") ~ relevel(factor(stype), "M") + meals, svydesign(ids = ~1, weights = ~pw, data = d), family = quasibinomial(), control = glm.control(epsilon = 1e-14))
stopifnot(max(abs(diag(vcov(g0)) / diag(f$Vs)[f$ak][c(1, 2, 3, 4)] - 1)) < 1e-7)
case_write("02", design, cmd, c(chk_params(f, c("B", "Std. Error", "Design Effect", "Exp(B)")), chk_effects(f), chk_summary(f), chk_sample(f), chk_variables(f), chk_class(f), chk_gef(f),
  chk_L(1, "stype"), chk_L(2, "meals")), list(verify_glm(f), verify_total(f), verify_type3(f), verify_multinom(f), "covariance under simple random sampling by svyglm on an unclustered design"), extra = list(status = "ok"))
