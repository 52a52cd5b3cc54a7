source("../lib.R")
# strata and clusters with replacement, binary dependent with missing values, factors and an interaction
data(nhanes)
d <- with(nhanes, data.frame(SDMVSTRA, SDMVPSU, WTMEC2YR, HI_CHOL, race, agecat = as.integer(agecat), RIAGENDR))
d <- csv_data(d)
design <- list(stages = list(list(strata = "SDMVSTRA", clusters = "SDMVPSU", method = "wr")), weight = "WTMEC2YR")
f <- ref_fit(d, design, list(dep = "HI_CHOL", factors = c("race", "agecat", "RIAGENDR"), effects = c("race", "agecat", "RIAGENDR", "agecat*RIAGENDR")))
cmd <- c("TAVOREG HI_CHOL BY race agecat RIAGENDR", "  /PLAN FILE='plan.xml'", "  /MODEL race agecat RIAGENDR agecat*RIAGENDR", "  /STATISTICS PARAMETER SE TTEST DEFF", "  /PRINT SAMPLEINFO VARIABLEINFO SUMMARY CLASSTABLE HISTORY.")
# effect tests as equality of unweighted marginal means (every cell occurs)
L <- ref_effect_L(f, 2)$L; h <- expand.grid(g = 1:2, a = 1:4); mm <- matrix(0, 3, f$p)
ia <- match(paste0("[agecat=", 1:4, "]"), f$pn)
for (k in 1:3) { mm[k, ia[k]] <- 1; mm[k, ia[4]] <- -1; for (g in 1:2) { mm[k, match(sprintf("[agecat=%d] * [RIAGENDR=%d]", k, g), f$pn)] <- 0.5; mm[k, match(sprintf("[agecat=4] * [RIAGENDR=%d]", g), f$pn)] <- -0.5 } }
stopifnot(max(abs(L - mm)) < 1e-9)
des <- svydesign(ids = ~SDMVPSU, strata = ~SDMVSTRA, weights = ~WTMEC2YR, nest = TRUE, data = f$d)
g <- svyglm(I(HI_CHOL == 0) ~ factor(race) + factor(agecat) * factor(RIAGENDR), des, family = quasibinomial(), control = glm.control(epsilon = 1e-14))
rt <- regTermTest(g, ~factor(agecat):factor(RIAGENDR), method = "Wald"); X <- rt$Ftest[1] * rt$df; stopifnot(abs(X / ref_effect_test(f, 4)$X - 1) < 1e-6)
case_write("04", design, cmd, c(chk_params(f, c("B", "Std. Error", "t", "degrees of freedom", "Significance", "Design Effect")), chk_effects(f), chk_summary(f), chk_sample(f), chk_variables(f), chk_class(f), chk_history(f)),
  list(verify_glm(f), verify_total(f), verify_type3(f), "interaction Wald statistic by survey::regTermTest; main-effect contrasts are those of unweighted marginal means"), extra = list(status = "ok"))
