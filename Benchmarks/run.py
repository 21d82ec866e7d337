#!/usr/bin/python3
"""Runs the benchmarks and prints, for each piece of work, the library beside its peers.

usage: run.py BUILD_FOLDER [AREA]

A benchmark is named area/item/who; what has the same area and item did the same work in the same
process. Every program repeats each measurement in random order; the medians are compared. The ratio
is the best peer's time over the library's: above 1 the library is faster. Tables go to
Benchmarks/results/AREA.md together with the command that made them. The area scan is scan.py's.
"""
import collections
import datetime
import json
import pathlib
import platform
import subprocess
import sys

build = pathlib.Path(sys.argv[1]).resolve()
wanted = sys.argv[2] if len(sys.argv) > 2 else ''
results = pathlib.Path(__file__).resolve().parent / 'results'
OWN = 'vx'

times = collections.defaultdict(lambda: collections.defaultdict(dict))
for name in (build / 'benchmarks.txt').read_text().split():
    program = next(p for p in build.glob(f'Benchmarks/**/{name}') if p.is_file())
    listed = subprocess.run([program, '--benchmark_list_tests'], capture_output=True, text=True)
    if wanted and not any(line.startswith(wanted + '/') for line in listed.stdout.splitlines()):
        continue
    print(f'running {name}', file=sys.stderr, flush=True)
    run = subprocess.run(
        [program, '--benchmark_format=json', '--benchmark_repetitions=7', '--benchmark_min_time=0.05',
         '--benchmark_enable_random_interleaving=true', '--benchmark_report_aggregates_only=true']
        + ([f'--benchmark_filter=^{wanted}/'] if wanted else []),
        stdout=subprocess.PIPE, text=True, check=True)
    for row in json.loads(run.stdout)['benchmarks']:
        if row.get('error_occurred'):
            raise SystemExit(f"{row['name']}: {row['error_message']}")
        if row['aggregate_name'] != 'median':
            continue
        parts = [p for p in row['run_name'].split('/') if p not in ('real_time', 'process_time')
                 and ':' not in p]
        area, item, who = parts[0], '/'.join(parts[1:-1]), parts[-1]
        scale = {'ns': 1, 'us': 1e3, 'ms': 1e6, 's': 1e9}[row['time_unit']]
        kind = 'real_time' if 'real_time' in row['run_name'] else 'cpu_time'
        times[area][item][who] = row[kind] * scale


def spelled(nanoseconds):
    for unit, size in (('ms', 1e6), ('us', 1e3)):
        if nanoseconds >= size:
            return f'{nanoseconds / size:.3g} {unit}'
    return f'{nanoseconds:.3g} ns'


def median(values):
    ordered = sorted(values)
    middle = len(ordered) // 2
    return ordered[middle] if len(ordered) % 2 else (ordered[middle - 1] + ordered[middle]) / 2


def table(area, items):
    lines = ['| work | libvx | best peer | second | third | best peer / libvx |', '|---|---|---|---|---|---|']
    ratios = []
    for item, row in items.items():
        own = row.pop(OWN, None)
        peers = sorted(row.items(), key=lambda pair: pair[1])
        cells = [f'{who} {spelled(time)}' for who, time in peers[:3]] + [''] * (3 - len(peers))
        ratio = ''
        if own and peers:
            ratios.append(peers[0][1] / own)
            ratio = f'{ratios[-1]:.2f}'
        lines.append(f'| {area}/{item} | {spelled(own) if own else "-"} | ' + ' | '.join(cells[:3])
                     + f' | {ratio} |')
    if ratios:
        lines.append(f'\nMedian of the last column: {median(ratios):.2f} over {len(ratios)} items.')
    return '\n'.join(lines)


results.mkdir(exist_ok=True)
model = next((line.split(':')[1].strip() for line in open('/proc/cpuinfo') if 'model name' in line), '')
for area, items in sorted(times.items()):
    text = table(area, items)
    (results / f'{area}.md').write_text(
        f'# {area}\n\nMade by `./dev bench {area}` on {datetime.date.today()}: {platform.machine()}, {model}, '
        f'two shared cores, g++ -O2, medians of 7.\n\n{text}\n')
    print(f'\n{text}')

if wanted in ('', 'scan'):
    subprocess.run([sys.executable, str(pathlib.Path(__file__).with_name('scan.py')), str(build)], check=True)
