#!/usr/bin/env python3
"""Scans of the program vxmedia while they go on: what is answered, what stops them, what changes below.

A scan is kept under way by a plug-in that waits in a file until the test lets go of it.
"""
import os
import re
import select
import shutil
import subprocess
import threading

from harness import GIF, HUMBLE, PATHS, PROGRAM, OnTerminal, Scratch, ask, main, run


class Waiting:
    """Files that are read when the test lets go of them."""

    def write_waiting(self, name):
        pipe = self.path(b'pipe-' + name.replace(b'/', b'-'))
        os.mkfifo(pipe)
        self.write(name, b'WAIT' + pipe)

    def let_go(self, name):
        """Returns when the file is being read."""
        os.close(os.open(self.path(b'pipe-' + name.replace(b'/', b'-')), os.O_WRONLY))

    def load(self):
        return 'config set threads 2\nconfig set plugin-path %s\nplugin load probe_waits\n' % \
            PATHS['bad_plugins']


class Session(Scratch, Waiting):
    """A test that talks to the program line by line, through pipes."""

    def start(self, *arguments, prefix=()):
        self.process = subprocess.Popen(list(prefix) + PROGRAM + ['-q', *arguments], stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE, cwd=self.folder, bufsize=0)
        self.addCleanup(self.stop)
        self.tell(self.load())
        self.assertEqual(self.hear(), 'Loaded 1 plug-in')

    def stop(self):
        self.process.kill()
        self.process.stdin.close()
        self.process.stdout.close()
        self.process.wait()

    def tell(self, text):
        self.process.stdin.write(text.encode())

    def hear(self):
        self.assertTrue(select.select([self.process.stdout], [], [], 60)[0], 'no answer')
        return self.process.stdout.readline().decode().rstrip('\n')

    def finish(self):
        """Returns what else is answered until the program ends by itself."""
        self.process.stdin.close()
        output = self.process.stdout.read().decode()
        self.assertEqual(self.process.wait(60), 0)
        return output

    def wait_for(self, progress):
        """Asks how far the scan is until it is there."""
        line = ''
        while not re.search(progress, line):
            self.tell('lib progress\n')
            line = self.hear()
        return line

    def wait_for_reader(self, progress):
        """Waits until the scan is there, and a worker waits in a file."""
        self.wait_for(progress)
        states = []
        while 'reading headers' not in states:
            self.tell('sys threads\n')
            states = [self.hear().split(None, 2)[2] for _ in range(3)]


class Scans(Session):
    """Through pipes, lines wait for the scan before them, but for those that ask about it."""

    def test_nothing_runs_before_the_first_scan(self):
        self.assertEqual(ask('lib progress\nlib stop\nsys threads'),
                         'No scan is running\nNo scan is running\nNAME  JOBS  STATE\n')

    def test_lines_that_ask_about_the_scan_are_answered_at_once(self):
        self.write(b'x/a.gif')
        self.write_waiting(b'x/b/w')
        self.start()
        self.tell('lib scan x\n')
        self.wait_for_reader('directories 2')
        self.assertEqual(self.wait_for('directories 2'),
                         'Scanning x: directories 2, files 1, media 1, refused 0, tasks waiting 1')
        self.tell('help sys\nlibrary progress\nsys threads\n')
        self.assertEqual(self.hear()[:8], '    sys ')
        while True:
            line = self.hear()
            if line.startswith('Scanning'):
                break
            self.assertEqual(line[:8], '    sys ')
        self.assertEqual(self.hear(), 'NAME    JOBS  STATE')
        states = sorted(self.hear().split(None, 2)[2] for _ in range(2))
        self.assertEqual(states, ['reading headers', 'waiting'])
        self.tell('lib progress\nsys version\nlib progress\nlib stats\n')
        self.assertTrue(self.hear().startswith('Scanning'))
        self.let_go(b'x/b/w')
        self.assertEqual(self.hear(), 'Scanned x: media 2, others 0, refused 0, directories 2')
        self.assertEqual(self.hear(), 'vxmedia 1.0.0')
        self.assertEqual(self.hear(), 'No scan is running')
        self.assertRegex(self.finish(), r'\AFORMAT(.*\n)+0  refused\n\Z')

    def test_within_a_module_they_are_answered_at_once_too(self):
        self.write_waiting(b'x/w')
        self.start()
        self.tell('!lib\nscan x\nprogress\n')
        self.assertTrue(self.hear().startswith('Scanning x'))
        self.tell('!sys threads\nprogress\n')  # `!` waits
        self.let_go(b'x/w')
        self.assertEqual(self.hear(), 'Scanned x: media 1, others 0, refused 0, directories 1')
        self.assertEqual(self.hear(), 'NAME    JOBS  STATE')

    def test_the_end_of_the_input_waits_for_the_scan(self):
        self.write_waiting(b'x/w')
        self.start()
        self.tell('lib scan x\n')
        self.process.stdin.close()
        self.let_go(b'x/w')
        self.assertEqual(self.finish(), 'Scanned x: media 1, others 0, refused 0, directories 1\n')

    def test_timers_list_what_is_there_so_far(self):
        self.write(b'x/a.gif')
        self.write_waiting(b'x/b/w')
        self.start()
        self.tell('timer every 100 lib list\nlib scan x\n')
        self.assertEqual(self.hear(), 'Timer 1: every 100 ms')
        while not self.hear().endswith('x/a.gif'):
            pass
        self.let_go(b'x/b/w')
        while self.hear() != 'Scanned x: media 2, others 0, refused 0, directories 2':
            pass

    def test_a_scan_that_is_stopped_keeps_what_it_has_found_and_forgets_nothing(self):
        self.write(b'x/a.gif')
        self.write(b'x/c/d.gif')
        self.start()
        self.tell('lib scan x\n')
        self.assertEqual(self.hear(), 'Scanned x: media 2, others 0, refused 0, directories 2')
        self.write(b'x/a.gif', GIF + b'changed')
        self.write(b'x/b.gif')
        self.write_waiting(b'x/b/w')
        shutil.rmtree(self.path(b'x/c'))
        self.tell('lib scan x\n')
        self.wait_for_reader('files 2')
        self.tell('lib stop\nlib stop\nlib list\n')
        self.assertEqual(self.hear(), 'Stopped x: media 2, others 0, refused 0, directories 2')
        self.assertEqual(self.hear(), 'No scan is running')
        self.let_go(b'x/b/w')  # only then the list comes
        self.hear()
        rows = [self.hear().split() for _ in range(3)]
        self.assertEqual([(row[0], row[2], row[7]) for row in rows],
                         [('1', '20', 'x/a.gif'), ('3', '13', 'x/b.gif'), ('2', '13', 'x/c/d.gif')])
        self.assertEqual(self.hear(), '3 of 3 media files')
        self.let_go_later(b'x/b/w')
        self.tell('lib scan x\n')
        self.assertEqual(self.hear(), 'Scanned x: media 3, others 0, refused 0, directories 2')
        self.tell('lib list\n')
        self.assertEqual([line.split()[0] for line in self.finish().splitlines()[1:]],
                         ['1', '3', '4', '3'])

    def let_go_later(self, name):
        thread = threading.Thread(target=self.let_go, args=(name,))
        thread.start()
        self.addCleanup(thread.join)

    def test_stopping_drops_the_scans_behind_and_a_later_one_begins_anew(self):
        self.write_waiting(b'x/w')
        self.write(b'y/a.gif')
        self.write(b'z/a.gif')
        self.start()
        self.tell('timer after 0 lib scan y\nlib scan x\n')
        self.assertEqual(self.hear(), 'Timer 1: after 0 ms')
        self.wait_for_reader('directories 1')
        self.tell('lib stop\nlib scan z\nlib stats\n')
        self.assertEqual(self.hear(), 'Stopped x: media 0, others 0, refused 0, directories 1')
        self.let_go(b'x/w')
        self.assertEqual(self.hear(), 'Scanned z: media 1, others 0, refused 0, directories 1')
        self.assertIn('\n2  directories\n', self.finish())

    def test_a_scan_may_be_stopped_before_it_begins(self):
        self.write(b'x/a.gif')
        self.assertEqual(ask('lib scan x\nlib stop\nlib list', self.folder).splitlines()[0], 'Not begun: x')

    def test_numbers_do_not_depend_on_the_number_of_threads(self):
        for i in range(400):
            self.write(b'x/%d/%d/%d.gif' % (i % 3, i % 7, i))
        for i in range(300):
            self.write(b'x/many/%d.gif' % i)
        lists = [ask('config set threads %d\nlib scan x\nlib list 1000\nlib stats' % count, self.folder)
                 for count in (1, 2, 8)]
        self.assertEqual(lists[0].splitlines()[0],
                         'Scanned x: media 700, others 0, refused 0, directories 26')
        numbers = {line.split()[7]: int(line.split()[0]) for line in lists[0].splitlines()[2:702]}
        wanted = []
        for folder, folders, files in os.walk(self.path(b'x')):
            folders.sort()
            wanted += [os.path.relpath(os.path.join(folder, name), self.folder).decode()
                       for name in sorted(files)]
        self.assertEqual(sorted(numbers, key=numbers.get), wanted)
        self.assertEqual(lists[0], lists[1])
        self.assertEqual(lists[0], lists[2])

    def test_a_file_that_has_not_changed_is_not_read_again(self):
        self.write(b'x/same.gif')
        self.write(b'x/touched.gif')
        self.write(b'x/longer.gif')
        self.start(prefix=HUMBLE)
        self.tell('lib scan x\n')
        self.assertEqual(self.hear(), 'Scanned x: media 3, others 0, refused 0, directories 1')
        times = os.stat(self.path(b'x/same.gif'))
        self.write(b'x/longer.gif', GIF + b'more')
        os.utime(self.path(b'x/longer.gif'), ns=(times.st_atime_ns, times.st_mtime_ns))
        touched = os.stat(self.path(b'x/touched.gif'))
        os.utime(self.path(b'x/touched.gif'), ns=(touched.st_atime_ns, touched.st_mtime_ns + 1000))
        for name in (b'same', b'touched', b'longer'):
            os.chmod(self.path(b'x/%s.gif' % name), 0)
        self.tell('lib scan x\nlib list\n')
        self.assertEqual(self.hear(), 'Scanned x: media 1, others 0, refused 2, directories 1')
        self.assertEqual(self.hear(), '  refused x/longer.gif: the file cannot be read')
        self.assertEqual(self.hear(), '  refused x/touched.gif: the file cannot be read')
        self.assertRegex(self.finish(), r'x/same.gif\n1 of 1 media files\n\Z')

    def test_plugins_stay_until_the_last_job_of_a_stopped_scan(self):
        self.write_waiting(b'x/w')
        self.start()
        self.tell('timer after 86400000 plugin unload\nlib scan x\n')
        self.hear()
        self.wait_for_reader('directories 1')
        self.tell('lib stop\nplugin unload\nlib scan x\n')
        self.assertEqual(self.hear(), 'Stopped x: media 0, others 0, refused 0, directories 1')
        self.let_go(b'x/w')
        self.assertEqual(self.hear(), 'Unloaded 1 plug-in')
        self.assertEqual(self.hear(), 'Scanned x: media 0, others 1, refused 0, directories 1')
        self.tell('exit\n')
        self.assertEqual(self.finish(), '')


class ScansOnTerminal(OnTerminal, Waiting):
    """At a terminal every line is answered at once."""

    def begin(self, *arguments):
        self.start('-q', *arguments)
        self.read_until(b'vxmedia> ')
        for line in self.load().splitlines():
            self.type(line + '\n')
            self.read_until(b'vxmedia> ')

    def ask(self, line):
        self.type(line + '\n')
        return self.read_until(b'vxmedia> ')[len(line) + 1:-len('vxmedia> ')]

    def wait_for(self, progress):
        line = ''
        while not re.search(progress, line):
            line = self.ask('lib progress')
        while 'reading headers' not in self.ask('sys threads'):
            pass

    def test_lists_show_what_is_there_so_far(self):
        self.write(b'x/a.gif')
        self.write_waiting(b'x/b/w')
        self.begin()
        self.assertEqual(self.ask('lib scan x'), '')
        self.wait_for('directories 2')
        self.assertEqual(self.ask('lib list'), 'ID  FORMAT  BYTES  PICTURE  CHANNELS  RATE  SECONDS  PATH\n'
                                               ' 1  GIF        13  5x4             -     -        -  x/a.gif\n'
                                               '1 of 1 media files\n')
        self.assertIn('2  directories\n', self.ask('lib stats'))
        self.assertIn('library  active\n', self.ask('sys idle'))
        self.assertEqual(self.ask('plugin unload'), 'ERROR: A scan uses the plug-ins\n')
        self.assertEqual(self.ask('lib scan x/a.gif'), '')  # behind the other one
        self.assertTrue(self.ask('lib progress').startswith('Scanning x: '))
        self.let_go(b'x/b/w')
        self.assertEqual(self.read_until(b'x/a.gif: media 1, others 0, refused 0, directories 0\r\nvxmedia> ')
                         .replace('vxmedia> ', ''),
                         '\nScanned x: media 2, others 0, refused 0, directories 2\n'
                         '\nScanned x/a.gif: media 1, others 0, refused 0, directories 0\n')

    def test_a_scan_is_stopped(self):
        self.write_waiting(b'x/w')
        self.begin()
        self.ask('lib scan x')
        self.ask('lib scan x')
        self.wait_for('directories 1')
        self.assertEqual(self.ask('lib stop'), 'Stopped x: media 0, others 0, refused 0, directories 1\n')
        self.assertEqual(self.ask('lib progress'), 'No scan is running\n')
        self.assertEqual(self.ask('plugin unload'), 'ERROR: A scan uses the plug-ins\n')
        self.assertIn('reading headers', self.ask('sys threads'))
        self.assertIn('library  idle\n', self.ask('sys idle'))
        self.let_go(b'x/w')
        while self.ask('plugin unload') != 'Unloaded 1 plug-in\n':
            pass

    def end_during_a_scan(self, keys):
        self.write_waiting(b'x/w')
        for i in range(200):
            self.write(b'x/%d/y.gif' % i)
        self.begin()
        self.ask('config set threads 4')
        self.ask('lib scan x')
        self.wait_for('directories 1')
        self.type(keys)
        self.let_go(b'x/w')
        status, output = self.status()
        self.assertEqual(status, 0)
        self.assertNotIn('Scanned', output)

    def test_the_program_may_end_during_a_scan(self):
        self.end_during_a_scan('exit\n')

    def test_the_input_may_end_during_a_scan(self):
        self.end_during_a_scan('\x04')


class BadScans(Session):
    """Files and directories that change, vanish or cannot be read while they are scanned."""

    def test_what_changes_below_a_scan_is_told(self):
        self.write_waiting(b'x/a')
        for name in (b'x/b.gif', b'x/c.gif', b'x/d.gif', b'x/e.gif', b'x/f.gif', b'x/gone/y.gif',
                     b'x/link/y.gif', b'x/other/y.gif'):
            self.write(name)
        self.start()
        self.tell('config set threads 1\nlib scan x\n')
        self.wait_for('directories 1')  # the only thread is kept
        os.remove(self.path(b'x/b.gif'))
        os.remove(self.path(b'x/c.gif'))
        os.mkfifo(self.path(b'x/c.gif'))
        self.write(b'x/d.gif', b'GIF89a')
        self.write(b'x/e.gif', GIF + b'longer')
        os.remove(self.path(b'x/f.gif'))
        os.symlink(b'e.gif', self.path(b'x/f.gif'))
        shutil.rmtree(self.path(b'x/gone'))
        os.rename(self.path(b'x/link'), self.path(b'x/linked'))
        os.symlink(b'linked', self.path(b'x/link'))
        self.write(b'x/other/z.gif')
        self.let_go(b'x/a')
        self.tell('lib list\n')
        self.assertEqual(self.finish().splitlines(), [
            'Scanned x: media 4, others 0, refused 6, directories 2',
            '  refused x/b.gif: the file has gone',
            '  refused x/c.gif: the file has become something else',
            '  refused x/d.gif: GIF: the file ends inside the header',
            '  refused x/f.gif: the file has become something else',
            '  refused x/gone: the directory has gone',
            '  refused x/link: the directory has gone',
            'ID  FORMAT  BYTES  PICTURE  CHANNELS  RATE  SECONDS  PATH',
            ' 1  WAIT    %5d  1x1             -     -        -  x/a' % os.stat(self.path(b'x/a')).st_size,
            ' 2  GIF        19  5x4             -     -        -  x/e.gif',
            ' 3  GIF        13  5x4             -     -        -  x/other/y.gif',
            ' 4  GIF        13  5x4             -     -        -  x/other/z.gif',
            '4 of 4 media files'])

    def test_directories_that_cannot_be_read_are_told_with_the_reason(self):
        for i in range(20):
            self.write(b'x/%02d/y.gif' % i)
            if i % 2 == 0:
                os.chmod(self.path(b'x/%02d' % i), 0)
        status, output = run(['-q', '-econfig set refusals 2;lib scan x;lib stats'], cwd=self.folder,
                             prefix=HUMBLE)
        self.assertEqual(status, 0)
        reason = ("the directory cannot be read (error: 1 [scan] 'tried 3 times')"
                  " (error: 13 [system] 'Permission denied')")
        self.assertEqual(output.splitlines()[:4],
                         ['Scanned x: media 10, others 0, refused 10, directories 21',
                          '  refused x/00: ' + reason, '  refused x/02: ' + reason,
                          "  and 8 more; 'lib stats' counts the reasons"])
        self.assertTrue(output.endswith('10  refused\n  10  the directory cannot be read\n'))

    def test_a_directory_that_is_there_twice_is_scanned_once(self):
        self.write(b'x/a/y.gif')
        os.mkdir(self.path(b'x/b'))
        if shutil.which('mount') is None or subprocess.run(
                ['mount', '--bind', self.path(b'x/a'), self.path(b'x/b')],
                stderr=subprocess.DEVNULL).returncode != 0:
            self.skipTest('directories cannot be mounted here')
        try:
            for threads in (1, 8):
                self.assertEqual(ask('config set threads %d\nlib scan x\nlib scan x/b\nlib list' % threads,
                                     self.folder).splitlines(),
                                 ['Scanned x: media 1, others 0, refused 0, directories 2',
                                  'Scanned x/b: media 1, others 0, refused 0, directories 1',
                                  'ID  FORMAT  BYTES  PICTURE  CHANNELS  RATE  SECONDS  PATH',
                                  ' 1  GIF        13  5x4             -     -        -  x/a/y.gif',
                                  '1 of 1 media files'])
        finally:
            subprocess.run(['umount', self.path(b'x/b')])

    def test_directories_may_come_and_go_while_they_are_scanned(self):
        for i in range(300):
            self.write(b'x/%d/y.gif' % i)
        end = threading.Event()

        def meddle():
            while not end.is_set():
                for i in range(0, 300, 3):
                    shutil.rmtree(self.path(b'x/%d' % i))
                    self.write(b'x/%d/z.gif' % i)

        meddler = threading.Thread(target=meddle)
        meddler.start()
        try:
            output = ask('lib scan x\n' * 5 + 'sys version', self.folder)
        finally:
            end.set()
            meddler.join()
        self.assertTrue(output.endswith('\nvxmedia 1.0.0\n'))
        self.assertEqual(ask('lib scan x', self.folder),
                         'Scanned x: media 300, others 0, refused 0, directories 301\n')


if __name__ == '__main__':
    main()
