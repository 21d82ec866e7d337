#!/usr/bin/python3
"""Measures vxmedia reading 5000 media files beside the tools that people use, and writes a table.

usage: scan.py BUILD_FOLDER

The files are copies of the samples in 50 directories; they are in the system's cache. vxmedia, which
begins without a library of its own each time, and exiftool read all of them in one process. ffprobe takes one file each: some of them are measured, and
the time is scaled. The floor is a process that reads the first 64 bytes of every file.
"""
import datetime
import pathlib
import platform
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

FILES = 5000
PROBED = 50
REPEATS = 5

build = pathlib.Path(sys.argv[1]).resolve()
root = pathlib.Path(__file__).resolve().parent.parent


def make_library(folder):
    samples = sorted(p for p in (root / 'Programs/vxmedia/samples').rglob('*') if p.is_file())
    for number in range(FILES):
        source = samples[number % len(samples)]
        directory = folder / f'album-{number % 50:02}'
        directory.mkdir(exist_ok=True)
        shutil.copyfile(source, directory / f'{number:04}-{source.name}')


def measured(command, check):
    """Returns the median of the seconds that a command takes; its output must pass the check."""
    seconds = []
    for _ in range(REPEATS):
        shutil.rmtree(settings, ignore_errors=True)
        settings.mkdir()
        start = time.monotonic()
        run = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                             errors='replace')
        seconds.append(time.monotonic() - start)
        if not check(run.stdout):
            raise SystemExit(f'{command[0]} did other work: {run.stdout[-300:]}{run.stderr[-300:]}')
    return statistics.median(seconds)


with tempfile.TemporaryDirectory() as scratch:
    library = pathlib.Path(scratch) / 'library'
    settings = pathlib.Path(scratch) / 'settings'
    library.mkdir()
    make_library(library)
    files = sorted(str(p) for p in library.rglob('*') if p.is_file())
    probed = files[::FILES // PROBED]

    rows = {}
    rows['floor: find, head -c 64'] = measured(
        ['find', str(library), '-type', 'f', '-exec', 'head', '-q', '-c', '64', '{}', '+'],
        lambda text: text != '')
    rows['vxmedia'] = measured(
        [str(build / 'Programs/vxmedia/vxmedia'), f'-c{settings}', f'-elib scan {library}'],
        lambda text: f'media {FILES},' in text)
    rows['exiftool -fast2'] = measured(
        ['exiftool', '-fast2', '-r', '-q', '-T', '-ext', '*', '-FileName', '-FileType', '-ImageSize', '-Duration',
         str(library)],
        lambda text: text.count('\n') == FILES)
    rows['ffprobe, scaled'] = FILES / len(probed) * measured(
        ['sh', '-c', 'for i; do ffprobe -v error -show_entries '
         'format=format_name,duration:stream=width,height -of csv "$i"; done', 'sh'] + probed,
        lambda text: text.count('format') >= len(probed))

own = rows['vxmedia']
lines = ['| what | seconds | times vxmedia |', '|---|---|---|']
lines += [f'| {name} | {seconds:.3f} | {seconds / own:.2f} |' for name, seconds in rows.items()]
table = '\n'.join(lines)
model = next((line.split(':')[1].strip() for line in open('/proc/cpuinfo') if 'model name' in line), '')
(root / 'Benchmarks/results/scan.md').write_text(
    f'# scan\n\nMade by `./dev bench scan` on {datetime.date.today()}: {platform.machine()}, {model}, '
    f'two shared cores, g++ -O2, medians of {REPEATS}.\n\nThe media files of a library of {FILES}, their format, '
    f'size and duration.\n\n{table}\n')
print(f'\n{table}')
