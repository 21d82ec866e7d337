#!/usr/bin/env python3
"""The covers that the program vxmedia keeps, and directories in which others meddle."""
import os
import random
import resource
import signal
import subprocess
import time

from harness import HINT, GIF, HUMBLE, PATHS, PROGRAM, OnTerminal, Scratch, ask, main, run, small_disk


def picture(size, fill=b'x'):
    return (b'\x89PNG\r\n\x1a\n' + fill * size)[:size]


def synchsafe(number):
    return bytes(number >> shift & 0x7F for shift in (21, 14, 7, 0))


def tag(cover, mime=b'image/png'):
    """An ID3 tag with a cover."""
    body = b'\0' + mime + b'\0\x03\0' + cover
    frame = b'APIC' + len(body).to_bytes(4, 'big') + b'\0\0' + body
    return b'ID3\x03\0\0' + synchsafe(len(frame)) + frame


class CacheScratch(Scratch):
    """A test whose covers lie in `cache/covers`."""

    def setUp(self):
        super().setUp()
        with open(os.path.join(PATHS['samples'], 'sounds/mono-no-header.mp3'), 'rb') as file:
            self.sound = file.read()
        self.env = {**os.environ, 'VXCACHEPATH': os.fsdecode(self.path(b'system'))}

    def write_sound(self, name, cover):
        self.write(b'media/' + name, tag(cover) + self.sound)

    def run_lines(self, *lines, **options):
        return run(['-q', '-e' + ';'.join(('config set cache-path cache',) + lines), 'media'],
                   cwd=self.folder, env=self.env, **options)

    def ask(self, *lines, **options):
        """Returns the answers to lines; none of them may fail."""
        status, output = self.run_lines(*lines, **options)
        self.assertEqual(status, 0, output)
        return output.splitlines()

    def start(self):
        process = subprocess.Popen(PROGRAM + ['-q', 'media'], stdin=subprocess.PIPE, bufsize=0,
                                   stdout=subprocess.PIPE, cwd=self.folder, env=self.env)
        self.addCleanup(self.stop, process)
        process.stdin.write(b'config set cache-path cache\n')
        return process

    @staticmethod
    def stop(process):
        process.kill()
        process.stdin.close()
        process.stdout.close()
        process.wait()

    def covers(self, folder=b'cache/covers'):
        """Returns the contents of all files in the directory."""
        covers = []
        for name in os.listdir(self.path(folder)):
            with open(self.path(folder + b'/' + name), 'rb') as file:
                covers.append(file.read())
        return sorted(covers)

    def check_cover(self, answer, cover, words):
        """Checks an answer to `cache cover`, and returns the path of the cover."""
        if isinstance(answer, bytes):
            answer = os.fsdecode(answer).rstrip('\n')
        path, _, rest = answer.rpartition(': ')
        self.assertEqual(rest, '%d bytes, image/png, %s' % (len(cover), words), answer)
        with open(self.path(os.fsencode(path)), 'rb') as file:
            self.assertEqual(file.read(), cover)
        return path


class Cache(CacheScratch):
    """What the module answers, and what the settings do."""

    def test_help(self):
        self.assertEqual(ask('help cache'), HELP)
        self.assertEqual(ask('help fc'), HELP.replace('    cache', '    fc'))

    def test_a_cover_is_written_once(self):
        self.write_sound(b'a.mp3', picture(5000))
        first, second = self.ask('cache cover 1', 'fc cover 1')
        path = self.check_cover(first, picture(5000), 'written')
        self.assertEqual(self.check_cover(second, picture(5000), 'from cache'), path)
        third, = self.ask('cache cover 1')
        self.assertEqual(self.check_cover(third, picture(5000), 'from cache'), path)
        self.assertEqual(os.path.dirname(path), 'cache/covers')

    def test_without_a_setting_the_covers_lie_where_the_system_says(self):
        self.write_sound(b'a.mp3', picture(50))
        answer, = self.ask('config set cache-path', 'cache cover 1')
        path = self.check_cover(answer, picture(50), 'written')
        self.assertEqual(os.path.dirname(path), os.fsdecode(self.path(b'system/vxmedia/covers')))

    def test_a_file_that_is_moved_keeps_its_cover_and_one_that_is_changed_does_not(self):
        self.write_sound(b'a.mp3', picture(500))
        first, = self.ask('cache cover 1')
        os.rename(self.path(b'media/a.mp3'), self.path(b'media/b.mp3'))
        moved, = self.ask('cache cover 1')
        self.assertEqual(self.check_cover(moved, picture(500), 'from cache'),
                         self.check_cover(first, picture(500), 'written'))
        self.write_sound(b'b.mp3', picture(500, b'y'))
        changed, = self.ask('cache cover 1')
        self.check_cover(changed, picture(500, b'y'), 'written')
        self.assertEqual(self.covers(), [picture(500), picture(500, b'y')])

    def test_a_file_that_changes_after_the_scan_has_its_new_cover(self):
        self.write_sound(b'a.mp3', picture(500))
        process = self.start()
        process.stdin.write(b'cache cover 1\n')
        self.check_cover(process.stdout.readline(), picture(500), 'written')
        self.write_sound(b'a.mp3', picture(700, b'y'))
        process.stdin.write(b'cache cover 1\n')
        self.check_cover(process.stdout.readline(), picture(700, b'y'), 'written')

    def test_mistakes_are_explained(self):
        self.write_sound(b'a.mp3', picture(0x7FFF))
        self.write(b'media/b.gif', GIF)
        self.write(b'media/c\x1b.gif', GIF)
        for line, answer in (
                ('cache cover 0', "ERROR: Invalid parameter 1: '0'" + HINT),
                ('cache cover 4', 'ERROR: There is no media file 4'),
                ('cache cover 2', "ERROR: The file 'media/b.gif' has no cover"),
                ('cache cover 3', "ERROR: The file 'media/c\\x1B.gif' has no cover"),
                ('cache cover', 'ERROR: Missing parameter 1' + HINT),
                ('cache limit 0', "ERROR: Invalid parameter 1: '0'" + HINT),
                ('cache limit 4097', "ERROR: Invalid parameter 1: '4097'" + HINT),
                ('cache empty maybe', None),
                ('config set cache-limit 4097', "ERROR: 'cache-limit' is a number from 1 to 4096")):
            with self.subTest(line):
                status, output = self.run_lines(line)
                self.assertEqual(status, 1)
                if answer is None:
                    self.assertRegex(output, r'^ERROR: .*\n$')
                else:
                    self.assertEqual(output, answer + '\n')

    def test_status(self):
        self.write_sound(b'a.mp3', picture(5000))
        self.write_sound(b'b.mp3', picture(600))
        self.assertEqual(self.ask('cache status'), STATUS % (0, 0, 67108864, 0, 0))
        self.assertEqual(os.listdir(self.folder), [b'media'])
        self.assertEqual(self.ask('cache cover 1', 'cache cover 2', 'cache cover 2', 'cache limit 2',
                                  'cache status')[3:],
                         ['Covers may have 2 MiB'] + STATUS % (2, 5600, 2097152, 2, 1))

    def test_the_limit_is_a_setting(self):
        self.assertEqual(run(['-q', '-cconf', '-ecache limit 4096;config save;config get cache-limit'],
                             cwd=self.folder, env=self.env)[0], 0)
        with open(self.path(b'conf/_vxmedia.ini'), 'rb') as file:
            self.assertEqual(file.read(), b'[Cache]\nLimit=4096\n')

    def test_a_limit_removes_covers(self):
        for i in range(6):
            self.write_sound(b'%d.mp3' % i, picture(300000 + i))
        answers = self.ask(*['cache cover %d' % (i + 1) for i in range(6)])
        for i in range(6):
            self.check_cover(answers[i], picture(300000 + i), 'written')
        self.assertEqual(len(self.covers()), 6)
        answers = self.ask('cache limit 1', 'cache status', 'cache cover 6', 'cache status')
        self.assertEqual((answers[0], answers[1]), ('Covers may have 1 MiB', 'covers     3'))
        self.assertIn(picture(300005), self.covers())
        self.assertLessEqual(sum(map(len, self.covers())), 1 << 20)

    def test_a_cover_beyond_the_limit_is_refused(self):
        self.write_sound(b'a.mp3', picture(1048577))
        self.assertEqual(self.run_lines('cache limit 1', 'cache cover 1'),
                         (1, 'Covers may have 1 MiB\nERROR: The cover has 1048577 bytes, more than all '
                             'covers together may have\n'))
        self.assertEqual(self.covers(), [])

    def test_empty(self):
        self.write_sound(b'a.mp3', picture(5000))
        answers = self.ask('cache cover 1', 'cache empty', 'cache status', 'cache cover 1')
        self.assertEqual(answers[1:3], ['Emptied', 'covers     0'])
        self.check_cover(answers[-1], picture(5000), 'written')
        self.assertEqual(self.ask('cache empty true', 'cache empty yes'), ['Emptied', 'Emptied'])
        self.assertEqual(os.listdir(self.path(b'cache')), [])

    def test_another_directory_counts_at_once(self):
        self.write_sound(b'a.mp3', picture(50))
        answers = self.ask('cache cover 1', 'config set cache-path "o t h e r"', 'cache cover 1')
        self.assertEqual(os.path.dirname(self.check_cover(answers[1], picture(50), 'written')),
                         'o t h e r/covers')

    def test_lib_info_tells_about_the_picture(self):
        with open(os.path.join(PATHS['samples'], 'pictures/baseline.jpg'), 'rb') as file:
            jpeg = file.read()
        self.write_sound(b'a.mp3', jpeg)
        self.write_sound(b'b.mp3', b'RIFF0000WEBP')
        self.write(b'media/c.mp3', self.sound)
        answers = self.ask('cache status', 'lib info 1', 'lib info 2', 'lib info 3', 'lib info 1',
                           'cache status')
        self.assertEqual([line.split(None, 2)[1:] for line in answers if ' picture ' in line],
                         [['picture', 'JPEG 160x120, %d bytes' % len(jpeg)],
                          ['picture', 'image/png, 12 bytes'],
                          ['picture', 'JPEG 160x120, %d bytes' % len(jpeg)]])
        self.assertEqual(answers[5], 'details    0 files, 0 bytes')
        self.assertRegex(answers[-2], r'^details    2 files, \d+ bytes$')

    def test_lib_info_looks_again_at_a_file_that_has_changed(self):
        self.write_sound(b'a.mp3', GIF)
        process = self.start()
        for size in (7, 9, 11):
            self.write_sound(b'a.mp3', picture(size))
            process.stdin.write(b'lib info 1\n')
            self.assertEqual(self.read_picture(process), b'image/png, %d bytes' % size)
        os.remove(self.path(b'media/a.mp3'))
        process.stdin.write(b'lib info 1\n')
        self.assertEqual(self.read_picture(process), b'cannot be read')

    def test_the_details_that_are_kept_are_limited(self):
        for i in range(6):
            self.write_sound(b'%d' % i + b'long' * 50 + b'.mp3', GIF)
        infos = ['lib info %d' % (i + 1) for i in range(6)]
        # What one takes depends on the machine.
        for setting, counts in (('info-files 2', [3]), ('info-kbytes 1', [2, 3, 4, 5]), ('info-files 10', [6])):
            with self.subTest(setting):
                answers = self.ask('config set ' + setting, *infos, 'cache status')
                self.assertEqual(sum(' picture ' in line for line in answers), 6)
                self.assertIn(int(answers[-2].split()[1]), counts)

    @staticmethod
    def read_picture(process):
        while True:
            line = process.stdout.readline()
            if b' picture ' in line or not line:
                return line.strip().split(b'  ')[-1].strip()

    def test_those_who_ask_for_one_cover_at_once_all_get_it(self):
        self.write_sound(b'a.mp3', picture(2000000))
        process = self.start()
        for _ in range(20):
            process.stdin.write(b'timer after 0 cache cover 1\n')
        answers = [line for line in (process.stdout.readline() for _ in range(40))
                   if not line.startswith(b'Timer')]
        self.assertEqual(sorted(answer.rsplit(b', ', 1)[1] for answer in answers),
                         [b'from cache\n'] * 19 + [b'written\n'])
        self.check_cover([answer for answer in answers if b'written' in answer][0], picture(2000000),
                         'written')

    def test_a_line_waits_for_the_cover_before_it(self):
        self.write_sound(b'a.mp3', picture(2000000))
        answers = self.ask(*['cache empty', 'cache cover 1', 'sys version'] * 20)
        self.assertEqual(answers[0::3], ['Emptied'] * 20)
        self.assertEqual(answers[2::3], ['vxmedia 1.0.0'] * 20)


class BadCache(CacheScratch):
    """Full disks, other people's files, and the sudden end."""

    def test_a_full_disk_is_told_and_leaves_no_half_cover(self):
        self.write_sound(b'a.mp3', picture(100000))
        self.write_sound(b'b.mp3', picture(1000))
        with small_disk(self.path(b'cache'), 65536):
            status, output = self.run_lines('cache cover 1')
            self.assertRegex(output, r"^ERROR: Unable to write 'cache/covers/[^/]*': no space is left\n$")
            self.assertEqual(status, 1)
            self.assertEqual(os.listdir(self.path(b'cache/covers')), [])
            answer, = self.ask('cache cover 2')
            self.check_cover(answer, picture(1000), 'written')

    def test_a_file_size_limit_is_told(self):
        self.write_sound(b'a.mp3', picture(100000))
        status, output = self.run_lines(
            'cache cover 1', preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (2000, 2000)))
        self.assertRegex(output, r"^ERROR: Unable to write 'cache/covers/[^/]*': .*\n$")
        self.assertEqual((status, self.covers()), (1, []))

    def test_a_directory_that_must_not_be_written_is_told(self):
        self.write_sound(b'a.mp3', picture(100))
        os.makedirs(self.path(b'cache/covers'))
        os.chmod(self.path(b'cache/covers'), 0o500)
        status, output = self.run_lines('cache cover 1', prefix=HUMBLE)
        self.assertEqual((status, output), (1, "ERROR: Unable to keep covers in 'cache/covers/'\n"))

    def test_a_file_in_the_place_of_the_directory_is_told(self):
        self.write_sound(b'a.mp3', picture(100))
        self.write(b'cache')
        for line in ('cache cover 1', 'cache empty true', 'cache limit 3'):
            self.assertEqual(self.run_lines(line),
                             (1, "ERROR: Unable to keep covers in 'cache/covers/'\n"))
        self.assertEqual(self.ask('cache status')[0], 'covers     0')

    def test_covers_that_others_remove_are_written_again(self):
        self.write_sound(b'a.mp3', picture(800000))
        self.write_sound(b'b.mp3', picture(900000))
        process = self.start()
        process.stdin.write(b'cache limit 1\n')
        self.assertEqual(process.stdout.readline(), b'Covers may have 1 MiB\n')
        for removed in (b'cache/covers/*', b'cache/covers', b'cache') * 3:
            process.stdin.write(b'cache cover 1\n')
            self.check_cover(process.stdout.readline(), picture(800000), 'written')
            process.stdin.write(b'cache cover 1\n')
            self.check_cover(process.stdout.readline(), picture(800000), 'from cache')
            process.stdin.write(b'cache cover 2\n')
            self.check_cover(process.stdout.readline(), picture(900000), 'written')
            self.assertEqual(self.covers(), [picture(900000)])
            subprocess.run([b'sh', b'-c', b'rm -r ' + removed], cwd=self.folder, check=True)

    def test_files_that_others_put_there_are_taken_or_removed(self):
        self.write_sound(b'a.mp3', picture(5000))
        answer, = self.ask('cache cover 1')
        path = os.fsencode(self.check_cover(answer, picture(5000), 'written'))
        process = self.start()
        process.stdin.write(b'cache empty\n')
        self.assertEqual(process.stdout.readline(), b'Emptied\n')
        for _ in range(3):
            self.write(path, picture(70))
            process.stdin.write(b'cache cover 1\n')
            self.check_cover(process.stdout.readline(), picture(70), 'from cache')
            self.write(path, b'')
            process.stdin.write(b'cache cover 1\n')
            self.check_cover(process.stdout.readline(), picture(5000), 'written')
            os.remove(self.path(path))

    def test_a_media_file_that_goes_is_told(self):
        self.write_sound(b'a.mp3', picture(5000))
        self.write_sound(b'b.mp3', picture(5000))
        process = self.start()
        process.stdin.write(b'cache cover 1\n')
        self.check_cover(process.stdout.readline(), picture(5000), 'written')
        os.remove(self.path(b'media/a.mp3'))
        os.remove(self.path(b'media/b.mp3'))
        os.mkfifo(self.path(b'media/b.mp3'))
        process.stdin.write(b'cache cover 1\ncache cover 2\n')
        self.assertEqual(process.stdout.readline(), b"ERROR: The file 'media/a.mp3' has gone\n")
        self.assertEqual(process.stdout.readline(), b"ERROR: The file 'media/b.mp3' has gone\n")

    def test_a_file_that_shrinks_is_told(self):
        self.write_sound(b'a.mp3', picture(5000))
        process = self.start()
        process.stdin.write(b'sys version\n')
        process.stdout.readline()
        for length in (0, 3, 100, 3000):
            self.write(b'media/a.mp3', (tag(picture(5000)) + self.sound)[:length])
            process.stdin.write(b'cache cover 1\n')
            self.assertRegex(process.stdout.readline(), rb"^ERROR: The file 'media/a.mp3' ")
        self.assertEqual(self.covers(), [])

    def test_a_cover_may_have_16_mebibytes(self):
        self.write_sound(b'a.mp3', picture(1 << 24))
        self.write_sound(b'b.mp3', picture((1 << 24) + 1))
        status, output = self.run_lines('cache cover 1', 'cache cover 2', 'lib info 2')
        first, second, *rest = output.splitlines()
        self.check_cover(first, picture(1 << 24), 'written')
        self.assertEqual((status, second), (1, "ERROR: The file 'media/b.mp3' has a cover of more than 16 MiB"))
        self.assertRegex(rest[-1], r' picture +image/png, cannot be read$')

    def test_files_that_are_damaged_are_survived(self):
        chance = random.Random(3)
        whole = tag(GIF + picture(3000)) + self.sound[:4000]
        for i in range(60):
            bytes_ = bytearray(whole[:chance.randrange(1, len(whole))] if i % 2 else whole)
            for _ in range(chance.randrange(1, 9)):
                bytes_[chance.randrange(min(64, len(bytes_)))] = chance.randrange(256)
            self.write(b'media/%02d.mp3' % i, bytes(bytes_))
        lines = [line % (i + 1) for i in range(60) for line in ('cache cover %d', 'lib info %d')]
        status, output = self.run_lines(*lines)
        self.assertEqual(status, 1)
        for line in output.splitlines():
            self.assertRegex(line, r"^(cache/covers/\S+: \d+ bytes, \w+/[\w-]+, written|ERROR: The file "
                                   r"'media/.*' .*|ERROR: There is no media file \d+|(\w\w|-) .*)$")

    def test_a_kill_leaves_whole_covers(self):
        chance = random.Random(5)
        sizes = [200000 + 50000 * i for i in range(8)]
        for i, size in enumerate(sizes):
            self.write_sound(b'%d.mp3' % i, picture(size))
        for _ in range(10):
            process = self.start()
            process.stdin.write(b''.join(b'cache cover %d\n' % (i + 1) for i in range(8)) * 5)
            process.stdout.readline()
            time.sleep(chance.random() * 0.03)
            process.send_signal(signal.SIGKILL)
            process.wait()
            answers = self.ask(*['cache cover %d' % (i + 1) for i in range(8)])
            for answer, size in zip(answers, sizes):
                self.check_cover(answer, picture(size),
                                 'written' if answer.endswith('written') else 'from cache')
            self.ask('cache empty')
        self.assertEqual(self.covers(), [])

    def test_two_programs_share_a_directory(self):
        for i in range(4):
            self.write_sound(b'%d.mp3' % i, picture(100000 + i))
        lines = b''.join(b'cache cover %d\n' % (i % 4 + 1) + (b'cache empty\n' if i % 7 == 6 else b'')
                         for i in range(40))
        processes = [self.start() for _ in range(2)]
        for process in processes:
            process.stdin.write(lines)
            process.stdin.close()
        for process in processes:
            for line in process.stdout.read().decode().splitlines():
                self.assertRegex(line, r'^(Emptied|ERROR: Unable to (empty|write|keep covers in) '
                                       r"'cache/covers/.*|cache/covers/\S+: 10000[0-3] bytes, "
                                       r'image/png, (written|from cache))$')
        for cover in self.covers():
            self.assertIn(cover, {picture(100000 + i) for i in range(4)})

    def test_the_program_ends_while_covers_are_written(self):
        self.write_sound(b'a.mp3', picture(2000000))
        for _ in range(5):
            process = self.start()
            process.stdin.write(b'timer after 0 cache cover 1\n' * 5 + b'exit\n')
            process.stdin.close()
            self.assertEqual(process.wait(timeout=60), 0)
            process.stdout.read()
            self.ask('cache empty')


class CacheOnTerminal(CacheScratch, OnTerminal):
    """A user at a terminal, who need not wait for an answer."""

    def start(self, *arguments):
        OnTerminal.start(self, *arguments)

    def test_an_answer_starts_its_own_line_and_the_prompt_comes_back(self):
        self.write_sound(b'a.mp3', picture(1000000))
        self.start('-q')
        self.read_until(b'vxmedia> ')
        self.type('lib scan media\n')
        self.read_until(b'directories 1\r\nvxmedia> ')
        self.type('config set cache-path cache\n')
        self.read_until(b'cache\r\nvxmedia> ')
        self.type('cache cover 1\n')
        answer = self.read_until(b'written\r\nvxmedia> ')
        self.assertRegex(answer, r'^cache cover 1\nvxmedia> \ncache/covers/\S+: 1000000 bytes, image/png, '
                                 r'written\nvxmedia> $')
        self.type('lib info 1\n')
        self.assertRegex(self.read_until(b'1000000 bytes\r\nvxmedia> '),
                         r'^lib info 1\nvxmedia> \n(\S.*\n)+-  +picture +image/png, 1000000 bytes\nvxmedia> $')
        self.type('lib info 1\n')
        self.assertRegex(self.read_until(b'1000000 bytes\r\nvxmedia> '),
                         r'^lib info 1\n(\S.*\n)+-  +picture +image/png, 1000000 bytes\nvxmedia> $')
        self.type('exit\n')
        self.assertEqual(self.status(), (0, 'exit\n'))


HELP = """\
    cache cover id[1,4294967295] : write the cover of one media file to the cache
    cache empty (dir) : remove all covers; with 'true' their directory, too
    cache limit mbytes[1,4096] : set how much all covers together may have
    cache status : show how full the cache is
"""


class StatusTable:
    """The lines of `cache status`."""

    def __mod__(self, values):
        return [line % value for line, value in zip(
            ('covers     %d', 'bytes      %d', 'limit      %d', 'written    %d', 'found      %d'),
            values)] + ['details    0 files, 0 bytes', 'directory  cache/covers/']


STATUS = StatusTable()

if __name__ == '__main__':
    main()
