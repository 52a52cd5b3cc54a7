source("../lib.R")
# one stage, unequal probabilities without replacement, joint inclusion probabilities in a file
data(election)
e <- election_pps; n <- nrow(e); P <- election_jointprob
d <- data.frame(county = seq_len(n), wt = round(1 / diag(P), 8), bush = as.integer(e$Bush > e$Kerry), nader = as.integer(e$Nader > 0), lprec = round(log(e$TotPrecincts), 4))
joint <- data.frame(county = seq_len(n), Unit_No_ = seq_len(n)); for (j in seq_len(n)) joint[[paste0("p", j)]] <- round(P[, j], 12)
stopifnot(all(P > 0), all(P <= outer(diag(P), rep(1, n)) + 1e-12))
d <- csv_data(d); joint <- csv_data(joint, "joint.csv")
design <- list(stages = list(list(clusters = "county", method = "unequal_wor")), weight = "wt")
f <- ref_fit(d, design, list(dep = "bush", factors = "nader", covs = "lprec", effects = c("nader", "lprec")), joint = joint)
g <- svyglm(I(bush == 0) ~ I(nader == 0) + lprec, svydesign(ids = ~1, weights = ~wt, data = d), family = quasibinomial(), control = glm.control(epsilon = 1e-14, maxit = 100)); stopifnot(max(abs(coef(g) / f$b[f$ak] - 1)) < 1e-8)
cmd <- c("TAVOREG bush BY nader WITH lprec", "  /PLAN FILE='plan.xml'", "  /JOINTPROB FILE='joint.csv'", "  /MODEL nader lprec", "  /STATISTICS PARAMETER SE TTEST DEFF", "  /PRINT SAMPLEINFO SUMMARY COVB.")
# the double sum written out once more for the weighted totals
S <- f$infl[, f$ak] * d$wt; Pm <- as.matrix(joint[, -(1:2)]); V <- matrix(0, 3, 3)
for (a in 1:n) for (b in 1:n) if (a != b) V <- V + 0.5 * (Pm[a, a] * Pm[b, b] / Pm[a, b] - 1) * tcrossprod(S[a, ] - S[b, ])
s <- sqrt(diag(f$V)[f$ak]); stopifnot(max(abs((V - f$V[f$ak, f$ak]) / tcrossprod(s))) < 1e-9)
case_write("13", design, cmd, c(chk_params(f, c("B", "Std. Error", "t", "degrees of freedom", "Significance", "Design Effect")), chk_effects(f), chk_summary(f), chk_sample(f), chk_cov(f)),
  list(verify_yg(f), "estimates by svyglm", "full double sum over all pairs"), extra = list(status = "ok"))
