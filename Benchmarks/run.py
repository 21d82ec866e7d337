#!/usr/bin/python3
"""Runs the benchmarks and prints, for each piece of work, the library beside its peers.

usage: run.py BUILD_FOLDER [AREA]

A benchmark is named area/item/who; what has the same area and item did the same work in the same
process. Every program repeats each measurement in random order; the medians are compared. The ratio
is a peer's time over the library's: above 1 the library is faster. Peers that promise less are
marked and have a ratio of their own. Tables go to Benchmarks/results/AREA.md together with the command
that made them. The area scan is scan.py's, the area size is size.py's.
"""
import collections
import datetime
import json
import pathlib
import platform
import re
import subprocess
import sys

build = pathlib.Path(sys.argv[1]).resolve()
wanted = sys.argv[2] if len(sys.argv) > 2 else ''
results = pathlib.Path(__file__).resolve().parent / 'results'
OWN = 'vx'

# What promises less than the library, and what the promise is that it does not make.
WEAKER = [
    (r'json/.*/RapidJSON', 'RapidJSON with its pool: no node can be freed alone'),
    (r'msgpack/decode/.*/msgpack-c(xx)?', 'msgpack: one zone for all objects, none can be freed alone'),
    (r'xml/(parse/.*|tree_clone)/pugixml',
     'pugixml: one arena for all nodes, no check of UTF-8 or of names'),
    (r'strings/(find4k|icompare)/libc_.*', 'libc: stops at a NUL'),
    (r'strings/to_int/std_from_chars', 'from_chars: takes a text with something behind the number'),
    (r'config/set_save.*/(boost_property_tree|SimpleIni)',
     'boost, SimpleIni: overwrite the file, which a power cut leaves half written'),
    (r'cache/.*', 'maps: an object is not fetched, waited for or kept while it is in use'),
    (r'filecache/open_ready/.*', 'the floor: a file is opened, none is produced, counted or dated'),
    (r'search/evaluate_10k/std_function_tree', 'functions: compiled for the types of these criteria'),
]

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


def natural(text):
    return [int(part) if part.isdigit() else part for part in re.split(r'(\d+)', text)]


def weakness(name):
    return next((why for pattern, why in WEAKER if re.fullmatch(pattern, name)), None)


def table(area, items):
    lines = ['| work | libvx | best peer | second | third | best of the same promise / libvx | best of any / libvx |',
             '|---|---|---|---|---|---|---|']
    same, any_, reasons = [], [], set()
    for item, row in sorted(items.items(), key=lambda pair: natural(pair[0])):
        own = row.pop(OWN, None)
        # Other ways through the library are shown, but are no peers.
        peers = sorted(row.items(), key=lambda pair: pair[1])
        weak = {who: weakness(f'{area}/{item}/{who}') for who, _ in peers}
        reasons.update(weak[who] for who, _ in peers[:3] if weak[who])
        cells = [f'{who}{"*" if weak[who] else ""} {spelled(time)}' for who, time in peers[:3]]
        cells += [''] * (3 - len(cells))
        rivals = [(who, time) for who, time in peers if not who.startswith(OWN + '_')]
        for found, ratios in (([t for who, t in rivals if not weak[who]], same), ([t for _, t in rivals], any_)):
            if own and found:
                ratios.append(found[0] / own)
            cells.append(f'{found[0] / own:.2f}' if own and found else '')
        lines.append(f'| {area}/{item} | {spelled(own) if own else "-"} | ' + ' | '.join(cells) + ' |')
    for ratios, what in ((same, 'the same promise'), (any_, 'any promise')):
        if ratios:
            lines.append(f'\nMedian against the best peer of {what}: {median(ratios):.2f} over {len(ratios)} items.')
    if reasons:
        lines.append('\n\\* promises less.' + ''.join(f' {why[0].upper()}{why[1:]}.' for why in sorted(reasons)))
    return '\n'.join(lines)


results.mkdir(exist_ok=True)
model = next((line.split(':')[1].strip() for line in open('/proc/cpuinfo') if 'model name' in line), '')
for area, items in sorted(times.items()):
    text = table(area, items)
    (results / f'{area}.md').write_text(
        f'# {area}\n\nMade by `./dev bench {area}` on {datetime.date.today()}: {platform.machine()}, {model}, '
        f'two shared cores, g++ -O2, medians of 7.\n\n{text}\n')
    print(f'\n{text}')

for area in ('scan', 'size'):
    if wanted in ('', area):
        subprocess.run([sys.executable, str(pathlib.Path(__file__).with_name(f'{area}.py')), str(build)],
                       check=True)
