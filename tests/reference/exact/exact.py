"""Pseudo-maximum-likelihood fits of survey data in 120 digits.

The estimates, design-based standard errors and Wald tests of a baseline-category logit, computed from the doubles
that a program reads out of a text file. Every step is written from its formula and none is tuned: with 120 digits
nothing that cancels here loses what is recorded (30 digits). Estimates: Newton's method on orthonormal columns until
the step is below 1e-90 of them. Covariance: G M G (Binder 1983), G the inverse of the information, M the covariance of the
totals of the scores by stages (Cochran 1977, chapter 11). Wald F with d - r + 1 degrees of freedom (Korn and Graubard
1990).
"""
from mpmath import mp, mpf, matrix

mp.dps = 120


def exact(text):
    """The double that a correctly rounding reader makes of a number."""
    return mpf(float(text))


# ---- linear algebra on lists ----

def cholesky(a):
    n = len(a)
    f = [[mpf(0)] * n for _ in range(n)]
    for i in range(n):
        for j in range(i + 1):
            rest = a[i][j] - mp.fsum(f[i][k] * f[j][k] for k in range(j))
            f[i][j] = mp.sqrt(rest) if i == j else rest / f[j][j]
    return f


def solve(factor, b):
    n = len(b)
    y = list(b)
    for i in range(n):
        y[i] = (y[i] - mp.fsum(factor[i][k] * y[k] for k in range(i))) / factor[i][i]
    for i in reversed(range(n)):
        y[i] = (y[i] - mp.fsum(factor[k][i] * y[k] for k in range(i + 1, n))) / factor[i][i]
    return y


def inverse(a):
    factor = cholesky(a)
    n = len(a)
    columns = [solve(factor, [mpf(i == j) for i in range(n)]) for j in range(n)]
    return [[columns[j][i] for j in range(n)] for i in range(n)]


def product(a, b):
    columns = list(zip(*b))
    return [[mp.fsum(x * y for x, y in zip(row, column)) for column in columns] for row in a]


def transpose(a):
    return [list(row) for row in zip(*a)]


def orthonormal(rows, weights):
    """The rows on columns with unit weighted squares, orthogonal, and B: the rows times B are the new ones."""
    p = len(rows[0])
    columns = transpose(rows)
    basis = [[mpf(i == j) for i in range(p)] for j in range(p)]  # by column
    dot = lambda u, v: mp.fsum(w * x * y for w, x, y in zip(weights, u, v))
    for j in range(p):
        for _ in range(2):
            for k in range(j):
                c = dot(columns[k], columns[j])
                columns[j] = [x - c * y for x, y in zip(columns[j], columns[k])]
                basis[j] = [x - c * y for x, y in zip(basis[j], basis[k])]
        size = mp.sqrt(dot(columns[j], columns[j]))
        columns[j] = [x / size for x in columns[j]]
        basis[j] = [x / size for x in basis[j]]
    return transpose(columns), transpose(basis)


# ---- the design ----

def spread(units, inner, fraction):
    """(1-f) n/(n-1) times the cross-products about the mean, plus f times the sum of the units' own variances."""
    n = len(units)
    size = len(units[0])
    total = [[mpf(0)] * size for _ in range(size)]
    if n > 1:
        means = [mp.fsum(u[i] for u in units) / n for i in range(size)]
        factor = (1 - fraction) * mpf(n) / (n - 1)
        for u in units:
            d = [x - m for x, m in zip(u, means)]
            for i in range(size):
                for j in range(size):
                    total[i][j] += factor * d[i] * d[j]
    for own in inner:
        for i in range(size):
            for j in range(size):
                total[i][j] += fraction * own[i][j]
    return total


def covariance_of_totals(scores, stages, data):
    """Stages: dicts with `strata` and `clusters` (names of columns), and `size` (a column of population sizes) for
    sampling without replacement."""
    size = len(scores[0])

    def level(cases, depth):
        total = [[mpf(0)] * size for _ in range(size)]
        if depth == len(stages):
            return total
        stage = stages[depth]
        strata = {}
        for case in cases:
            strata.setdefault(tuple(data[v][case] for v in stage['strata']), []).append(case)
        for members in strata.values():
            clusters = {}
            for case in members:
                key = tuple(data[v][case] for v in stage['clusters']) if stage['clusters'] else case
                clusters.setdefault(key, []).append(case)
            units = [[mp.fsum(scores[c][i] for c in inside) for i in range(size)] for inside in clusters.values()]
            fraction = mpf(0)
            inner = []
            if stage.get('size'):
                fraction = len(units) / exact(data[stage['size']][members[0]])
                inner = [level(inside, depth + 1) for inside in clusters.values()]
            part = spread(units, inner, fraction)
            total = [[x + y for x, y in zip(r, s)] for r, s in zip(total, part)]
        return total

    return level(list(range(len(scores))), 0)


def degrees_of_freedom(stages, data, n):
    first = stages[0]
    strata = {tuple(data[v][i] for v in first['strata']) for i in range(n)}
    units = {tuple(data[v][i] for v in first['strata'] + first['clusters']) if first['clusters'] else i for i in range(n)}
    return len(units) - len(strata)


# ---- the fit ----

class Fit:
    """columns: one list of numbers for each non-redundant parameter of a logit; y: category numbers 0 .. K-1, the last
    being the reference. Parameters stand logit by logit."""

    def __init__(self, columns, y, weights, stages, data):
        self.p = len(columns)
        self.logits = max(y)
        self.d = degrees_of_freedom(stages, data, len(y))
        rows, basis = orthonormal(transpose(columns), weights)
        self.iterate(rows, y, weights)
        scores = []
        for x, probability, category, w in zip(rows, self.probabilities(rows), y, weights):
            scores.append([w * ((j == category) - probability[j]) * v for j in range(self.logits) for v in x])
        m = covariance_of_totals(scores, stages, data)
        g = inverse(self.information(rows, weights))
        v = product(product(g, m), g)
        size = self.p * self.logits
        back = [[basis[i % self.p][j % self.p] if i // self.p == j // self.p else mpf(0) for j in range(size)]
                for i in range(size)]
        self.estimates = [mp.fsum(b * e for b, e in zip(row, self.beta)) for row in back]
        self.covariance = product(product(back, v), transpose(back))

    def probabilities(self, rows):
        for x in rows:
            eta = [mp.fsum(b * v for b, v in zip(self.beta[j * self.p:(j + 1) * self.p], x)) for j in range(self.logits)]
            top = max(eta + [mpf(0)])
            terms = [mp.exp(e - top) for e in eta + [mpf(0)]]
            total = mp.fsum(terms)
            yield [t / total for t in terms]

    def likelihood(self, rows, y, weights):
        return mp.fsum(w * mp.log(p[c]) for w, p, c in zip(weights, self.probabilities(rows), y))

    def information(self, rows, weights):
        size = self.p * self.logits
        total = [[mpf(0)] * size for _ in range(size)]
        for x, p, w in zip(rows, self.probabilities(rows), weights):
            for i in range(self.logits):
                for j in range(i + 1):
                    # p (1 - p) with 1 - p as the sum of the others, which keeps its digits
                    c = w * p[i] * (mp.fsum(p[:i] + p[i + 1:]) if i == j else -p[j])
                    for a in range(self.p):
                        for b in range(self.p):
                            total[i * self.p + a][j * self.p + b] += c * x[a] * x[b]
        for i in range(size):
            for j in range(i):
                total[j][i] = total[i][j]
        return total

    def iterate(self, rows, y, weights):
        size = self.p * self.logits
        self.beta = [mpf(0)] * size
        value = self.likelihood(rows, y, weights)
        for _ in range(500):
            score = [mpf(0)] * size
            for x, p, c, w in zip(rows, self.probabilities(rows), y, weights):
                for j in range(self.logits):
                    r = w * ((j == c) - p[j])
                    for a in range(self.p):
                        score[j * self.p + a] += r * x[a]
            step = solve(cholesky(self.information(rows, weights)), score)
            before = self.beta
            length = mpf(1)
            while True:
                self.beta = [b + length * s for b, s in zip(before, step)]
                now = self.likelihood(rows, y, weights)
                if now >= value - abs(value) * mpf(10)**-110:
                    break
                length /= 2
            value = now
            if max(abs(s) for s in step) <= mpf(10)**-90 * max(abs(b) for b in self.beta):
                return
        raise RuntimeError('no convergence')

    def standard_error(self, k):
        return mp.sqrt(self.covariance[k][k])

    def contrast(self, row):
        """Estimate and standard error of one row over all parameters."""
        estimate = mp.fsum(l * b for l, b in zip(row, self.estimates))
        half = [mp.fsum(l * v for l, v in zip(row, column)) for column in transpose(self.covariance)]
        return estimate, mp.sqrt(mp.fsum(h * l for h, l in zip(half, row)))

    def wald(self, rows, k=None):
        """Rank and Wald F of L b = K; the rows must be independent."""
        difference = [self.contrast(row)[0] - (k[i] if k else 0) for i, row in enumerate(rows)]
        a = product(product(rows, self.covariance), transpose(rows))
        chi = mp.fsum(x * s for x, s in zip(difference, solve(cholesky(a), difference)))
        r = len(rows)
        return r, (self.d - r + 1) / (mpf(r) * self.d) * chi
