"""Maximum pseudo-likelihood estimates of small baseline-category logits, by Newton's method in 40 digits.

Made with Python 3.11 and mpmath 1.3.0. Prints the constants of ../reference_fits.h. The design is written out here on
the scale of the data, with the aliased column left out, so nothing is shared with the code under test.
"""
from mpmath import mp, mpf, matrix, exp, log, lu_solve

mp.dps = 40

# response, factor level, covariate, weight
DATA = [
    (1, 1, 2.5, 1.5), (2, 1, 3.1, 2.0), (1, 2, 4.7, 1.0), (2, 2, 1.2, 0.5), (2, 3, 5.5, 3.0), (1, 3, 6.1, 1.25),
    (2, 1, 0.4, 1.0), (1, 2, 7.3, 2.5), (1, 1, 5.2, 0.75), (2, 3, 2.2, 1.0), (1, 3, 3.9, 2.0), (2, 2, 6.6, 1.5),
]
RESPONSES3 = [1, 2, 3, 1, 2, 3, 3, 2, 1, 1, 3, 2]


def fit(rows, categories):
    """rows: (local category, design row, weight); the last category is the reference."""
    p = len(rows[0][1])
    n = p * (categories - 1)

    def evaluate(b):
        loglik, score, info = mpf(0), matrix(n, 1), matrix(n, n)
        for y, x, w in rows:
            eta = [sum(x[k] * b[j * p + k] for k in range(p)) for j in range(categories - 1)] + [mpf(0)]
            total = sum(exp(e) for e in eta)
            pr = [exp(e) / total for e in eta]
            loglik += w * log(pr[y])
            for j in range(categories - 1):
                for k in range(p):
                    score[j * p + k] += w * ((1 if y == j else 0) - pr[j]) * x[k]
                    for l in range(categories - 1):
                        for m in range(p):
                            info[j * p + k, l * p + m] += w * pr[j] * ((1 if j == l else 0) - pr[l]) * x[k] * x[m]
        return loglik, score, info

    b = [mpf(0)] * n
    for _ in range(60):
        loglik, score, info = evaluate(b)
        step = lu_solve(info, score)
        b = [b[i] + step[i] for i in range(n)]
    loglik, score, info = evaluate(b)
    return loglik, b, info ** -1


def show(name, loglik, b, inverse):
    print(f"// {name}")
    print("LL", mp.nstr(loglik, 20))
    print("b", ", ".join(mp.nstr(v, 20) for v in b))
    print("var", ", ".join(mp.nstr(inverse[i, i], 20) for i in range(len(b))))


def rows_of(responses, reference, design):
    used = sorted(set(responses))
    order = [c for c in used if c != reference] + [reference]
    return [(order.index(y), [mpf(str(v)) for v in design(a, x)], mpf(str(w)))
            for y, (_, a, x, w) in zip(responses, DATA)]


binary = [r[0] for r in DATA]
show("binary", *fit(rows_of(binary, 2, lambda a, x: [1, a == 1 and 1 or 0, a == 2 and 1 or 0, x]), 2))
show("three", *fit(rows_of(RESPONSES3, 1, lambda a, x: [1, x]), 3))
show("no intercept", *fit(rows_of(binary, 1, lambda a, x: [a == 1 and 1 or 0, a == 2 and 1 or 0, a == 3 and 1 or 0, x]), 2))
W = sum(mpf(str(r[3])) for r in DATA)
wb = [sum(mpf(str(r[3])) for r in DATA if r[0] == c) for c in (1, 2)]
print("binary initial", mp.nstr(sum(w * log(w / W) for w in wb), 20))
L0 = sum(w * log(w / W) for w in wb)
L1 = fit(rows_of(binary, 2, lambda a, x: [1, a == 1 and 1 or 0, a == 2 and 1 or 0, x]), 2)[0]
cs = 1 - exp(2 * (L0 - L1) / W)
print("R2", mp.nstr(cs, 20), mp.nstr(cs / (1 - exp(2 * L0 / W)), 20), mp.nstr(1 - L1 / L0, 20))
