#!/usr/bin/env python3
"""Lets xmllint judge what is read as XML and what is written from it.

usage: XMLPeerTest.py COMMAND...    the filter program, with whatever starts it
"""
import os
import random
import re
import subprocess
import sys
import tempfile

COMMAND = sys.argv[1:]

# Written and read again, these are the same to the canonical form.
DOCUMENTS = [
    '<a/>',
    '<a></a >',
    '\ufeff<a/>',
    '<?xml version="1.0"?><a/>',
    "<?xml version='1.0' encoding='UTF-8' standalone='no' ?>\n<a>\u00e9</a>\n",
    '<?xml version="1.0" encoding="us-ascii"?><a>plain</a>',
    '<!DOCTYPE a><a/>',
    '<!DOCTYPE a SYSTEM "a[]>.dtd" ><a/>',
    '<!DOCTYPE a PUBLIC "-//X//DTD a 1.0//EN" \'a.dtd\'><a/>',
    "<a z='1' b=\"2\" c = '\"'/>",
    "<a b='x\ty\r\nz' c='&lt;&amp;&gt;&quot;&apos;'/>",
    '<a>&lt;&gt;&amp;&quot;&apos;&#65;&#x42;&#x1F3B5;</a>',
    '<a><![CDATA[<b>&x;]] ]]]]><![CDATA[>]]></a>',
    '<a>one\r\ntwo\rthree\n</a>',
    '<a>\n  <b/>\n\n  <c>\n    <d>x</d>\n  </c>\n</a>\n',
    '<a><b> x </b><b>\ty\n</b></a>',
    '<a>\n  <!-- c - d -->\n  <b/>\n</a>',
    '<list><!--\u20ac--><item n="1"/><item n="2">two</item></list>',
    '<n:a xmlns:n="urn:n" n:b="1"><n:c-1._\u00b7d\u0300/></n:a>',
    '<\u00e9\u4e2d\U00010000>\u2028\U0001F600\ufffd\x7f\u0085</\u00e9\u4e2d\U00010000>',
]

# Refused, or accepted, like the other.
BORDERS = [
    '', ' ', 'x', '<', '<a', '<a>', '<a/', '</a>', '<a></b>', '<a><b></a></b>', '<a/><b/>', '<a/>x',
    '<a/>&#32;', '<a/><![CDATA[]]>', '< a/>', '<a / >', '<a></ a>', '<a></a b="1">', '<1/>', '<-a/>',
    '<.a/>', '<a><b/ ></a>',
    '<a b/>', '<a b=1/>', '<a b="1\'/>', '<a b="1"c="2"/>', '<a b="1" b="2"/>', '<a b="<"/>',
    '<a b="&"/>', '<a b=">"/>', '<a 1b=""/>', "<a b=''/>",
    '<a>&</a>', '<a>&amp</a>', '<a>&amp ;</a>', '<a>& amp;</a>', '<a>&AMP;</a>', '<a>&#;</a>',
    '<a>&#x;</a>', '<a>&#X41;</a>', '<a>&#x41</a>', '<a>&#-65;</a>', '<a>&# 65;</a>', '<a>&#0;</a>',
    '<a>&#1;</a>', '<a>&#9;</a>', '<a>&#x1F;</a>', '<a>&#xD7FF;</a>', '<a>&#xD800;</a>',
    '<a>&#xE000;</a>', '<a>&#xFFFD;</a>', '<a>&#xFFFE;</a>', '<a>&#xFFFF;</a>', '<a>&#x10FFFF;</a>',
    '<a>&#x110000;</a>', '<a>&#4294967361;</a>',
    '<a>\x01</a>', '<a>\x1f</a>', '<a>\x7f</a>', '<a>\ufffd</a>', '<a>\ufffe</a>', '<a>\uffff</a>',
    '<a b="\x02"/>', '<a b="\uffff"/>', '<a><!--\x03--></a>', '<a><![CDATA[\uffff]]></a>',
    '<!--\x04--><a/>', '<?p \x05?><a/>', '<a/><!--\ufffe-->',
    '<a>]]></a>', '<a>]]&gt;</a>', '<a>]] ></a>', '<a><![CDATA[</a>', '<a><![CDATA[]]]]></a>',
    '<a><![cdata[]]></a>', '<a><![CDATA []]></a>',
    '<a><!----></a>', '<a><!--></a>', '<a><!---></a>', '<a><!-- - --></a>', '<a><!-- -- --></a>',
    '<a><!-- ---></a>', '<!-- -- --><a/>', '<!-- ---><a/>', '<a/><!-- -- -->', '<a/><!--', '<!-><a/>',
    '<?p?><a/>', '<?p x?><a/>', '<?p ?x??><a/>', '<? p?><a/>', '<??><a/>', '<?1?><a/>', '<?p', '<?p+?><a/>',
    '<a><? p?></a>', '<a><?p?></a>', '<a><?xml?></a>', '<a><?XmL x?></a>', '<a><?xml-x y?></a>',
    '<a/><?p?>', '<a/><?p', '<a/><?xml version="1.0"?>', ' <?xml version="1.0"?><a/>',
    '<!-- --><?xml version="1.0"?><a/>', '<?xml?><a/>', '<?xml ?><a/>', '<?xml version="1.0" ?><a/>',
    '<?xml version="1.0"encoding="utf-8"?><a/>', '<?xml encoding="utf-8"?><a/>',
    '<?xml version="1.0" standalone="maybe"?><a/>', '<?xml version="1.0" standalone="yes"?><a/>',
    '<?xml version="1.0" standalone="yes" encoding="utf-8"?><a/>', '<?xml version="1.0\'?><a/>',
    '<?xml version="1.0"encoding="utf-8" ?><a/>', '<?xml version="1.0" x="1"?><a/>',
    '<?xml version="1.0 "?><a/>', '<?xml version=" 1.0"?><a/>',
    '<?xml version="1.0x"?><a/>', '<?xml version="1.0">?><a/>', '<?xml version="1.0"? ><a/>',
    '<?xml version="1.0" encoding="us-ascii"?><a>\u00e9</a>',
    '<!DOCTYPE a><!DOCTYPE a><a/>', '<a/><!DOCTYPE a>', '<a><!DOCTYPE a></a>', '<!DOCTYPE><a/>',
    '<!DOCTYPE 1><a/>', '<!DOCTYPE a b><a/>', '<!DOCTYPE a SYSTEM><a/>',
    '<!DOCTYPE a SYSTEM x><a/>', '<!DOCTYPE a SYSTEM "x><a/>', '<!DOCTYPE a SYSTEM"x"><a/>',
    '<!DOCTYPE a PUBLIC "x"><a/>', '<!DOCTYPE a PUBLIC "x""y"><a/>', '<!DOCTYPE a PUBLIC "<" "y"><a/>',
    '<!DOCTYPE a PUBLIC "x" "y" "z"><a/>', '<!doctype a><a/>', '<!DOCTYPE a', '<!DOCTYPE a ><a/>',
    '<!ELEMENT a ANY><a/>', '<a><!ELEMENT a ANY></a>',
] + ['<%s/>' % c for c in '\u00b7\u00bf\u00c0\u00d6\u00d7\u00d8\u00f6\u00f7\u00f8\u02ff\u0300\u036f\u0370'
     '\u037d\u037e\u037f\u1fff\u2000\u200b\u200c\u200d\u200e\u203f\u2040\u206f\u2070\u218f\u2190\u2bff'
     '\u2c00\u2fef\u2ff0\u3000\u3001\ud7ff\ue000\uf8ff\uf900\ufdcf\ufdd0\ufdef\ufdf0\ufffd'
     '\U00010000\U000EFFFF\U000F0000'
] + ['<a%s/>' % c for c in '\u00b6\u00b7\u00b8\u0300\u036f\u037e\u200b\u203e\u203f\u2040\u2041\u3000\u00d7']

BYTES = [
    b'<a>\xff</a>', b'<a>\xc3</a>', b'<a>\xc0\x80</a>', b'<a>\xe0\x80\x80</a>', b'<a>\xed\xa0\x80</a>',
    b'<a>\xf4\x90\x80\x80</a>', b'<a>\xf0\x9f\x98</a>', b'<a>\x00</a>',
    b'<?xml version="1.0" encoding="utf-8"?><a>\xe9</a>',
]

PIECES = ['<', '>', '/', '&', ';', '"', "'", '=', ' ', '\r', '-', '--', ']', ']]>', '<!--', '-->', '<?', '?>',
          '<![CDATA[', 'a', '&lt;', '&#65;', '\u00e9', '\u2000', '\x01', '\uffff', 'xml', '<a>', '</a>']


def changed(source, text):
    """Puts a piece into a text, or takes one out, at a place or two."""
    for _ in range(source.randrange(1, 3)):
        start = source.randrange(0, len(text) + 1)
        end = start + source.choice([0, 0, 1, 2, 5])
        text = text[:start] + source.choice(PIECES + ['']) + text[end:]
    return text


def mutants():
    source = random.Random(20240306)
    plain = [d for d in DOCUMENTS if 'xmlns' not in d and '<?xml' not in d and '<!DOCTYPE' not in d]
    return [changed(source, source.choice(plain)) for _ in range(1500)]


def store(folder, texts):
    paths = []
    for number, text in enumerate(texts):
        paths.append(os.path.join(folder, '%05d.xml' % number))
        with open(paths[-1], 'wb') as file:
            file.write(text if isinstance(text, bytes) else text.encode('utf-8', 'surrogatepass'))
    return paths


def refused_by_peer(paths):
    run = subprocess.run(['xmllint', '--nonet', '--noout'] + paths, stderr=subprocess.PIPE)
    lines = run.stderr.decode('utf-8', 'replace').splitlines()
    found = (re.match(r'(.*\.xml):\d+: parser error|.*"(.*\.xml)"$', line) for line in lines)
    return {match.group(1) or match.group(2) for match in found if match}


def canonical(path):
    return subprocess.run(['xmllint', '--nonet', '--noblanks', '--c14n', path], stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE, check=True).stdout


def main():
    texts = DOCUMENTS + BORDERS + BYTES + mutants()
    with tempfile.TemporaryDirectory() as folder:
        paths = store(folder, texts)
        run = subprocess.run(COMMAND + paths, stdout=subprocess.PIPE)
        reasons = run.stdout.decode()
        refused = refused_by_peer(paths)
        failures = ['the filter failed: %d' % run.returncode] if run.returncode else []
        for text, path in zip(texts, paths):
            if os.path.exists(path + '.out') == (path in refused):
                reason = [line for line in reasons.splitlines() if line.startswith(path)]
                failures.append('%s %r %s' % ('accepted' if path in refused else 'refused', text, reason))
        for text, path in list(zip(texts, paths))[:len(DOCUMENTS)]:
            if not os.path.exists(path + '.out') or canonical(path) != canonical(path + '.out'):
                failures.append('not the same: %r' % text)
        print('\n'.join(failures))
        print('%d documents, %d of them refused' % (len(texts), len(refused)))
        sys.exit(1 if failures else 0)


main()
