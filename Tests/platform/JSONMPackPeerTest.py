#!/usr/bin/env python3
"""Lets Python's msgpack and json judge both directions of MPack.

usage: JSONMPackPeerTest.py COMMAND...    the filter program, with whatever starts it
"""
import json
import random
import subprocess
import sys

import msgpack

COMMAND = sys.argv[1:]


def run(direction, data):
    return subprocess.run(COMMAND + [direction], input=data, stdout=subprocess.PIPE, check=True).stdout


def number(source):
    return source.choice([
        source.randrange(0, 300), source.randrange(-300, 0), source.randrange(2 ** 16, 2 ** 33),
        source.randrange(-2 ** 63, 2 ** 63), source.randrange(2 ** 63, 2 ** 64),
        source.uniform(-1000, 1000), source.random() * 10 ** source.randrange(-300, 300), 0.5, 1.5])


def text(source):
    letters = 'abcXYZ \n\t"\\/\u00e9\u20ac\U0001F600\u0000'
    return ''.join(source.choice(letters) for _ in range(source.choice([0, 1, 5, 31, 32, 300])))


def value(source, depth):
    kind = source.randrange(0, 8 if depth < 5 else 6)
    if kind == 0:
        return source.choice([None, True, False])
    if kind < 3:
        return number(source)
    if kind < 6:
        return text(source)
    count = source.choice([0, 1, 3, 15, 16, 20])
    if kind == 6:
        return [value(source, depth + 1) for _ in range(count)]
    return {text(source): value(source, depth + 1) for _ in range(count)}


def main():
    source = random.Random(20240306)
    # One large array of all cases: two runs of the filter in all.
    cases = [value(source, 0) for _ in range(400)]
    encoded = run('encode', json.dumps(cases).encode())
    assert msgpack.unpackb(encoded, strict_map_key=False) == cases, 'encode'
    decoded = run('decode', msgpack.packb(cases))
    assert json.loads(decoded) == cases, 'decode'
    singles = msgpack.packb([1.5, 0.25, -2.0], use_single_float=True)
    assert json.loads(run('decode', singles)) == [1.5, 0.25, -2.0], 'floats'
    print('%d bytes of MPack agree' % len(encoded))


main()
