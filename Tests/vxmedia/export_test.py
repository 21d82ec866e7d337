#!/usr/bin/env python3
"""The exports of the program vxmedia, read back by other tools, and documents that nobody should write."""
import json
import os
import random
import re
import resource
import signal
import stat
import subprocess
import time
import xml.etree.ElementTree

import msgpack

from harness import DEEP, GIF, HUMBLE, PATHS, PROGRAM, Scratch, ask, main, run, small_disk


def shown_items(lines):
    """Returns the answers of `lib show` to several numbers as dictionaries of texts."""
    items = []
    for line in lines:
        name, text = re.match(r'(\S+) +(.*)$', line).groups() if ' ' in line else (line, '')
        if name == 'id':
            items.append({})
        items[-1][name] = text
    return items


def as_shown(item):
    """Returns the values of a JSON item as `lib show` words them."""
    return {name: '-' if value is None else '%.3f' % value if name == 'seconds' else str(value)
            for name, value in item.items()}


class ExportScratch(Scratch):
    """A test with a library of its own."""

    ODD_NAMES = (b'\xff\xfe.gif', b'\x1b[31m.gif', b'new\nline.gif', b'back\\slash.gif', b'&<>"\'.gif',
                 'blank \u00e9 \u4e2d \U0001f3b5.gif'.encode(), b']]>.gif', b'\xef\xbf\xbf.gif',
                 b'\xed\xa0\x80.gif', b'%s%n.gif', b'\x7f.gif')

    def ask(self, lines, **options):
        return ask(lines, self.folder, **options)

    def read(self, name):
        with open(self.path(name), 'rb') as file:
            return file.read()

    def check_xml(self, name):
        subprocess.run(['xmllint', '--noout', self.path(name)], check=True)
        root = xml.etree.ElementTree.parse(self.path(name)).getroot()
        self.assertEqual(root.tag, 'library')
        self.assertEqual(int(root.get('count')), len(root))
        return root


class Export(ExportScratch):
    """Exports hold what the console shows."""

    def check_all_forms(self, folder, count):
        """Exports the folder in all forms and compares each with `lib show` and `lib list`."""
        shows = ''.join('lib show %d\n' % (i + 1) for i in range(count))
        output = self.ask('lib scan %s\nexport json a.json\nexport json b.json off\nex mpack a.mpack\n'
                          'ex xml a.xml\nlib list 1000\n%s' % (folder, shows)).splitlines()
        for line, name in zip(output[1:5], ('a.json', 'b.json', 'a.mpack', 'a.xml')):
            self.assertEqual(line, 'Exported %d media files: %d bytes' %
                             (count, os.path.getsize(self.path(name.encode()))))
        listed = [line.split(None, 7) for line in output[6:6 + count]]
        shown = {item['id']: item for item in shown_items(output[7 + count:])}
        document = json.loads(self.read(b'a.json'))
        self.assertEqual(list(document), ['program', 'owner', 'count', 'items'])
        self.assertEqual((document['program'], document['owner'], document['count']),
                         ('vxmedia 1.0.0', '', count))
        self.assertEqual([[str(item['id']), item['format'], str(item['bytes']), item['path']]
                          for item in document['items']],
                         [[row[0], row[1], row[2], row[7]] for row in listed])
        self.assertEqual([as_shown(item) for item in document['items']],
                         [shown[row[0]] for row in listed])
        self.assertEqual(json.loads(self.read(b'b.json')), document)
        self.assertEqual(self.read(b'b.json').count(b'\n'), 1)
        self.assertEqual(msgpack.unpackb(self.read(b'a.mpack')), document)
        root = self.check_xml(b'a.xml')
        self.assertEqual([{fact.tag: fact.text or '' for fact in item} for item in root],
                         [{name: '' if text == '-' else text for name, text in shown[row[0]].items()}
                          for row in listed])
        return document

    def test_help(self):
        self.assertEqual(ask('help ex'), HELP)

    def test_the_samples_are_the_same_in_every_form(self):
        os.symlink(PATHS['samples'], self.path(b'samples'))
        document = self.check_all_forms('samples', 30)
        self.assertAlmostEqual(sum(item.get('seconds', 0) for item in document['items']), 18.725)

    def test_odd_names_are_the_same_in_every_form(self):
        for name in self.ODD_NAMES:
            self.write(b'odd/' + name)
        self.check_all_forms('odd', len(self.ODD_NAMES))

    def test_an_unknown_duration_is_null(self):
        self.write(b'x/a.wav', b'RIFF\x24\0\0\0WAVEfmt \x10\0\0\0\x55\0\1\0\x40\x1f\0\0\0\0\0\0\1\0\0\0'
                               b'data\4\0\0\0abcd')
        document = self.check_all_forms('x', 1)
        self.assertIsNone(document['items'][0]['seconds'])

    def test_an_empty_library_has_no_items(self):
        self.ask('export json a.json\nexport xml a.xml\nexport mpack a.mpack')
        empty = {'program': 'vxmedia 1.0.0', 'owner': '', 'count': 0, 'items': []}
        self.assertEqual(json.loads(self.read(b'a.json')), empty)
        self.assertEqual(msgpack.unpackb(self.read(b'a.mpack')), empty)
        self.assertEqual(self.read(b'a.xml'), b'<?xml version="1.0" encoding="UTF-8"?>\n'
                                              b'<library program="vxmedia 1.0.0" owner="" count="0">\n'
                                              b'</library>\n')

    def test_the_owner_stands_above_the_items(self):
        self.ask('config secret owner "J. <D> & \'C\'"\nexport json a.json\nexport xml a.xml')
        self.assertEqual(json.loads(self.read(b'a.json'))['owner'], "J. <D> & 'C'")
        self.assertEqual(self.check_xml(b'a.xml').get('owner'), "J. <D> & 'C'")

    def test_a_name_may_have_blanks(self):
        self.ask('export json "a b.json"')
        self.assertEqual(json.loads(self.read(b'a b.json'))['count'], 0)

    def test_an_older_file_is_replaced(self):
        self.write(b'a.json', b'x' * 100000)
        self.ask('export json a.json')
        self.assertEqual(json.loads(self.read(b'a.json'))['count'], 0)

    def test_xml_becomes_json(self):
        self.write(b'a.xml', '<?xml version="1.0"?><a k="v"><b>1 &amp; 2</b><b>\u202e&#x7f;</b><c/></a>'
                   .encode())
        output = self.ask('export xjson a.xml')
        self.assertEqual(json.loads(output), {'a': {'b': ['1 & 2', '\u202e\x7f'], 'c': {}}})
        self.assertIn('\\u202e\\u007f', output)

    def test_an_export_as_xml_becomes_json(self):
        self.write(b'x/a.gif')
        output = self.ask('lib scan x\nexport xml a.xml\nexport xjson a.xml').split('\n', 2)[2]
        self.assertEqual(json.loads(output)['library']['item'],
                         {'id': '1', 'path': 'x/a.gif', 'format': 'GIF', 'bytes': '13', 'width': '5',
                          'height': '4', 'detail': 'version 89a'})

    def test_differences(self):
        self.write(b'old', b'{"a":1,"b":{"c":"x","d":[1,2]},"e":true,"gone":"z"}')
        self.write(b'new', b'{"a":1,"b":{"c":"y","d":[1,3]},"e":false,"came":null}')
        for paths, answer in (('a', {}), ('b.c', {'b': {'c': 'y'}}), ('e,b.c', {'e': False, 'b': {'c': 'y'}}),
                              ('gone', {'gone': ''}), ('came', {'came': None}), ('none', {}),
                              ('b.d', {'b': {'d': [1, 3]}}), ('b', {'b': {'c': 'y', 'd': [1, 3]}})):
            with self.subTest(paths):
                self.assertEqual(json.loads(self.ask('export diff old new ' + paths)), answer)
        output = self.ask('export diff old new b.d[1],e')
        self.assertEqual(output.splitlines()[-1], 'also differs: b.d[1]')

    def test_exports_can_be_compared(self):
        self.write(b'x/a.gif')
        self.ask('lib scan x\nexport json one')
        self.write(b'x/a.gif', GIF + b'more')
        self.write(b'x/b.gif')
        self.ask('lib scan x\nexport json two')
        self.assertEqual(json.loads(self.ask('export diff one two count,items[0].bytes,owner')),
                         {'count': 2, 'items': [{'bytes': 17}]})


class BadExport(ExportScratch):
    """Files that cannot be written, and documents that cannot be read."""

    def refused(self, line, pattern, **options):
        status, output = run(['-q', '-e' + line], cwd=self.folder, **options)
        self.assertEqual(status, 1)
        self.assertRegex(output, r'\A' + pattern + r'\n\Z')

    def test_what_is_no_file_is_left_alone(self):
        os.mkfifo(self.path(b'pipe'))
        os.mknod(self.path(b'socket'), stat.S_IFSOCK | 0o600)
        os.symlink('/dev/full', self.path(b'full'))
        os.mkdir(self.path(b'dir'))
        for name in ('pipe', 'socket', 'full', 'dir', 'dir/', '/dev/null', '/dev/full', '.'):
            for form in ('json', 'xml', 'mpack'):
                self.refused('export %s %s' % (form, name),
                             "ERROR: Unable to write '%s': it is no regular file" % name)
        self.refused('export json ""', "ERROR: Unable to write '': .*")
        self.assertTrue(os.path.islink(self.path(b'full')))
        self.assertEqual(sorted(os.listdir(self.folder)), [b'dir', b'full', b'pipe', b'socket'])

    def test_a_folder_must_be_there_and_writable(self):
        self.refused('export json none/a.json',
                     "ERROR: Unable to write 'none/a.json': there is no such directory")
        self.write(b'shut/a.json', b'old')
        os.chmod(self.path(b'shut'), 0o555)
        self.refused('export json shut/a.json', "ERROR: Unable to write 'shut/a.json': it must not be "
                     'written, or the device has failed', prefix=HUMBLE)
        self.assertEqual(self.read(b'shut/a.json'), b'old')
        self.refused('export json ' + 'x' * 256, "ERROR: Unable to write 'x{256}': it cannot be replaced")

    def test_a_full_disk_leaves_the_old_file(self):
        for i in range(100):
            self.write(b'x/%d.gif' % i)
        self.write(b'out/a', b'old')
        for form in ('json', 'xml', 'mpack'):
            status, output = run(['-q', '-eexport %s out/a' % form, 'x'], cwd=self.folder, preexec_fn=(
                lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (4096, 4096))))
            self.assertEqual((status, output[:39]), (1, "ERROR: Unable to write 'out/a': it must"))
            self.assertEqual(self.read(b'out/a'), b'old')
            self.assertEqual(os.listdir(self.path(b'out')), [b'a'])

    def test_a_small_medium_that_is_full_leaves_the_old_file(self):
        for i in range(200):
            self.write(b'x/%d.gif' % i)
        with small_disk(self.path(b'disk'), 16384):
            self.write(b'disk/a', b'old')
            status, output = run(['-q', '-eexport json disk/a', 'x'], cwd=self.folder)
            self.assertEqual((status, output), (1, "ERROR: Unable to write 'disk/a': no space is left\n"))
            self.assertEqual(self.read(b'disk/a'), b'old')
            self.assertEqual(os.listdir(self.path(b'disk')), [b'a'])

    def test_a_kill_while_writing_leaves_a_whole_file(self):
        for i in range(400):
            self.write(b'x/%d.gif' % i)
        chance = random.Random(5)
        self.ask('lib scan x\nexport json out')
        for _ in range(10):
            process = subprocess.Popen(PROGRAM + ['-q', 'x'], stdin=subprocess.PIPE,
                                       stdout=subprocess.PIPE, cwd=self.folder)
            process.stdin.write(b'export json out\nexport json out off\n' * 1000)
            process.stdin.flush()
            process.stdout.readline()
            time.sleep(chance.random() * 0.03)
            process.send_signal(signal.SIGKILL)
            process.communicate()
            document = json.loads(self.read(b'out'))
            self.assertEqual((document['count'], len(document['items'])), (400, 400))

    def test_what_is_not_xml_is_refused(self):
        for text, reason in ((b'', ''), (b'text', ''), (b'<a>', ''), (b'<a></b>', ''), (b'<a><b></a></b>', ''),
                             (b'<a/><b/>', ''), (b'<a>\xff</a>', ''), (b'<a>\xed\xa0\x80</a>', ''),
                             (b'<a>\xc0\xaf</a>', ''), (b'<a>\x01</a>', ''), (b'<a b="1" b="2"/>', ''),
                             (b'<a>&none;</a>', ''), (b'<a b=1/>', ''), (b'<a b="<"/>', ''),
                             (b'<a>&#0;</a>', ''), (b'<!DOCTYPE a [<!ENTITY e "x">]><a>&e;</a>', ''),
                             (b'\xff\xfe<\0a\0/\0>\0', ''), (b'{"a":1}', ''), (b'<a>]]></a>', '')):
            with self.subTest(text):
                self.write(b'a.xml', text)
                self.refused('export xjson a.xml', r"ERROR: 'a.xml' is not XML: line \d+, column \d+: .*")

    def test_bombs_of_entities_are_refused(self):
        lines = ['<!DOCTYPE a [<!ENTITY e0 "0123456789">']
        lines += ['<!ENTITY e%d "%s">' % (i, '&e%d;' % (i - 1) * 10) for i in range(1, 10)]
        self.write(b'a.xml', '\n'.join(lines + [']><a>&e9;</a>']).encode())
        self.refused('export xjson a.xml', "ERROR: 'a.xml' is not XML: .*", timeout=30)
        self.write(b'a.xml', b'<!DOCTYPE a [<!ENTITY e SYSTEM "file:///etc/passwd">]><a>&e;</a>')
        self.refused('export xjson a.xml', "ERROR: 'a.xml' is not XML: .*", timeout=30)

    def test_a_million_open_elements_are_refused(self):
        for text in (b'<a>' * DEEP, b'<a>' * DEEP + b'</a>' * DEEP, b'<a b="' * DEEP, b'<' * DEEP,
                     b'<!--' * DEEP, b'&' * DEEP):
            self.write(b'a.xml', text)
            self.refused('export xjson a.xml', "ERROR: 'a.xml' is not XML: .*", timeout=60)

    def test_a_million_elements_beside_each_other_are_converted(self):
        self.write(b'a.xml', b'<a>' + b'<b>1</b>' * 200000 + b'</a>')
        output = self.ask('export xjson a.xml', timeout=60)
        self.assertEqual(json.loads(output), {'a': {'b': ['1'] * 200000}})

    def test_random_xml_is_survived(self):
        chance = random.Random(17)
        pieces = [b'<a>', b'</a>', b'<b c="d"/>', b'&amp;', b'&#65;', b'text', b'<!--', b'-->', b'<![CDATA[',
                  b']]>', b'<?pi', b'?>', b'\xff', b'\0', b'"', b'<', b'>', b'\n', b'<!DOCTYPE a>']
        for _ in range(150):
            self.write(b'a.xml', b'<a>' + b''.join(chance.choice(pieces) for _ in range(20)))
            output = self.ask('export xjson a.xml\nsys version')
            self.assertEqual(output.splitlines()[-1], 'vxmedia 1.0.0')

    def test_documents_that_cannot_be_read_are_told(self):
        os.mkfifo(self.path(b'pipe'))
        self.write(b'good', b'{}')
        self.write(b'locked', b'{}')
        os.chmod(self.path(b'locked'), 0)
        for line in ('export xjson %s', 'export diff %s good a', 'export diff good %s a'):
            self.refused(line % 'pipe', "ERROR: Unable to read 'pipe': it is no regular file", timeout=30)
            self.refused(line % '/dev/zero', "ERROR: Unable to read '/dev/zero': it is no regular file",
                         timeout=30)
            self.refused(line % 'none', r"ERROR: Unable to open file '\./none'")
            self.refused(line % 'locked', r"ERROR: Unable to open file '\./locked'", prefix=HUMBLE)
            self.refused(line % '.', 'ERROR: .*')

    def test_what_is_not_json_is_refused(self):
        self.write(b'good', b'{}')
        for text, position in ((b'', 1), (b'{', 2), (b'{"a":}', 6), (b'[' * DEEP, 1001), (b'\xff', 1),
                               (b'{} x', 4), (b'{"a":1', 7), (b'\0', 1)):
            self.write(b'bad', text)
            self.refused('export diff bad good a', "ERROR: 'bad' is not JSON at byte %d" % position)
            self.refused('export diff good bad a', "ERROR: 'bad' is not JSON at byte %d" % position)

    def test_odd_paths_are_survived(self):
        self.write(b'old', b'{"a":[1,[2]],"":0,"$":1}')
        self.write(b'new', b'{"a":[2,[3]],"":1,"$":2}')
        for path in ('', '$', '.', 'a.', '[', 'a[', 'a[0', 'a[9999999999]', 'a[-1]', 'a[1][0]', '%n', '$.a',
                     'a.' * 10000, ',,,', '\\'):
            output = self.ask('export diff old new "%s"\nsys version' % path)
            self.assertEqual(output.splitlines()[-1], 'vxmedia 1.0.0')
        self.write(b'old', b'[1]')
        self.assertEqual(json.loads(self.ask('export diff old new a')), {'a': [2, [3]]})


HELP = """\
    ex diff old new paths : show what differs in JSON files, at these paths
    ex json path (pretty) : write the library to a JSON file
    ex mpack path : write the library to a MessagePack file
    ex xjson xmlfile : show an XML file as JSON
    ex xml path : write the library to an XML file
"""

if __name__ == '__main__':
    main()
