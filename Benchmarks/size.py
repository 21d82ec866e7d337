#!/usr/bin/python3
"""Measures the shared objects of the library and of its peers, stripped, and writes a table.

usage: size.py BUILD_FOLDER

Sizes are those of the files, of code with constants, and of data that a process gets for itself.
The peers are those that the system has, with what they need beside libc and libstdc++.
"""
import datetime
import pathlib
import platform
import shutil
import subprocess
import sys
import tempfile

OWN = ['libvxLog.so.1', 'libteskTools.so.1', 'libvxOS.so.1', 'libvx.so.1']
PEERS = [
    ('Qt Core', 'libQt6Core.so.6'),
    ('GLib', 'libglib-2.0.so.0'),
    ('GIO', 'libgio-2.0.so.0'),
    ('POCO Foundation', 'libPocoFoundation.so.80'),
    ('POCO Util', 'libPocoUtil.so.80'),
]
SYSTEM = ('linux-vdso', 'ld-linux', 'libc.so', 'libm.so', 'libstdc++', 'libgcc_s', 'libpthread', 'libdl', 'librt')

build = pathlib.Path(sys.argv[1]).resolve()
results = pathlib.Path(__file__).resolve().parent / 'results'


def output(*command):
    return subprocess.run(command, stdout=subprocess.PIPE, text=True, check=True).stdout


def library(name):
    """Returns the path of a shared object as the dynamic linker finds it; None when there is none."""
    lines = [line for line in output('/sbin/ldconfig', '-p').splitlines() if line.split()[0] == name]
    return lines[0].split('=> ')[1] if lines else None


def needed(path):
    """Returns a shared object with all that it needs beside the system's."""
    found = [line.split() for line in output('ldd', path).splitlines()]
    return [path] + [line[2] for line in found if '=>' in line and not line[0].startswith(SYSTEM)]


def sizes(path):
    """Returns the bytes of the stripped file, of text, and of data with bss."""
    with tempfile.NamedTemporaryFile() as copy:
        shutil.copyfile(path, copy.name)
        subprocess.run(['strip', '--strip-unneeded', copy.name], check=True)
        text, data, bss = (int(cell) for cell in output('size', copy.name).splitlines()[1].split()[:3])
        return pathlib.Path(copy.name).stat().st_size, text, data + bss


def row(what, paths):
    totals = [sum(column) for column in zip(*(sizes(path) for path in paths))]
    return f'| {what} | {len(paths)} | ' + ' | '.join(f'{total / 1024:.0f}' for total in totals) + ' |'


own = [next(p for p in sorted(build.rglob(name)) if p.exists()) for name in OWN]
rows = [row(path.name, [path]) for path in own] + [row('all of libvx', own)]
for what, name in PEERS:
    if (path := library(name)) is not None:
        rows.append(row(what, [path]))
        rows.append(row(f'{what}, with what it needs', needed(path)))
table = '\n'.join(['| shared objects | files | KiB, stripped | KiB of text | KiB of data |', '|---|---|---|---|---|'] + rows)
(results / 'size.md').write_text(
    f'# size\n\nMade by `./dev bench size` on {datetime.date.today()}: {platform.machine()}, g++ -O2.\n\n{table}\n')
print(f'\n{table}')
