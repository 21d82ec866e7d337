#!/usr/bin/env python3
"""Media infos of the program vxmedia, held against other tools, and the file that keeps its library."""
import json
import os
import random
import re
import shutil
import signal
import subprocess
import time

from harness import HINT, DEEP, GIF, HUMBLE, PATHS, PROGRAM, Scratch, ask, main, run, small_disk


def infos(output):
    """Returns answers of `lib info`, which begin with a title, as dictionaries of texts by name."""
    result = []
    for line in output.splitlines():
        key, name, value = line.split(None, 2)
        if key == 'ti':
            result.append({})
        result[-1][name] = value
    return result


def tool(*arguments):
    """Returns the JSON that another program prints, or None where it is not installed."""
    if shutil.which(arguments[0]) is None:
        return None
    return json.loads(subprocess.run(arguments, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                                     check=True).stdout)


class LibraryScratch(Scratch):
    """A test whose program works with the configuration directory `conf`."""

    FILE = b'conf/library.json'

    def ask(self, *lines, **options):
        """Returns the answers to lines; none of them may fail."""
        status, output = self.run_lines(*lines, **options)
        self.assertEqual(status, 0, output)
        return output

    def run_lines(self, *lines, **options):
        self.write(b'script', '\n'.join(lines).encode())
        return run(['-q', '-cconf', '-sscript'], cwd=self.folder, **options)

    def read(self, name=FILE):
        with open(self.path(name), 'rb') as file:
            return file.read()

    def start(self):
        process = subprocess.Popen(PROGRAM + ['-q', '-cconf'], stdin=subprocess.PIPE,
                                   stdout=subprocess.PIPE, cwd=self.folder, bufsize=0)
        self.addCleanup(self.stop, process)
        return process

    @staticmethod
    def stop(process):
        process.kill()
        process.stdin.close()
        process.stdout.close()
        process.wait()

    def wait_for(self, condition):
        for _ in range(1200):
            if condition():
                return
            time.sleep(0.05)
        self.fail('nothing has happened for a minute')


class Library(LibraryScratch):
    """What is shown, edited and kept."""

    def test_infos_agree_with_other_tools(self):
        files = sorted(os.path.join(folder, name) for folder, _, names in os.walk(PATHS['samples'])
                       for name in names)
        lines = ['lib scan ' + PATHS['samples']] + ['lib info %d' % (i + 1) for i in range(len(files))]
        found = infos(ask('\n'.join(lines), self.folder).split('\n', 1)[1])
        self.assertEqual([info['file-path'] for info in found], files)
        for info in found:
            with self.subTest(info['file-path']):
                self.assertEqual(int(info['file-size']), os.path.getsize(info['file-path']))
                self.assertEqual(info['file-extension'], info['file-path'].rsplit('.', 1)[1])
                self.check_with_exiftool(info)
                self.check_with_ffprobe(info)

    def check_with_exiftool(self, info):
        facts = tool('exiftool', '-j', '-n', info['file-path'])
        if facts is None:
            return
        facts = facts[0]
        self.assertEqual(info['mime-type'], facts['MIMEType'])
        if 'width' not in info:
            return
        samples = {0: 1, 2: 3, 3: 1, 4: 2, 6: 4}
        depth = (facts['BitDepth'] * samples[facts['ColorType']] if facts['FileType'] == 'PNG' else
                 facts['BitsPerSample'] * facts['ColorComponents'] if facts['FileType'] == 'JPEG' else
                 facts['BitsPerPixel'])
        self.assertEqual((info['width'], info['height'], info['color-depth']),
                         (str(facts['ImageWidth']), str(facts['ImageHeight']), str(depth)))

    def check_with_ffprobe(self, info):
        facts = tool('ffprobe', '-v', 'error', '-show_format', '-show_streams', '-of', 'json',
                     info['file-path'])
        if facts is None or 'width' in info:
            return
        stream = facts['streams'][0]
        self.assertEqual((info['audio-channels'], info['audio-sampling-rate']),
                         (str(stream['channels']), stream['sample_rate']))
        bits = stream.get('bits_per_raw_sample') or str(stream['bits_per_sample'])
        self.assertEqual(info.get('audio-bits-per-sample', '0'), bits)
        hours, minutes, seconds = info['duration'].split(':')
        lead = 0.0065 if info['file-path'].endswith('.opus') else 0  # which is not played
        self.assertAlmostEqual(int(hours) * 3600 + int(minutes) * 60 + float(seconds),
                               float(stream['duration']) - lead, delta=0.0006)
        if 'bit_rate' in stream:
            # What is in front of the first frame counts or not; for MP3 with frames that differ only.
            self.assertAlmostEqual(int(info['bit-rate']), int(stream['bit_rate']),
                                   delta=int(stream['bit_rate']) * 0.02)
        tags = {name.lower(): value for name, value in
                {**facts['format'].get('tags', {}), **stream.get('tags', {})}.items()}
        for name, tag in (('title', 'title'), ('creator', 'artist'), ('album', 'album'),
                          ('genre', 'genre')):
            if tag in tags:
                self.assertEqual(info[name], tags[tag])

    def test_profiles(self):
        lines = self.ask('lib scan ' + PATHS['samples'], 'lib profiles').splitlines()[1:]
        self.assertEqual(lines[0].split(), ['FILES', 'PROFILE', 'EXTENSIONS', 'MIME-TYPES'])
        counts = {line.split()[1]: int(line.split()[0]) for line in lines[1:]}
        self.assertEqual((len(counts), sum(counts.values())), (82, 16))
        self.assertEqual((counts['JPEG_SM'], counts['PNG_LRG'], counts['GIF_LRG'], counts['MP3'],
                          counts['MP3X'], counts['LPCM']), (4, 5, 3, 3, 1, 0))
        self.assertEqual(self.ask('lib profile AMR_3GPP'),
                         'profile     AMR_3GPP\nmime-types  audio/3gpp,audio/mp4\n'
                         'extensions  amr\ndefault     amr\n')
        self.assertEqual(self.ask('lib profile MP2_MPS'),
                         'profile     MP2_MPS\nmime-types  audio/mpeg\nextensions  -\ndefault     -\n')
        self.assertEqual(self.run_lines('lib profile jpeg_sm'),
                         (1, "ERROR: There is no DLNA profile 'jpeg_sm'\n"))

    def test_mistakes_are_explained(self):
        self.write(b'm/a.gif')
        self.ask('lib scan m')
        for line, answer in (
                ('lib info 2', 'ERROR: There is no media file 2'),
                ('lib info', 'ERROR: Missing parameter 1' + HINT),
                ('lib set 2 ti x', 'ERROR: There is no media file 2'),
                ('lib set 1 zz x', "ERROR: There is no key 'zz'"),
                ('lib set 1 zz', "ERROR: There is no key 'zz'"),
                ('lib set 1 fs 5', "ERROR: 'file-size' cannot be edited: it is that of the file"),
                ('lib set 1 width wide', "ERROR: 'width' is a number from 0 to 4294967295"),
                ('lib set 1 ti ' + 'x' * 4097, 'ERROR: A value has at most 4096 bytes'),
                ('lib merge 1 1', 'ERROR: A media file cannot be merged with itself'),
                ('lib merge 1 2', 'ERROR: There is no media file 2'),
                ('lib merge 2 1', 'ERROR: There is no media file 2')):
            with self.subTest(line[:40]):
                self.assertEqual(self.run_lines(line), (1, answer + '\n'))

    def test_signals_that_end_the_program_let_it_save(self):
        self.write(b'm/a.gif')
        self.ask('lib scan m')
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            process = self.start()
            process.stdin.write(b'lib set 1 title Signal%d\nsys version\n' % number)
            self.assertEqual(process.stdout.readline(), b'vxmedia 1.0.0\n')
            process.send_signal(number)
            self.assertEqual(process.wait(timeout=60), -number)
            self.assertEqual(process.stdout.read(), b'')
            self.assertIn('Signal%d\n' % number, self.ask('lib info 1'))

    def test_signals_that_are_ignored_stay_so(self):
        process = subprocess.Popen(['sh', '-c', 'trap "" INT; exec "$@"', 'sh'] + PROGRAM + ['-q'],
                                   stdin=subprocess.PIPE, stdout=subprocess.PIPE, bufsize=0)
        self.addCleanup(self.stop, process)
        for _ in range(2):
            process.stdin.write(b'sys version\n')
            self.assertEqual(process.stdout.readline(), b'vxmedia 1.0.0\n')
            process.send_signal(signal.SIGINT)
        process.stdin.close()
        self.assertEqual(process.wait(timeout=60), 0)

    def test_when_nobody_reads_the_answers_it_saves_and_ends(self):
        self.write(b'm/a.gif')
        self.ask('lib scan m')
        process = self.start()
        process.stdout.close()
        process.stdin.write(b'lib set 1 title Unheard\n' + b'sys version\n' * 100)
        self.assertEqual(process.wait(timeout=60), -signal.SIGPIPE)
        self.assertIn('Unheard\n', self.ask('lib info 1'))

    def test_edits_outlive_the_program_and_another_reading(self):
        self.write(b'm/a.gif')
        self.ask('lib scan m', 'lib set 1 title  "Two  words"', 'lib set 1 genre Day \'n\' night',
                 'lib set 1 track 3')
        self.write(b'm/a.gif', GIF + b'more')
        output = self.ask('lib scan m', 'lib info 1')
        self.assertEqual(infos(output.split('\n', 1)[1]), [{
            'title*': 'Two  words', 'album': 'm/', 'genre*': "Day 'n' night", 'track*': '3',
            'class': 'object.item.imageItem.photo', 'mime-type': 'image/gif', 'dlna-profile': 'GIF_LRG',
            'file-path': 'm/a.gif', 'file-extension': 'gif', 'file-size': '17', 'width': '5',
            'height': '4'}])
        output = self.ask('lib set 1 title', 'lib set 1 genre ""', 'lib set 1 album ""', 'lib info 1')
        self.assertIn('ti  title           a\n', output)
        self.assertNotIn('album', output)
        self.assertNotIn('genre', output)
        self.assertIn("-   track*          3\n", self.ask('lib info 1'))

    def test_comments_are_shown_and_kept(self):
        self.write(b'm/a.gif', GIF + b'\x21\xfe\x08Take\x1b\n 2\0')
        self.ask('lib scan m')
        for _ in range(2):
            self.assertIn('-   comment         Take\\x1B\\x0A 2\n', self.ask('lib info 1'))
        self.assertEqual(self.run_lines('lib set 1 comment x'), (1, "ERROR: There is no key 'comment'\n"))

    def test_a_merge_outlives_the_program(self):
        self.write(b'm/a.gif')
        self.write(b'm/b.gif')
        self.ask('lib scan m', 'lib set 2 creator Somebody', 'lib merge 1 2')
        self.assertIn('cr  creator*        Somebody\n', self.ask('lib info 1'))

    def test_another_start_knows_what_this_one_knew(self):
        for name in (b'm/a.gif', b'm/\xff\xfe.gif', b'm/deep/new\nline.gif', b'm/bad.png', b'm/text',
                     'm/\u00e9\u4e2d.gif'.encode()):
            self.write(name)
        self.write(b'm/text', b'text')
        self.write(b'm/bad.png', b'bad')
        os.symlink('a.gif', self.path(b'm/link'))
        lines = ['lib list 1000', 'lib stats', 'lib info 1', 'lib show 4', 'lib find *']
        first = self.ask('lib scan m', *lines).split('\n', 2)[2]
        self.assertEqual(self.ask(*lines), first)
        self.assertEqual(self.ask(*lines), first)
        self.write(b'm/z.gif')
        os.unlink(self.path(b'm/a.gif'))
        self.assertEqual([line.split()[0] for line in
                          self.ask('lib scan m', 'lib list').splitlines()[3:-1]], ['4', '5', '2', '3'])

    def test_files_that_have_not_changed_are_not_read_again(self):
        self.write(b'm/a.gif')
        self.write(b'm/b.gif')
        self.ask('lib scan m')
        status = os.stat(self.path(b'm/a.gif'))
        for name in (b'm/a.gif', b'm/b.gif'):
            self.write(name, GIF.replace(b'\x05', b'\x07'))
        os.utime(self.path(b'm/a.gif'), ns=(status.st_atime_ns, status.st_mtime_ns))
        output = self.ask('lib scan m', 'lib list')
        self.assertRegex(output, r'(?m)^ 1  .* 5x4 .* m/a\.gif$')
        self.assertRegex(output, r'(?m)^ 2  .* 7x4 .* m/b\.gif$')

    def test_nothing_is_written_unless_the_library_has_changed(self):
        self.write(b'm/a.gif')
        self.ask('lib scan m')
        node = os.stat(self.path(self.FILE)).st_ino
        self.ask('lib scan m', 'lib list', 'lib info 1')
        self.assertEqual(os.stat(self.path(self.FILE)).st_ino, node)
        self.ask('lib set 1 title x')
        self.assertNotEqual(os.stat(self.path(self.FILE)).st_ino, node)

    def test_without_a_configuration_directory_nothing_is_kept(self):
        self.write(b'm/a.gif')
        ask('lib scan m', self.folder)
        self.assertEqual(os.listdir(self.folder), [b'm'])
        self.write(b'conf/ConfigPath.ini', b'ReadPath=conf\nWritePath=conf\n')
        ask('lib scan m', self.folder, env={**os.environ, 'VXCONFIGPATH': 'conf'})
        self.assertEqual(os.listdir(self.path(b'conf')), [b'ConfigPath.ini'])

    def test_settings_name_the_file(self):
        self.write(b'm/a.gif')
        self.write(b'conf/ConfigPath.ini', b'ReadPath=conf\nWritePath=deep\n')
        self.ask('lib scan m')
        self.assertEqual(os.listdir(self.path(b'deep')), [b'library.json'])
        self.ask('config set library-file other.json')
        self.assertEqual(self.read(b'deep/other.json'), self.read(b'deep/library.json'))
        self.write(b'conf/vxmedia.ini', b'[Library]\nFile=./here.json\n')
        self.assertEqual(self.ask('lib list').splitlines()[-1], '0 of 0 media files')
        self.ask('lib scan m')
        self.assertEqual(self.read(b'here.json'), self.read(b'deep/library.json'))
        self.write(b'conf/vxmedia.ini', b'[Library]\nFile=\n')
        os.unlink(self.path(b'deep/library.json'))
        os.unlink(self.path(b'here.json'))
        self.ask('lib scan m')
        self.assertEqual(sorted(os.listdir(self.folder)), [b'conf', b'deep', b'm', b'script'])
        self.assertEqual(os.listdir(self.path(b'deep')), [b'other.json'])

    def test_a_library_that_rests_is_saved(self):
        self.write(b'm/a.gif')
        self.write(b'conf/vxmedia.ini', b'[Library]\nSaveAfter=1\n')
        process = self.start()
        process.stdin.write(b'lib scan m\n')
        self.wait_for(lambda: os.path.exists(self.path(self.FILE)))
        process.stdin.write(b'lib set 1 title Later\n')
        self.wait_for(lambda: b'Later' in self.read())
        process.send_signal(signal.SIGKILL)
        process.wait()
        self.assertIn('Later', self.ask('lib info 1'))

    def test_a_huge_library_is_kept(self):
        items = [{'id': i + 1, 'path': '/m/%d/%d.mp3' % (i % 100, i), 'size': i, 'time': i, 'type': 'MP3',
                  'channels': 2, 'rate': 44100, 'frames': i, 'title': 'Track %d' % i} for i in range(100000)]
        self.write(self.FILE, json.dumps({'program': 'vxmedia', 'format': 1, 'version': '1.0.0',
                                          'last': len(items), 'items': items, 'directories': [],
                                          'refusals': []}).encode())
        self.ask('lib set 5 title x', timeout=300)
        self.assertEqual(len(json.loads(self.read())['items']), 100000)


class BadLibrary(LibraryScratch):
    """Files that cannot be written, files that nobody should write, and ends at any moment."""

    def check_broken(self, text, pattern):
        self.write(self.FILE, text)
        status, output = self.run_lines('lib list')
        self.assertEqual(status, 1)
        self.assertRegex(output, r"\AERROR: '\S*/library\.json' " + pattern +
                         r"; it is kept as '\S*/library\.json\.bad'\nID .*\n0 of 0 media files\n\Z")
        self.assertEqual(self.read(self.FILE + b'.bad'), text)
        self.assertFalse(os.path.exists(self.path(self.FILE)))

    def test_broken_files_are_kept_aside(self):
        for text, pattern in (
                (b'', 'is not JSON at byte 1'), (b'{', 'is not JSON at byte 2'),
                (b'[' * DEEP, 'is not JSON at byte 1001'), (b'{"a":' * DEEP, 'is not JSON at byte 5001'),
                (b'\0' * 100, 'is not JSON at byte 1'), (b'GIF89a', 'is not JSON at byte 1'),
                (b'{}', 'is no library of this program'), (b'[]', 'is no library of this program'),
                (b'[]' + b' ' * DEEP, 'is no library of this program')):
            with self.subTest(text[:20]):
                self.check_broken(text, pattern)

    def forge(self, items, directories=(), refusals=()):
        """Writes a library by hand."""
        self.write(self.FILE, json.dumps({'program': 'vxmedia', 'format': 1, 'version': '1.0.0', 'last': 9,
                                          'items': items, 'directories': list(directories),
                                          'refusals': list(refusals)}).encode())

    def test_bad_entries_are_left_out_and_explained_once(self):
        good = {'id': 3, 'path': 'm/a.gif', 'size': 1, 'time': 1, 'type': 'GIF'}
        self.forge([good, {**good, 'id': 4, 'path': 'm/\0b.gif'}, {**good, 'path': 'm/c.gif'}])
        forged = self.read()
        status, output = self.run_lines('lib list')
        self.assertEqual(status, 1)
        self.assertRegex(output, r"\AERROR: '\S*library\.json' has 2 bad entries, which are left out: "
                         r"items\[1\]: 'path' has a NUL in it; items\[2\]: 'id' is that of another item; "
                         r"all of it is kept as '\S*library\.json\.bad'\nID .*\n 3 .*\n1 of 1 media files\n\Z")
        self.assertEqual(self.read(self.FILE + b'.bad'), forged)
        self.assertEqual(self.ask('lib list').splitlines()[-1], '1 of 1 media files')

    def test_sums_stay_at_the_highest_number(self):
        most = 2 ** 63 - 1
        self.forge([{'id': i, 'path': 'm/%d' % i, 'size': most, 'time': 1, 'type': 'WAV', 'channels': 1,
                     'rate': 1, 'frames': 2 ** 64 - 1} for i in range(1, 4)],
                   [{'path': 'm', 'node': 1, 'others': 2 ** 64 - 1, 'links': most},
                    {'path': 'n', 'node': 2, 'others': 2 ** 64 - 1, 'links': most}])
        output = self.ask('lib stats', 'lib list', 'lib info 1')
        self.assertRegex(output, r'(?m)^total +3 +18446744073709551615 +18446744073709551\.615$')
        self.assertRegex(output, r'(?m)^ *18446744073709551615 +other files$')
        self.assertRegex(output, r'(?m)^ *18446744073709551614 +symbolic links')

    def test_a_library_that_was_cut_short_anywhere_is_kept_aside(self):
        self.write(b'm/a.gif')
        self.ask('lib scan m')
        text = self.read()
        for size in range(0, len(text), 29):
            self.check_broken(text[:size], r'is not JSON at byte \d+')

    def test_a_broken_file_does_no_harm_to_what_follows(self):
        self.write(b'm/a.gif')
        self.write(self.FILE, b'broken')
        status, output = self.run_lines('lib scan m')
        self.assertEqual((status, output.count('ERROR')), (1, 1))
        self.assertEqual(self.ask('lib list').splitlines()[-1], '1 of 1 media files')

    def test_what_is_no_file_is_left_alone(self):
        self.write(b'm/a.gif')
        os.makedirs(self.path(b'conf'))
        for make in (os.mkfifo, os.mkdir, lambda path: os.symlink('/dev/zero', path)):
            make(self.path(self.FILE))
            status, output = self.run_lines('lib scan m', timeout=60)
            self.assertEqual((status, output.count('ERROR')), (1, 1))
            self.assertEqual(sorted(os.listdir(self.path(b'conf'))), [b'ConfigPath.ini', b'library.json'])
            if os.path.isdir(self.path(self.FILE)):
                os.rmdir(self.path(self.FILE))
            else:
                os.unlink(self.path(self.FILE))

    def test_a_file_that_cannot_be_read_is_not_overwritten(self):
        self.write(b'm/a.gif')
        self.write(self.FILE, b'{}')
        os.chmod(self.path(self.FILE), 0)
        status, output = self.run_lines('lib scan m', prefix=HUMBLE)
        self.assertEqual((status, output.count('ERROR: Unable to open file')), (1, 1))
        os.chmod(self.path(self.FILE), 0o600)
        self.assertEqual(self.read(), b'{}')

    def test_a_directory_that_cannot_be_written_is_told_at_the_end(self):
        self.write(b'm/a.gif')
        self.ask()
        os.chmod(self.path(b'conf'), 0o555)
        status, output = self.run_lines('lib scan m', prefix=HUMBLE)
        self.assertEqual(status, 1)
        self.assertRegex(output, r"\nERROR: Unable to write '\S*library\.json': it must not be written, or "
                         r"the device has failed\n\Z")

    def test_a_full_disk_leaves_the_old_library(self):
        with small_disk(self.path(b'conf'), 32768):
            self.write(b'm/a.gif')
            self.ask('lib scan m')
            old = self.read()
            for i in range(500):
                self.write(b'm/%d.gif' % i)
            status, output = self.run_lines('lib scan m')
            self.assertEqual(status, 1)
            self.assertRegex(output, r"\nERROR: Unable to write '\S*library\.json': no space is left\n\Z")
            self.assertEqual(self.read(), old)
            self.assertEqual(sorted(os.listdir(self.path(b'conf'))), [b'ConfigPath.ini', b'library.json'])

    def test_a_kill_at_any_moment_leaves_a_library_that_loads(self):
        for i in range(2000):
            self.write(b'm/%d.gif' % i)
        self.ask('lib scan m', timeout=300)
        chance = random.Random(11)
        for i in range(12):
            process = self.start()
            process.stdin.write(b'lib set 1 title title-%d\nlib info 1\nexit\n' % i)
            process.stdout.readline()
            time.sleep(chance.random() * 0.1)
            process.send_signal(signal.SIGKILL)
            process.wait()
            output = self.ask('lib list 1')
            self.assertEqual(output.splitlines()[-1], '1 of 2000 media files')
        self.ask('lib set 1 title x')
        self.assertEqual(sorted(os.listdir(self.path(b'conf'))), [b'ConfigPath.ini', b'library.json'])

    def test_random_damage_is_survived(self):
        for name in (b'm/a.gif', b'm/b.gif', b'm/bad.png'):
            self.write(name)
        self.write(b'm/bad.png', b'bad')
        self.ask('lib scan m', 'lib set 1 title x')
        good = self.read()
        chance = random.Random(23)
        for _ in range(60):
            text = bytearray(good)
            for _ in range(chance.randint(1, 4)):
                place = chance.randrange(len(text))
                text[place:place + chance.randint(0, 3)] = chance.choice(
                    [b'', b'\0', b'"', b'{', b'}', b'99999999999', b'-1', b'\xff', b'null'])
            self.write(self.FILE, bytes(text))
            status, output = self.run_lines('lib list', 'lib stats', 'lib info 1', 'lib scan m',
                                            'lib list')
            self.assertIn(status, (0, 1))
            self.assertRegex(output, r'\d+ of \d+ media files\n\Z')


if __name__ == '__main__':
    main()
