#!/usr/bin/env python3
"""The plug-ins of the program vxmedia: formats that they add, and plug-ins as they should not be."""
import json
import os
import re
import shutil
import struct
import subprocess

from harness import GIF, HUMBLE, PATHS, Scratch, ask, main, run


def bmp(width, height, bits=24, compression=0, header=40):
    """The beginning of a BMP picture; its dots follow in no particular number."""
    if header == 12:
        return b'BM' + struct.pack('<IHHIIHHHH', 26, 0, 0, 26, 12, width, height, 1, bits) + bytes(40)
    return b'BM' + struct.pack('<IHHIIiiHHIIiiII', 54, 0, 0, 54, header, width, height, 1, bits,
                               compression, 0, 0, 0, 0, 0) + bytes(84)


def au(coding, rate, channels, size, length=None, start=24):
    """An AU sound of `size` bytes of data."""
    return b'.snd' + struct.pack('>IIIII', start, size if length is None else length, coding, rate,
                                 channels) + bytes(size)


def qoi(width, height, channels=3, space=0):
    """The beginning of a QOI picture."""
    return b'qoif' + struct.pack('>IIBB', width, height, channels, space) + bytes(8)


class PluginScratch(Scratch):
    """A test with files of the formats that plug-ins add."""

    def setUp(self):
        super().setUp()
        for name, content in ((b'a.bmp', bmp(31, 7)), (b'b.dib', bmp(20, -30, 8, 1)),
                              (b'c', bmp(5, 6, 4, 0, 12)), (b'd.au', au(3, 44100, 2, 44100 * 4)),
                              (b'e.snd', au(1, 8000, 1, 4000, 0xFFFFFFFF)),
                              (b'f.qoi', qoi(300, 2, 4, 1)), (b'g.gif', GIF)):
            self.write(b'x/' + name, content)

    def ask(self, lines, **options):
        return ask(lines, self.folder, **options)

    def load_from(self, folder, pattern='*', prefix=()):
        return run(['-q', '-econfig set plugin-path %s;plugin load %s' % (folder, pattern)],
                   cwd=self.folder, prefix=prefix)


class Plugins(PluginScratch):
    """What plug-ins add, and what stays when they go."""

    def test_help(self):
        self.assertEqual(ask('help plugin'), HELP)

    def test_one_is_linked_into_the_program(self):
        self.assertEqual(self.ask('plugin list'), 'FORMAT  PLUGIN     ENDINGS  PATH\n'
                                                  'QOI     probe_qoi  qoi      -\n')
        self.assertEqual(self.ask('lib scan x'), 'Scanned x: media 2, others 5, refused 0, directories 1\n')

    def test_a_scan_recognizes_what_plugins_read(self):
        output = self.ask('plugin load probe_*\nplugin list\nlib scan x\nlib list\nlib stats')
        self.assertEqual(output, LOADED % ((PATHS['plugins'],) * 2))

    def test_details_are_shown(self):
        output = self.ask('plugin load *\nlib scan x\n' +
                          '\n'.join('lib show %d' % i for i in range(1, 7)))
        self.assertEqual(re.findall(r'^detail +(.*)$', output, re.M),
                         ['24-bit, uncompressed', '8-bit, RLE8, from the top', '4-bit, uncompressed',
                          '16-bit PCM', 'mu-law', '8-bit RGBA, linear'])

    def test_other_tools_agree(self):
        if shutil.which('convert') is None or shutil.which('sox') is None:
            self.skipTest('needs imagemagick and sox')
        for name, options in (('a.bmp', []), ('b.bmp', ['-type', 'palette']), ('c.bmp', ['-colors', '2']),
                              ('BMP3:d.bmp', []), ('BMP2:e.bmp', [])):
            subprocess.run(['convert', '-size', '33x17', 'gradient:red-blue', *options, name],
                           cwd=self.path(b'x'), check=True)
        for name, options in (('a.au', ['-b', '16']), ('b.au', ['-e', 'mu-law']), ('c.au', ['-b', '24']),
                              ('d.au', ['-e', 'floating-point'])):
            subprocess.run(['sox', '-n', '-r', '22050', '-c', '2', *options, name, 'synth', '0.75', 'sine',
                            '440'], cwd=self.path(b'x'), check=True, stderr=subprocess.DEVNULL)
        self.ask('plugin load *\nlib scan x\nexport json out')
        with open(self.path(b'out'), encoding='utf-8') as file:
            items = {os.path.basename(item['path']): item for item in json.load(file)['items']}
        for name in ('a.bmp', 'b.bmp', 'c.bmp', 'd.bmp', 'e.bmp'):
            self.assertEqual((items[name]['format'], items[name]['width'], items[name]['height']),
                             ('BMP', 33, 17))
        for name in ('a.au', 'b.au', 'c.au', 'd.au'):
            self.assertEqual([items[name][fact] for fact in ('format', 'channels', 'rate', 'seconds')],
                             ['AU', 2, 22050, 0.75])

    def test_a_file_is_loaded_once(self):
        self.assertEqual(self.ask('plugin load probe_bmp\nplugin load probe_bmp\nplugin load *\n'
                                  'plugin load *\nplugin unload\nplugin unload\nplugin load probe_au'),
                         "Loaded 1 plug-in\nERROR: No further plug-in in '%s' matches 'probe_bmp'\n"
                         "Loaded 1 plug-in\nERROR: No further plug-in in '%s' matches '*'\n"
                         'Unloaded 2 plug-ins\nUnloaded 0 plug-ins\nLoaded 1 plug-in\n' %
                         ((PATHS['plugins'],) * 2))

    def test_files_outlive_the_plugin_that_has_read_them(self):
        self.write(b'x/bad.bmp', b'BM')
        output = self.ask('plugin load *\nlib scan x\nplugin unload\nlib list\nlib show 1\nlib stats\n'
                          'export json out\nexport xml out.xml\nlib scan x\nlib list')
        first, second = output.split('Unloaded 2 plug-ins\n')
        self.assertTrue(first.endswith('  refused x/bad.bmp: BMP: the file ends inside the header\n'))
        listing, again = second.split('Scanned x: media 2, others 6, refused 0, directories 1\n')
        self.assertIn('  BMP     ', listing)
        self.assertIn('\nformat  BMP\n', listing)
        self.assertIn('\n  1  BMP: the file ends inside the header\n', listing)
        self.assertRegex(listing, r'\nBMP +3 +\d+ +-\n')
        self.assertTrue(again.endswith('2 of 2 media files\n'))
        self.assertNotIn('BMP', again)

    def test_loading_and_unloading_may_go_on(self):
        lines = 'plugin load *\nlib scan x\nplugin unload\nlib stats\n' * 100
        self.assertEqual(self.ask(lines).count('\nUnloaded 2 plug-ins\n'), 100)

    def test_a_scan_keeps_its_plugins(self):
        for i in range(3000):
            self.write(b'y/%d.bmp' % i, bmp(3, 4))
        output = self.ask('plugin load *\ntimer after 0 plugin unload\nlib scan y\nplugin unload')
        self.assertEqual(output, 'Loaded 2 plug-ins\nTimer 1: after 0 ms\n'
                                 'ERROR: A scan uses the plug-ins\n'
                                 'Scanned y: media 3000, others 0, refused 0, directories 1\n'
                                 'Unloaded 2 plug-ins\n')

    def test_settings_name_plugins_to_start_with(self):
        self.write(b'conf/vxmedia.ini', b'[Plugins]\nLoad=probe_b*\nPath=plugs\n')
        shutil.copytree(os.fsencode(PATHS['plugins']), self.path(b'plugs'))
        self.assertEqual(run(['-q', '-cconf', '-elib list', 'x'], cwd=self.folder)[1].splitlines()[-1],
                         '5 of 5 media files')
        status, output = run(['-q', '-cconf', '-econfig set plugins;plugin list'], cwd=self.folder)
        self.assertRegex(output, r'\nQOI .*\n\Z')
        self.assertIn('BMP     probe_bmp  bmp,dib  plugs/probe_bmp.so\n', output)
        self.assertEqual(status, 0)
        self.write(b'conf/vxmedia.ini', b'[Plugins]\nLoad=none\n')
        self.assertEqual(run(['-q', '-cconf', '-e', ''], cwd=self.folder),
                         (1, "ERROR: No further plug-in in '%s' matches 'none'\n" % PATHS['plugins']))

    def test_content_decides_before_names_do(self):
        self.write(b'x/picture.mp3', bmp(9, 9))
        self.write(b'x/sound.bmp', au(3, 8000, 1, 16000))
        self.write(b'x/text.bmp', b'text')
        self.write(b'x/text.au', b'')
        output = self.ask('plugin load *\nlib scan x\nlib list')
        self.assertIn('  refused x/text.au: the file is empty\n'
                      '  refused x/text.bmp: BMP: the signature is missing\n', output)
        self.assertRegex(output, r'BMP .*9x9.* x/picture\.mp3\n')
        self.assertRegex(output, r'AU .* x/sound\.bmp\n')


class BadPlugins(PluginScratch):
    """Plug-ins that cannot be loaded, and those that give odd answers."""

    def test_every_missing_entry_point_is_told(self):
        self.assertEqual(self.load_from(PATHS['bad_plugins'], 'probe_lacking'),
                         (1, "ERROR: Cannot load function 'vxmedia_probe1_recognize'\n"
                             "ERROR: Cannot load function 'vxmedia_probe1_read'\n"
                             "ERROR: Failed to load '%s/probe_lacking.so'\n" % PATHS['bad_plugins']))

    def test_what_is_no_library_is_told(self):
        self.write(b'p/text.so', b'text')
        self.write(b'p/empty.so', b'')
        os.mkdir(self.path(b'p/folder.so'))
        os.symlink('nowhere', self.path(b'p/link.so'))
        os.mkfifo(self.path(b'p/pipe.so'))
        for name in ('text', 'empty', 'folder', 'link', 'pipe'):
            status, output = self.load_from('p', name)
            self.assertEqual(status, 1)
            self.assertRegex(output, r"\AERROR: .*p/%s\.so.*\nERROR: Failed to load 'p/%s\.so/?'\n\Z" %
                             (name, name))

    def test_a_library_that_is_cut_short_is_told(self):
        with open(os.path.join(PATHS['plugins'], 'probe_bmp.so'), 'rb') as file:
            library = file.read()
        os.mkdir(self.path(b'p'))
        for end in (4, 63, 64, 200, 1000):
            self.write(b'p/cut.so', library[:end])
            status, output = self.load_from('p')
            self.assertEqual((status, output.splitlines()[1]), (1, "ERROR: Failed to load 'p/cut.so'"))
        for end in range(1000, len(library), len(library) // 20):  # its last part is not needed
            self.write(b'p/cut.so', library[:end])
            self.assertIn(self.load_from('p')[0], (0, 1))

    def test_good_ones_are_loaded_beside_bad_ones(self):
        self.write(b'p/text.so', b'text')
        for name in ('probe_bmp.so', 'probe_au.so'):
            shutil.copy(os.fsencode(os.path.join(PATHS['plugins'], name)), self.path(b'p'))
        status, output = self.load_from('p')
        self.assertEqual((status, output.splitlines()[1:]),
                         (1, ["ERROR: Failed to load 'p/text.so'", 'Loaded 2 plug-ins']))

    def test_directories_that_cannot_be_read_are_told(self):
        self.assertEqual(self.load_from('none'),
                         (1, "ERROR: There is no plug-in directory 'none/'\n"))
        self.assertEqual(self.load_from('x/g.gif'),
                         (1, "ERROR: There is no plug-in directory 'x/g.gif/'\n"))
        os.mkdir(self.path(b'shut'))
        os.chmod(self.path(b'shut'), 0)
        self.assertEqual(self.load_from('shut', prefix=HUMBLE),
                         (1, "ERROR: Unable to read the plug-in directory 'shut/'\n"))
        self.write(b'p/locked.so', b'')
        os.chmod(self.path(b'p/locked.so'), 0)
        status, output = self.load_from('p', prefix=HUMBLE)
        self.assertRegex(output, r"\AERROR: .*Permission denied.*\nERROR: Failed to load 'p/locked\.so'\n\Z")
        self.assertEqual(status, 1)

    def test_odd_patterns_match_nothing(self):
        for pattern in ('""', '%n', 'a/b', '../plugins/probe_bmp', '[', '*.so', '\\', 'x' * 5000):
            with self.subTest(pattern[:20]):
                output = self.ask('plugin load %s\nsys version' % pattern)
                self.assertRegex(output, r"\AERROR: No further plug-in in '.*' matches '.*'\n"
                                         r'vxmedia 1\.0\.0\n\Z')

    def test_odd_answers_are_survived(self):
        for i in range(6):
            self.write(b'y/%d' % i, b'ODD%d' % i)
        output = self.ask('config set plugin-path %s\nplugin load probe_odd\nplugin list\nlib scan y\n'
                          'lib list\nlib show 1\nlib stats\nexport xml out.xml\nexport json out.json\n'
                          'plugin unload\nlib list\nlib stats' % PATHS['bad_plugins'])
        self.assertIn('O\\x1B[2J\\xFF  probe_odd  -        %s/probe_odd.so\n' % PATHS['bad_plugins'], output)
        self.assertIn('Scanned y: media 4, others 0, refused 2, directories 1\n'
                      '  refused y/0: the plug-in has read nothing\n'
                      '  refused y/1: \\x1B[2J\\x0A%n\n', output)
        self.assertIn('\ndetail  %s\n' % ('x' * 128), output)
        self.assertNotIn('\x1b', output)
        subprocess.run(['xmllint', '--noout', self.path(b'out.xml')], check=True)
        with open(self.path(b'out.json'), encoding='utf-8') as file:
            self.assertEqual(len(json.load(file)['items']), 4)

    def test_broken_files_are_refused_and_explained(self):
        cases = ((b'a', bmp(0, 1), 'BMP: the picture has an impossible size'),
                 (b'b', bmp(1, 0), 'BMP: the picture has an impossible size'),
                 (b'c', bmp(-1, 1), 'BMP: the picture has an impossible size'),
                 (b'd', bmp(1, -0x80000000), 'BMP: the picture has an impossible size'),
                 (b'e', bmp(1, 1)[:53], 'BMP: the file ends inside the header'),
                 (b'f', bmp(1, 1, header=12)[:25], 'BMP: the file ends inside the header'),
                 (b'g', bmp(1, 1, header=39), 'BMP: the header is of an unknown kind'),
                 (b'h', b'.snd', 'AU: the file ends inside the header'),
                 (b'i', au(3, 0, 1, 8), 'AU: the sound has an impossible form'),
                 (b'j', au(3, 1, 0, 8), 'AU: the sound has an impossible form'),
                 (b'k', au(3, 1, 1, 8, None, 23), 'AU: the data begin outside the file'),
                 (b'l', au(3, 1, 1, 8, None, 33), 'AU: the data begin outside the file'),
                 (b'm', qoi(0, 1), 'QOI: the picture has an impossible size'),
                 (b'n', qoi(1, 1, 2), 'QOI: the number of channels is impossible'),
                 (b'o', qoi(1, 1)[:13], 'QOI: the file ends inside the header'))
        for name, content, _ in cases:
            self.write(b'y/' + name, content)
        output = self.ask('config set refusals 100\nplugin load *\nlib scan y')
        self.assertEqual(output.splitlines()[2:],
                         ['  refused y/%s: %s' % (name.decode(), reason) for name, _, reason in cases])

    def test_every_beginning_of_a_file_is_survived(self):
        for i, content in enumerate((bmp(3, 3), bmp(3, 3, header=12), au(3, 8000, 1, 8), qoi(3, 3))):
            for end in range(len(content)):
                self.write(b'y/%d-%d' % (i, end), content[:end])
        output = self.ask('plugin load *\nlib scan y\nsys version')
        self.assertEqual(output.splitlines()[-1], 'vxmedia 1.0.0')

    def test_durations_stay_within_the_file(self):
        self.write(b'y/a.au', au(3, 8000, 1, 16000, 0x7FFFFFFF))
        self.write(b'y/b.au', au(3, 8000, 1, 16000, 8000))
        self.write(b'y/c.au', au(23, 8000, 1, 16000))
        self.write(b'y/d.au', au(99, 8000, 1, 16000))
        output = self.ask('plugin load *\nlib scan y\nlib list')
        self.assertEqual([line.split()[6] for line in output.splitlines()[3:7]],
                         ['1.000', '0.500', '-', '-'])


HELP = """\
    plugin list : list the plug-ins
    plugin load pattern : load plug-ins, by file names without extension
    plugin unload : unload the plug-ins that are no part of the program
"""
LOADED = """\
Loaded 2 plug-ins
FORMAT  PLUGIN     ENDINGS  PATH
AU      probe_au   au,snd   %s/probe_au.so
BMP     probe_bmp  bmp,dib  %s/probe_bmp.so
QOI     probe_qoi  qoi      -
Scanned x: media 7, others 0, refused 0, directories 1
ID  FORMAT   BYTES  PICTURE  CHANNELS   RATE  SECONDS  PATH
 1  BMP        138  31x7            -      -        -  x/a.bmp
 2  BMP        138  20x30           -      -        -  x/b.dib
 3  BMP         66  5x6             -      -        -  x/c
 4  AU      176424  -               2  44100    1.000  x/d.au
 5  AU        4024  -               1   8000    0.500  x/e.snd
 6  QOI         22  300x2           -      -        -  x/f.qoi
 7  GIF         13  5x4             -      -        -  x/g.gif
7 of 7 media files
FORMAT  FILES   BYTES  SECONDS
PNG         0       0        -
JPEG        0       0        -
GIF         1      13        -
WAV         0       0        -
FLAC        0       0        -
Ogg         0       0        -
MP3         0       0        -
AU          2  180448    1.500
BMP         3     342        -
QOI         1      22        -
total       7  180825    1.500
1  directories
0  other files
0  symbolic links, not followed
0  pipes, sockets and devices
0  refused
"""

if __name__ == '__main__':
    main()
