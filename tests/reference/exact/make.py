#!/usr/bin/env python3
"""Writes the data sets, commands and exact results of this folder: `make.py` all, `make.py NAME ...` some.

`make.py --verify` writes nothing: it repeats two reference cases of another package with exact.py, and two of the
hardest cases here with the columns as they stand, without orthonormalisation, in 400 digits.
"""
import csv
import json
import math
import pathlib
import random
import sys

from mpmath import mp, mpf

import exact

HERE = pathlib.Path(__file__).resolve().parent
DIGITS = 30
PROVENANCE = ('exact.py and make.py of tests/reference/exact (mpmath, 120 decimal digits) on the doubles that the text of data.csv '
              'reads as; values to 30 digits, all of them good')


def plan(stages, weight):
    """Stages as in exact.covariance_of_totals."""
    lines = ['<?xml version="1.0" encoding="utf-8"?>', '<VORNTessel version="12.0">', '  <AnalysisDesign SRSestimator="wor">']
    for number, stage in enumerate(stages, 1):
        method = 'equal_wor' if stage.get('size') else 'wr'
        lines.append(f'    <AnalysisStage label="" stageNumber="{number}" estimationMethod="{method}">')
        for key, element in (('strata', 'StrataVarList'), ('clusters', 'ClusterVarList')):
            if stage[key]:
                lines += [f'      <{element}>'] + [f'        <Variable name="{v}"/>' for v in stage[key]] + [f'      </{element}>']
        if stage.get('size'):
            lines += ['      <PopulationSize>', f'        <Variable name="{stage["size"]}"/>', '      </PopulationSize>']
        lines.append('    </AnalysisStage>')
    return '\n'.join(lines + ['    <Weight>', f'      <Variable name="{weight}"/>', '    </Weight>', '  </AnalysisDesign>',
                              '</VORNTessel>', ''])


ONE_STAGE = [{'strata': ['h'], 'clusters': ['psu']}]


# ---- terms: the columns that a model effect has, with the names that tables print ----

class Covariate:
    """A product of covariates, `x` or `x*x`."""

    def __init__(self, text):
        self.text = text
        self.label = ' * '.join(text.split('*'))

    def columns(self, data):
        n = len(next(iter(data.values())))
        values = []
        for i in range(n):
            value = mpf(1)
            for name in self.text.split('*'):
                value *= exact.exact(data[name][i])
            values.append(value)
        return [(self.label, values)]


class Factor:
    """The indicators of the levels of `factor`, times a covariate when there is one. The last level is redundant beside
    an intercept, or beside the covariate itself; `full` when neither is in the model."""

    def __init__(self, factor, covariate=None, full=False):
        self.factor = factor
        self.covariate = covariate
        self.full = full
        self.text = f'{factor}*{covariate}' if covariate else factor
        self.label = f'{factor} * {covariate}' if covariate else factor

    def columns(self, data):
        levels = sorted(set(data[self.factor]))
        values = [exact.exact(v) for v in data[self.covariate]] if self.covariate else [mpf(1)] * len(data[self.factor])
        slope = f' * {self.covariate}' if self.covariate else ''
        return [(f'[{self.factor}={level}]{slope}', [x * (v == level) for x, v in zip(values, data[self.factor])])
                for level in (levels if self.full else levels[:-1])]


class Command:
    """One command and the model behind it. `customs`: (text of LMATRIX, rows over the non-redundant parameters of
    the first logit in the order intercept, terms; K)."""

    def __init__(self, name, terms, dependent='y', criteria='', customs=(), weight='w', plan_file='plan.xml', stages=None,
                 tests_effects=True, intercept=True):
        self.name = name
        self.terms = terms
        self.dependent = dependent
        self.criteria = criteria
        self.customs = customs
        self.weight = weight
        self.plan_file = plan_file
        self.stages = stages or ONE_STAGE
        self.tests_effects = tests_effects
        self.intercept = intercept

    def text(self):
        factors = list(dict.fromkeys(t.factor for t in self.terms if isinstance(t, Factor)))
        covariates = list(dict.fromkeys(v for t in self.terms for v in t.text.split('*') if v not in factors))
        lines = [f'TAVOREG {self.dependent}' + (' BY ' + ' '.join(factors) if factors else '') +
                 (' WITH ' + ' '.join(covariates) if covariates else '')]
        lines += [f"  /PLAN FILE='{self.plan_file}'", '  /MODEL ' + ' '.join(t.text for t in self.terms),
                  '  /CRITERIA MXITER=200 CHKSEP=0' + self.criteria]
        lines += [] if self.intercept else ['  /INTERCEPT INCLUDE=NO']
        lines += [f'  /CUSTOM LMATRIX={text}' for text, _, _ in self.customs]
        lines += ['  /STATISTICS PARAMETER SE', '  /PRINT NONE.', '']
        return '\n'.join(lines)

    def fit(self, data):
        categories = sorted(set(data[self.dependent]))
        y = [categories.index(v) for v in data[self.dependent]]
        n = len(y)
        columns = [('(Intercept)', [mpf(1)] * n)] if self.intercept else []
        effects = []
        for term in self.terms:
            own = term.columns(data)
            effects.append((term.label, len(columns), len(own)))
            columns += own
        names = [name for name, _ in columns]
        weights = [exact.exact(v) for v in data[self.weight]]
        return categories, names, effects, exact.Fit([c for _, c in columns], y, weights, self.stages, data)

    def checks(self, data):
        categories, names, effects, fit = self.fit(data)
        p = fit.p
        found = []

        def add(table, row, column, value, scale=None, **more):
            check = {'table': table, **more, 'row': row, 'column': column, 'value': mp.nstr(value, DIGITS)}
            if scale is not None:
                check['scale'] = mp.nstr(scale, 6)
            found.append(check)

        for j, category in enumerate(categories[:-1]):
            for k, name in enumerate(names):
                estimate, error = fit.estimates[j * p + k], fit.standard_error(j * p + k)
                add('ParameterEstimates', [category, name], 'B', estimate, max(abs(estimate), error))
                add('ParameterEstimates', [category, name], 'Std. Error', error)

        def unit_rows(first, count):
            return [[mpf(i == j * p + k) for i in range(p * fit.logits)] for j in range(fit.logits)
                    for k in range(first, first + count)]

        def add_f(table, row, rows, k=None, **more):
            rank, f = fit.wald(rows, k)
            found.append({'table': table, **more, 'row': row, 'column': 'df1', 'value': str(rank), 'exact': True})
            add(table, row, 'Wald F', f, max(f, mpf(1)), **more)

        if self.tests_effects:
            if self.intercept:
                add_f('TestsOfModelEffects', ['(Corrected Model)'], unit_rows(1, p - 1))
            for label, first, count in effects:
                add_f('TestsOfModelEffects', [label], unit_rows(first, count))
        for number, (_, rows, k) in enumerate(self.customs, 1):
            full = [[mpf(float(v)) for v in row] + [mpf(0)] * (p * (fit.logits - 1)) for row in rows]
            if fit.logits > 1:  # one row for each logit
                full = [[mpf(0)] * (p * j) + [mpf(float(v)) for v in row] + [mpf(0)] * (p * (fit.logits - 1 - j))
                        for j in range(fit.logits) for row in rows]
            for i, row in enumerate(full, 1):
                estimate, error = fit.contrast(row)
                add('IndividualTestResults', [f'L{i}'], 'Contrast Estimate', estimate, max(abs(estimate), error), nth=number)
                add('IndividualTestResults', [f'L{i}'], 'Std. Error', error, nth=number)
            add_f('OverallTestResults', [], full, k, nth=number)
        return found


# ---- the surveys ----

class Survey:
    """4 strata of 4 units of `inside` cases; columns hold texts as they stand in the file."""

    def __init__(self, seed, inside=4, strata=4, units=4):
        self.draw = random.Random(seed)
        self.n = strata * units * inside
        self.data = {'h': [str(1 + i // (units * inside)) for i in range(self.n)],
                     'psu': [str(1 + i // inside % units) for i in range(self.n)],
                     'w': [f'{self.draw.uniform(1, 4):.3f}' for _ in range(self.n)]}

    def __setitem__(self, name, values):
        self.data[name] = [v if isinstance(v, str) else repr(v) for v in values]

    def __getitem__(self, name):
        return [float(v) for v in self.data[name]]

    def normal(self, digits=6):
        return [round(self.draw.gauss(0, 1), digits) for _ in range(self.n)]

    def respond(self, predictors, names=('no', 'yes')):
        """A category for each case from linear predictors by logit; the last name has predictor 0."""
        out = []
        for eta in predictors:
            terms = [math.exp(e) for e in eta] + [1.0]
            u = self.draw.random() * sum(terms)
            k = 0
            while u > terms[k] and k < len(terms) - 1:
                u -= terms[k]
                k += 1
            out.append(names[k])
        return out


def offsets():
    s = Survey(101)
    z, v = s.normal(), s.normal()
    s['y'] = s.respond([[0.3 + 0.6 * a - 0.5 * b] for a, b in zip(z, v)])
    s['v'] = v
    commands = []
    for k in (0, 3, 6, 9, 12, 14):
        offset = 10.0**k
        s[f'x{k}'] = [offset + a for a in z]
        name = f'x{k}'
        commands.append(Command(f'offset of 1e{k} standard deviations', [Covariate(name), Covariate('v')], customs=[
            (f'1 {name} 1E{k}', [[1, offset, 0]], None),
            (f'1 {name} 1E{k} v 0; 0 {name} 1 v 0', [[1, offset, 0], [0, 1, 0]], None),
            (f'1 {name} 1E{k} v 1; 1 {name} 1E{k} v -1', [[1, offset, 1], [1, offset, -1]], None)]))
    return s.data, commands


def powers():
    s = Survey(102, inside=8)
    years = [1950 + int(s.draw.random() * 74) for _ in range(s.n)]
    ages = [18 + int(s.draw.random() * 70) for _ in range(s.n)]
    t = [(year - 1986) / 37 for year in years]
    s['yr'] = [str(year) for year in years]
    s['age'] = [str(age) for age in ages]
    s['y'] = s.respond([[0.2 + a - 1.5 * a * a + 0.5 * (age - 50) / 20] for a, age in zip(t, ages)])
    s['y3'] = s.respond([[0.2 + a - 1.5 * a * a, -0.3 + a**3] for a in t], ('a', 'b', 'c'))
    power = lambda name, count: [Covariate('*'.join([name] * k)) for k in range(1, count + 1)]
    commands = [Command('quadratic in an age', power('age', 2)), Command('cubic in an age', power('age', 3)),
                Command('quadratic in a calendar year', power('yr', 2)),
                Command('cubic in a calendar year', power('yr', 3)),
                Command('quartic in a calendar year', power('yr', 4), criteria=' SINGULAR=1E-20'),
                Command('cubic in a calendar year, three categories', power('yr', 3), dependent='y3')]
    return s.data, commands


def outliers():
    s = Survey(103)
    z, v = s.normal(), s.normal()
    s['v'] = v
    response = s.respond([[-0.2 + 0.8 * a - 0.4 * b] for a, b in zip(z, v)])
    at = 37
    fits, opposes = list(response), list(response)
    # The slope of `no` is positive: an outlier to the right that is `no` is what the others foretell.
    fits[at], opposes[at] = 'no', 'yes'
    s['y'], s['yopp'] = fits, opposes
    commands = []
    for k in (2, 5, 8):
        s[f'x{k}'] = [10.0**k if i == at else a for i, a in enumerate(z)]
        # Of the column's information less than 1e-12 is beside the outlier in the last one.
        criteria = ' SINGULAR=1E-20' if k == 8 else ''
        commands.append(Command(f'one value of 1e{k}', [Covariate(f'x{k}'), Covariate('v')], criteria=criteria))
        commands.append(Command(f'one value of 1e{k}, response opposed', [Covariate(f'x{k}'), Covariate('v')],
                                dependent='yopp', criteria=criteria))
    s['inc'] = ['99999999' if i == at else f'{50 + 10 * a:.2f}' for i, a in enumerate(z)]
    commands.append(Command('an undeclared 99999999 near 50', [Covariate('inc'), Covariate('v')]))
    return s.data, commands


def collinear():
    s = Survey(104)
    z, u = s.normal(), s.normal()
    s['y'] = s.respond([[0.1 + 0.7 * a + 0.3 * b] for a, b in zip(z, u)])
    s['x'] = z
    commands = []
    for k in (2, 4, 5, 6, 7):
        s[f'x{k}'] = [a + 10.0**-k * b for a, b in zip(z, u)]
        commands.append(Command(f'two columns 1e-{k} apart', [Covariate('x'), Covariate(f'x{k}')],
                                criteria=' SINGULAR=1E-20' if k >= 6 else ''))
    return s.data, commands


def rare():
    s = Survey(105, inside=8)
    x = s.normal()
    s['x'] = x
    s['y'] = s.respond([[1.0 + 0.5 * a] for a in x])
    s['y3'] = s.respond([[0.9 + 0.5 * a, 0.7 - 0.4 * a] for a in x], ('a', 'b', 'c'))
    s['f'] = s.respond([[0.6, 0.4]] * s.n, ('p', 'q', 'r'))
    weights = s['w']
    commands = []

    def add(name, dependent, terms, k, is_rare):
        column = f'w{len(commands)}'
        s[column] = [float(f'{w:.3f}e-{k}') if is_rare(i) else w for i, w in enumerate(weights)]
        commands.append(Command(name, terms, dependent=dependent, weight=column, plan_file=f'plan_{column}.xml'))

    for k in (4, 6, 8, 10):
        for dependent, reference, other in (('y', 'yes', 'no'), ('y3', 'c', 'a')):
            count = 'two' if dependent == 'y' else 'three'
            add(f'reference of {count} categories with a share of 1e-{k}', dependent, [Covariate('x')], k,
                lambda i: s.data[dependent][i] == reference)
            add(f'first of {count} categories with a share of 1e-{k}', dependent, [Covariate('x')], k,
                lambda i: s.data[dependent][i] == other)
        add(f'last level of a factor with a share of 1e-{k}', 'y', [Factor('f'), Covariate('x')], k,
            lambda i: s.data['f'][i] == 'r')
        add(f'first level of a factor with a share of 1e-{k}', 'y', [Factor('f'), Covariate('x')], k,
            lambda i: s.data['f'][i] == 'p')
    return s.data, commands


def units():
    s = Survey(106)
    x, v = s.normal(), s.normal()
    s['x'], s['v'] = x, v
    s['y'] = s.respond([[0.2 + 0.5 * a - 0.5 * b] for a, b in zip(x, v)])
    texts = s.data['w']
    commands = []
    for k in (-300, -200, -100, -14, -13, 0, 13, 100, 200, 300, 305):
        column = f'w_{"m" if k < 0 else ""}{abs(k)}'
        s[column] = [f'{t}e{k}' for t in texts]
        commands.append(Command(f'weights in units of 1e{k}', [Covariate('x'), Covariate('v')], weight=column,
                                plan_file=f'plan_{column}.xml', customs=[('x 1 v 0; x 0 v 1', [[0, 1, 0], [0, 0, 1]], None)]))
    return s.data, commands


def sizes():
    s = Survey(107)
    x, v = s.normal(), s.normal()
    s['v'] = v
    s['y'] = s.respond([[0.2 + 0.5 * a - 0.5 * b] for a, b in zip(x, v)])
    commands = []
    for k in (-300, -170, -155, -100, 0, 100, 150, 155, 170, 300):
        column = f'x_{"m" if k < 0 else ""}{abs(k)}'
        s[column] = [f'{a}e{k}' for a in x]
        commands.append(Command(f'a column of order 1e{k}', [Covariate(column), Covariate('v')]))
    return s.data, commands


def rows():
    s = Survey(108)
    x, v = s.normal(), s.normal()
    s['x'], s['v'] = x, v
    s['y'] = s.respond([[0.2 + 0.5 * a - 0.5 * b] for a, b in zip(x, v)])
    customs = [('x 1', [[0, 1, 0]], None), ('x 1E160', [[0, 1e160, 0]], None), ('x 1E-160', [[0, 1e-160, 0]], None),
               ('x 1E160; v 1E-160', [[0, 1e160, 0], [0, 0, 1e-160]], None),
               ('x 1E300; v 1', [[0, 1e300, 0], [0, 0, 1]], None),
               ('x 1E-300; v 1E-300', [[0, 1e-300, 0], [0, 0, 1e-300]], None),
               # nearly parallel rows: less than 1e-6 and 1e-10 of the second row's variance is its own
               ('x 1E3 v 1; x 1E3 v -1', [[0, 1e3, 1], [0, 1e3, -1]], None),
               ('1 x 1E5; 0 x 1E5', [[1, 1e5, 0], [0, 1e5, 0]], None)]
    return s.data, [Command('rows of any size', [Covariate('x'), Covariate('v')], customs=customs)]


def interactions():
    s = Survey(110, inside=8)
    z, v = s.normal(), s.normal()
    years = [1950 + int(s.draw.random() * 74) for _ in range(s.n)]
    s['sex'] = s.respond([[0.1]] * s.n, ('f', 'm'))
    s['yr'] = [str(year) for year in years]
    s['y'] = s.respond([[0.4 * a + (0.8 if sex == 'f' else -0.5) * (year - 1986) / 37 + 0.3 * b]
                        for a, b, year, sex in zip(z, v, years, s.data['sex'])])
    commands = [
        Command('a slope in a calendar year for each sex', [Factor('sex'), Covariate('yr'), Factor('sex', 'yr')],
                tests_effects=False, customs=[('sex*yr 1 -1', [[0, 0, 0, 1]], None),
                                              ('1 sex 1 0 yr 1986 sex*yr 1986 0', [[1, 1, 1986, 1986]], None),
                                              ('sex 1 -1 sex*yr 2020 -2020', [[0, 1, 0, 2020]], None)]),
        Command('nested slopes in a calendar year', [Factor('sex'), Factor('sex', 'yr', full=True)], tests_effects=False,
                customs=[('sex*yr 1 0; sex*yr 0 1', [[0, 0, 1, 0], [0, 0, 0, 1]], None)])]
    for k in (3, 6):
        s[f'x{k}'] = [10.0**k + a for a in z]
        s[f'v{k}'] = [10.0**k + a for a in v]
        commands.append(Command(f'nested slopes, offset of 1e{k}', [Factor('sex'), Factor('sex', f'x{k}', full=True)],
                                tests_effects=False))
    for k in (1, 3):
        if k == 1:
            s['x1'], s['v1'] = [10 + a for a in z], [10 + a for a in v]
        commands.append(Command(f'a product of covariates, offsets of 1e{k}',
                                [Covariate(f'x{k}'), Covariate(f'v{k}'), Covariate(f'x{k}*v{k}')]))
    return s.data, commands


def no_intercept():
    s = Survey(111, inside=8)
    z = s.normal()
    s['f'] = s.respond([[0.3, 0.1]] * s.n, ('p', 'q', 'r'))
    s['y'] = s.respond([[0.2 + 0.5 * a] for a in z])
    commands = []
    for k in (0, 3, 6):
        s[f'x{k}'] = [10.0**k + a for a in z]
        commands.append(Command(f'no intercept, offset of 1e{k} beside a factor', [Factor('f', full=True), Covariate(f'x{k}')],
                                intercept=False, tests_effects=False, customs=[(f'x{k} 1', [[0, 0, 0, 1]], None)]))
    return s.data, commands


def two_stage():
    s = Survey(109, inside=3, strata=3, units=5)
    stages = [{'strata': ['h'], 'clusters': ['psu'], 'size': 'nunits'}, {'strata': [], 'clusters': ['ssu'], 'size': 'ncases'}]
    s['ssu'] = [str(1 + i % 3) for i in range(s.n)]
    s['nunits'] = [{'1': '17', '2': '40', '3': '9'}[h] for h in s.data['h']]
    s['ncases'] = [str(6 + (int(h) + int(u)) % 4) for h, u in zip(s.data['h'], s.data['psu'])]
    z = s.normal()
    years = [1950 + int(s.draw.random() * 74) for _ in range(s.n)]
    t = [(year - 1986) / 37 for year in years]
    s['x'] = [1e6 + a for a in z]
    s['yr'] = [str(year) for year in years]
    s['y3'] = s.respond([[0.2 + 0.5 * a + 0.4 * b, -0.1 - 0.4 * a] for a, b in zip(z, t)], ('a', 'b', 'c'))
    commands = [Command('two stages without replacement, offset of 1e6', [Covariate('x')], dependent='y3', stages=stages),
                Command('two stages without replacement, quadratic in a calendar year', [Covariate('yr'), Covariate('yr*yr')],
                        dependent='y3', stages=stages)]
    return s.data, commands


FAMILIES = [offsets, powers, outliers, collinear, rare, units, sizes, rows, interactions, no_intercept,
            two_stage]


def write(family):
    data, commands = family()
    folder = HERE / family.__name__
    folder.mkdir(exist_ok=True)
    with open(folder / 'data.csv', 'w', newline='') as file:
        writer = csv.writer(file, lineterminator='\n')
        writer.writerow(data)
        writer.writerows(zip(*data.values()))
    (folder / 'command.tvs').write_text('\n'.join(command.text() for command in commands))
    for command in commands:
        (folder / command.plan_file).write_text(plan(command.stages, command.weight))
    results = [{'name': command.name, 'checks': command.checks(data)} for command in commands]
    lines = ['{', f' "provenance": {json.dumps(PROVENANCE)},', ' "commands": [']
    for i, result in enumerate(results):
        lines.append(f'  {{"name": {json.dumps(result["name"])}, "checks": [')
        lines.append(',\n'.join('   ' + json.dumps(check) for check in result['checks']))
        lines.append('  ]}' + (',' if i + 1 < len(results) else ''))
    (folder / 'exact.json').write_text('\n'.join(lines + [' ]', '}', '']))
    print(family.__name__, len(commands), 'commands', sum(len(r['checks']) for r in results), 'checks', flush=True)


# ---- the road checked by another road ----

def verify_other_package():
    """Two stages without replacement, binary and with three categories: results of another package."""
    stages = [{'strata': [], 'clusters': ['dnum'], 'size': 'fpc1'}, {'strata': [], 'clusters': ['snum'], 'size': 'fpc2'}]
    good = True
    for name, dependent, terms in (('03_two_stage_wor', 'award', [Factor('stype'), Covariate('meals'), Covariate('mobility')]),
                                   ('05_multinomial', 'stype', [Factor('swide'), Covariate('meals'), Covariate('enroll')])):
        with open(HERE.parent / name / 'data.csv', newline='') as file:
            data_rows = [row for row in csv.DictReader(file) if all(row.values())]  # cases with a missing value leave
        data = {column: [row[column] for row in data_rows] for column in data_rows[0]}
        wanted = {(c['table'], *c['row'], *c['column']): c['value']
                  for c in json.loads((HERE.parent / name / 'expected.json').read_text())['checks']}
        command = Command('', terms, dependent=dependent, weight='pw', stages=stages)
        differences = []
        for check in command.checks(data):
            key = (check['table'], *check['row'], check['column'])
            if key in wanted:
                differences.append(abs(mpf(check['value']) / mpf(wanted[key]) - 1))
        print(f'{name}: {len(differences)} numbers, largest relative difference', mp.nstr(max(differences), 3))
        good = good and len(differences) > 15 and max(differences) < 1e-8
    return good


def verify_plain_columns():
    good = True
    for family, index in ((offsets, 5), (powers, 4)):
        data, commands = family()
        before = commands[index].checks(data)
        plain, digits = exact.orthonormal, mp.dps
        try:
            mp.dps = 400
            exact.orthonormal = lambda columns, weights: (columns, [[mpf(i == j) for j in range(len(columns[0]))]
                                                                    for i in range(len(columns[0]))])
            after = commands[index].checks(data)
        finally:
            exact.orthonormal, mp.dps = plain, digits
        same = before == after
        print(family.__name__, commands[index].name + ':', 'the same 30 digits' if same else 'other digits')
        good = good and same
    return good


def main(arguments):
    if arguments == ['--verify']:
        return 0 if all([verify_other_package(), verify_plain_columns()]) else 1
    for family in FAMILIES:
        if not arguments or family.__name__ in arguments:
            write(family)
    return 0


if __name__ == '__main__':
    sys.exit(main(sys.argv[1:]))
