"""Run by gdb on PrinterSample: compares what the printers show. Ends with 77 where gdb may not trace."""
import re

import gdb

EXPECTED = {
    'theEmpty': r'"" \(empty\)',
    'theOwned': r'"say \\"hi\\"" \(owned\)',
    'theShared': r'"abc" \(shared by 2\)',
    'theStatic': r'"static" \(wraps static text\)',
    'theSum': r'"abcdef" \(wraps allocated text, shared by 2\)',
    'theWritten': r'"" \(being written\)',
    'theNull': r'null',
    'theHeld': r'\(Sample \*\) 0x[0-9a-f]+ \(held by 2\)',
    'theOther': r'\(Sample \*\) 0x[0-9a-f]+ \(held by 2\)',
    'theEmptyList': r'vxList<int> of 0',
    'theList': r'vxList<int> of 2 = \{1, 2\}',
    'theIterator': r'\{value = 1\}',
    'theOutside': r'outside the items',
    'theEmptyHead': r'empty list',
    'theHead': r'linked with 1',
    'theNode': r'linked with 1',
    'theFreeNode': r'in no list',
    'theNames': r"vxCSVStringList of 3, separator ',' = \{\"a\", \"\", \"c\"\}",
    'theNoNames': r"vxStringList of 0, separator ' '",
    'theError': r"-3 \[File\] 'not found' <- 5 'five'",
}

gdb.execute('set confirm off')
gdb.execute('break Stop')
try:
    gdb.execute('run')
    gdb.execute('up')
except gdb.error as error:
    print(error)
    gdb.execute('quit 77')
failures = 0
for name, expected in EXPECTED.items():
    shown = gdb.execute(f'print {name}', to_string=True).split(' = ', 1)[1].strip()
    if not re.fullmatch(expected, shown):
        print(f'{name}: {shown}, expected {expected}')
        failures += 1
gdb.execute(f'quit {failures}')
