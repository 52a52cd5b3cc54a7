#!/usr/bin/env python3
"""Measures a program against the exact results of this folder.

    accuracy.py PROGRAM            prints the table of agreeing digits
    accuracy.py PROGRAM PAGE       writes it between the markers of a page
    accuracy.py PROGRAM --all      prints every number that misses the goal
"""
import json
import math
import pathlib
import subprocess
import sys
from decimal import Decimal, getcontext

HERE = pathlib.Path(__file__).resolve().parent
GOAL = 1e-9
BEGIN, END = '<!-- table of agreeing digits -->', '<!-- end of the table -->'
KINDS = {'B': 'estimates', 'Contrast Estimate': 'estimates', 'Std. Error': 'standard errors', 'Wald F': 'Wald F', 'df1': 'ranks'}
COLUMNS = ['estimates', 'standard errors', 'Wald F']

getcontext().prec = 60


def is_subsequence(part, whole):
    rest = iter(whole)
    return all(any(p == w for w in rest) for p in part)


def find(tables, check):
    filled = [t for t in tables if t['id'] == check['table'] and t['cells']]
    at = check.get('nth', 1) - 1
    if at >= len(filled):
        return None
    cells = [c for c in filled[at]['cells'] if is_subsequence(check['row'], c['row']) and is_subsequence([check['column']], c['column'])]
    return cells[0]['value'] if len(cells) == 1 else None


def error(value, check):
    """Relative to the value; of an estimate to its standard error, and of F to 1, where these are larger."""
    if not isinstance(value, (int, float)) or not math.isfinite(value):
        return math.inf
    want = Decimal(check['value'])
    scale = Decimal(check['scale']) if 'scale' in check else abs(want)
    return float(abs(Decimal(value) - want) / scale)


def run(program, folder):
    done = subprocess.run([program, 'run', 'command.tvs', '--data', 'data.csv', '--format', 'json'], cwd=folder, capture_output=True, text=True)
    return json.loads(done.stdout)['commands']


def measure(program):
    """By family: a list of (name of the command, messages, list of (check, value, error))."""
    families = {}
    for path in sorted(HERE.glob('*/exact.json')):
        exact = json.loads(path.read_text())['commands']
        commands = run(program, path.parent)
        families[path.parent.name] = [
            (want['name'], got['messages'], [(c, v, error(v, c)) for c in want['checks'] for v in [find(got['tables'], c)]])
            for want, got in zip(exact, commands, strict=True)]
    return families


def digits(errors):
    if not errors:
        return ''
    worst = max(errors)
    return '0' if worst >= 1 else f'{min(15.0, -math.log10(worst)) if worst > 0 else 15.0:.1f}'


def table(families):
    lines = ['| problem | estimates | standard errors | Wald F | degrees of freedom |', '|---|---|---|---|---|']
    for commands in families.values():
        for name, _, results in commands:
            cells = []
            for column in COLUMNS:
                errors = [e for c, _, e in results if KINDS[c['column']] == column]
                cells.append(digits(errors))
            ranks = [e == 0 for c, _, e in results if c['column'] == 'df1']
            cells.append(('all right' if all(ranks) else 'wrong') if ranks else '')
            lines.append(f'| {name} | ' + ' | '.join(cells) + ' |')
    return '\n'.join(lines)


def main(arguments):
    if not 1 <= len(arguments) <= 2:
        print(__doc__)
        return 2
    families = measure(str(pathlib.Path(arguments[0]).resolve()))
    if arguments[1:] == ['--all']:
        for family, commands in families.items():
            for name, messages, results in commands:
                for check, value, e in results:
                    if e > GOAL:
                        print(f'{family}: {name}: {check["table"]} {check["row"]} {check["column"]}: {value} for {check["value"]}, error {e:.1e}')
                for message in messages:
                    print(f'{family}: {name}: {message["level"]}: {message["text"]}')
    elif arguments[1:]:
        page = pathlib.Path(arguments[1])
        text = page.read_text()
        before, rest = text.split(BEGIN)
        after = rest.split(END)[1]
        page.write_text(f'{before}{BEGIN}\n\n{table(families)}\n\n{END}{after}')
    else:
        print(table(families))
    return 0


if __name__ == '__main__':
    sys.exit(main(sys.argv[1:]))
