source("../lib.R")
# system-missing and user-missing values, CLASSMISSING INCLUDE
mode <- "INCLUDE"
data(nhanes); set.seed(1414)
d <- nhanes[sample(nrow(nhanes), 1500), ]
d <- with(d, data.frame(strat = SDMVSTRA, psu = SDMVPSU, wt = WTMEC2YR, chol = HI_CHOL, race, age = as.integer(agecat), sex = RIAGENDR))
d$bmi <- round(rnorm(nrow(d), 27 + d$race, 4), 1)
d$race[sample(nrow(d), 90)] <- 9; d$race[sample(nrow(d), 20)] <- NA            # 9 is declared missing
d$chol[is.na(d$chol)] <- 8                                                      # 8 is declared missing
d$chol[sample(nrow(d), 15)] <- NA
d$bmi[sample(nrow(d), 40)] <- NA; d$bmi[sample(nrow(d), 25)] <- 999             # 999 is declared missing
d$wt[sample(nrow(d), 10)] <- NA
d <- d[order(d$strat, d$psu), ]
d <- csv_data(d)
um <- list(race = 9, chol = 8, bmi = 999)
schema <- list(fields = list(list(name = "strat", type = "integer"), list(name = "psu", type = "integer"), list(name = "wt", type = "number"),
  list(name = "chol", type = "integer", missingValues = list("8")), list(name = "race", type = "integer", missingValues = list("9")), list(name = "age", type = "integer"),
  list(name = "sex", type = "integer", categories = list(list(value = 1, label = "male"), list(value = 2, label = "female"))), list(name = "bmi", type = "number", missingValues = list("999"))))
design <- list(stages = list(list(strata = "strat", clusters = "psu", method = "wr")), weight = "wt")
f <- ref_fit(d, design, list(dep = "chol", factors = c("race", "sex"), covs = "bmi", effects = c("race", "sex", "bmi")), list(usermiss = um, classmissing = mode))
cmd <- c("TAVOREG chol BY race sex WITH bmi", "  /PLAN FILE='plan.xml'", "  /MODEL race sex bmi", paste0("  /MISSING CLASSMISSING=", mode), "  /STATISTICS PARAMETER SE TTEST", "  /PRINT SAMPLEINFO VARIABLEINFO SUMMARY CLASSTABLE.")
vi <- Filter(function(c) !(c$table == "CategoricalVariableInformation" && c$row[[1]] == "sex"), chk_variables(f))
for (k in 1:2) { s <- sum(f$w[f$di$sex == k]); vi <- c(vi, list(chk("CategoricalVariableInformation", c("sex", c("male", "female")[k]), "Weighted Count", s))) }
case_write("14", design, cmd, c(chk_params(f, c("B", "Std. Error", "t", "degrees of freedom", "Significance")), chk_effects(f), chk_summary(f), chk_sample(f), vi, chk_class(f)),
  list("cases with a missing value leave the sample before the design is counted", if (f$J == 1) verify_glm(f), verify_total(f), verify_multinom(f)), schema = schema, extra = list(status = "ok"))
