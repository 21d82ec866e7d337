#!/usr/bin/env python3
"""Runs the program vxmedia as its users do: through pipes, on a terminal, with scripts.

Whole outputs are compared; paths in them are relative to a temporary folder in which every run takes
place. harness.py tells how to start this file.
"""
import base64
import os
import re
import shutil
import stat
import subprocess
import time

from harness import HINT, BANNER, DEEP, GIF, HUMBLE, PATHS, PROGRAM, OnTerminal, Scratch, ask, main, run


class Samples(Scratch):
    """The bundled library."""

    def setUp(self):
        super().setUp()
        os.symlink(PATHS['samples'], self.path(b'samples'))

    def ask(self, lines):
        return ask(lines, self.folder)

    def test_a_scan_reports_what_it_found(self):
        self.assertEqual(self.ask('lib scan samples\n'),
                         'Scanned samples: media 30, others 0, refused 0, directories 4\n')

    def test_the_list_is_a_table_sorted_by_path(self):
        output = self.ask('lib scan samples\nlib list\nlib list 30\nlib list 2\n').split('\n', 1)[1]
        limited, rest = output.split('20 of 30 media files\n')
        whole, two = rest.split('30 of 30 media files\n')
        self.assertEqual(whole, LIST)
        self.assertEqual(len(limited.splitlines()), 21)
        paths = [line.split()[7] for line in whole.splitlines()[1:]]
        self.assertEqual(paths, sorted(paths))
        self.assertEqual(two.split('\n', 1)[0].split(), LIST.split('\n', 1)[0].split())
        self.assertEqual(two.splitlines()[-1], '2 of 30 media files')

    def test_stats_add_up(self):
        self.assertEqual(self.ask('lib scan samples\nlib stats\n').split('\n', 1)[1], STATS)

    def test_a_start_with_directories_scans_them_first(self):
        status, output = run(['-q', 'samples'], 'lib stats', self.folder)
        self.assertEqual((status, output), (0, STATS))
        status, output = run(['-q', '-elib stats', 'samples'], cwd=self.folder)
        self.assertEqual((status, output), (0, STATS))
        status, output = run(['samples'], '', self.folder)
        self.assertEqual((status, output),
                         (0, BANNER + 'Scanned samples: media 30, others 0, refused 0, directories 4\n'))

    def test_scanning_again_counts_nothing_twice(self):
        again = self.ask('lib scan samples\nlib scan samples/sounds\nlib scan samples/\n'
                         'lib scan samples/pictures/still.gif\nlib stats\nlib list 100\n')
        self.assertEqual(again.splitlines()[4:],
                         (STATS + LIST + '30 of 30 media files\n').splitlines())
        self.assertEqual(again.splitlines()[3],
                         'Scanned samples/pictures/still.gif: media 1, others 0, refused 0, directories 0')

    def test_another_name_of_a_directory_counts_nothing_twice(self):
        answers = self.ask('lib scan samples\nlib scan ./samples\nlib scan samples/../samples/.\n'
                           'lib scan %s\nlib stats\nlib list 100\n' % PATHS['samples'])
        self.assertEqual(answers.splitlines()[4:], (STATS + LIST + '30 of 30 media files\n').splitlines())

    def test_show_tells_all_about_one_file(self):
        ids = {line.split()[7]: line.split()[0] for line in LIST.splitlines()[1:]}
        self.assertEqual(
            self.ask('lib scan samples\nlib show %s\nlib show %s\n' %
                     (ids['samples/sounds/chord-vorbis.ogg'], ids['samples/pictures/interlaced.png'])
                     ).split('\n', 1)[1], SHOW)

    def test_every_answer_agrees_with_other_tools(self):
        rows = self.ask('lib scan samples\nlib list 100\n').splitlines()[2:-1]
        self.assertEqual(len(rows), 30)
        for row in rows:
            _, form, size, picture, channels, rate, seconds, path = row.split(None, 7)
            file = os.path.join(os.fsdecode(self.folder), path)
            with self.subTest(path):
                self.assertEqual(int(size), os.path.getsize(file))
                check_with_file(self, file, form, picture, channels, rate)
                check_with_identify(self, file, form, picture)
                check_with_ffprobe(self, file, picture, channels, rate, seconds)
                check_with_soxi(self, file, form, channels, rate, seconds)

    def test_the_readme_tells_the_truth(self):
        os.symlink(PATHS['plugins'], self.path(b'plugins'))
        with open(PATHS['readme'], encoding='utf-8') as file:
            sessions = re.findall(r'^`vxmedia ([^`]*)`[^`]*```console\n(.*?)```', file.read(), re.S | re.M)
        self.assertEqual([arguments for arguments, _ in sessions], ['samples', '-cconf samples'])
        for arguments, session in sessions:
            lines = re.findall(r'^vxmedia> (.*)$', session, re.M)
            answers = re.sub(r'^vxmedia> .*\n', '', session, flags=re.M)
            status, output = run(arguments.split(), '\n'.join(lines) + '\n', self.folder,
                                 env={**os.environ, 'VXPLUGINPATH': 'plugins'})
            self.assertEqual((status, without_times(output)), (0, without_times(answers)))


def without_times(text):
    """Returns answers without what differs from run to run."""
    return re.sub(r'^Duration: \d+\.\d{3} ', 'Duration: - ', text, flags=re.M)


def tool(name, *arguments):
    """Returns the output of another program, or None where it is not installed."""
    if shutil.which(name) is None:
        return None
    return subprocess.run([name, *arguments], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                          env={**os.environ, 'LC_ALL': 'C'}).stdout.decode().strip()


def check_with_file(test, path, form, picture, channels, rate):
    text = tool('file', '-b', path)
    if text is None:
        return
    names = {'PNG': 'PNG image data', 'JPEG': 'JPEG image data', 'GIF': 'GIF image data',
             'WAV': 'RIFF (little-endian) data, WAVE audio', 'FLAC': 'FLAC audio bitstream data',
             'Ogg': 'Ogg data'}
    if form == 'MP3':
        test.assertRegex(text, 'layer III')
    else:
        test.assertTrue(text.startswith(names[form]), text)
    if form in ('PNG', 'GIF'):
        test.assertIn(picture.replace('x', ' x '), text)
    if form == 'JPEG':
        test.assertIn(picture, text)
    if form == 'WAV':
        test.assertRegex(text, {'1': 'mono', '2': 'stereo'}.get(channels, channels + ' channels'))
        test.assertIn(rate + ' Hz', text)


def check_with_identify(test, path, form, picture):
    if picture == '-':
        return
    text = tool('identify', '-format', '%m %wx%h\n', path)
    if text is not None:
        test.assertEqual(text.splitlines()[0], form + ' ' + picture)


def check_with_ffprobe(test, path, picture, channels, rate, seconds):
    text = tool('ffprobe', '-v', 'error', '-of', 'default=nw=1', '-show_entries',
                'stream=width,height,channels,sample_rate:format=duration', path)
    if text is None:
        return
    facts = dict(line.split('=', 1) for line in text.splitlines())
    if picture != '-':
        test.assertEqual('%sx%s' % (facts['width'], facts['height']), picture)
        return
    test.assertEqual((facts['channels'], facts['sample_rate']), (channels, rate))
    # It counts the lead-in of Opus, 6.5 ms, which is not played.
    lead = 0.0065 if path.endswith('.opus') else 0
    test.assertAlmostEqual(float(facts['duration']) - lead, float(seconds), delta=0.0006)


def check_with_soxi(test, path, form, channels, rate, seconds):
    if form not in ('WAV', 'FLAC', 'Ogg', 'MP3'):
        return
    text = tool('soxi', path)
    facts = dict(re.findall(r'^(\S.*?)\s*: (.*)$', text or '', re.M))
    if 'Channels' not in facts:
        return  # it does not know Opus and FLAC in Ogg
    test.assertEqual((facts['Channels'], facts['Sample Rate']), (channels, rate))
    # It counts whole blocks of ADPCM, and leaves out or adds frames that MP3 pads with.
    slack = 0.006 if 'adpcm' in path else 0.05 if form == 'MP3' else 0.0006
    samples = int(re.search(r'= (\d+) samples', facts['Duration']).group(1))
    test.assertAlmostEqual(samples / int(rate), float(seconds), delta=slack)


class Arguments(Scratch):
    """Options, exit statuses, scripts."""

    def test_help(self):
        self.assertEqual(run(['-h']), (0, USAGE))

    def test_mistakes_are_explained(self):
        self.assertEqual(run(['-x']), (1, USAGE + "Unknown option 'x'\n"))
        self.assertEqual(run(['--help']), (1, USAGE + "Unknown option '--help'\n"))
        self.assertEqual(run(['-e']), (1, USAGE + "Option 'e' requires a value\n"))

    def test_the_banner_greets_unless_quiet(self):
        self.assertEqual(run([]), (0, BANNER))
        self.assertEqual(run(['-q']), (0, ''))

    def test_commands_are_executed_and_decide_the_status(self):
        self.assertEqual(run(['-q', '-esys version;sys version']), (0, 'vxmedia 1.0.0\n' * 2))
        self.assertEqual(run(['-q', '-e', 'sys version; ;']), (0, 'vxmedia 1.0.0\n'))
        self.assertEqual(run(['-q', '-e=nonsense;sys version']),
                         (1, "ERROR: Unknown module 'nonsense'. Type 'help' to display the list of "
                             "modules\nvxmedia 1.0.0\n"))
        self.assertEqual(run(['-q', '-elib show 1']), (1, 'ERROR: There is no media file 1\n'))
        self.assertEqual(run(['-q', '-eexit;nonsense']), (0, ''))
        self.assertEqual(run(['-q', '-e', '']), (0, ''))
        self.assertEqual(run(['-q', '-esys version', '/nowhere']),
                         (1, "ERROR: There is no file or directory '/nowhere'\nvxmedia 1.0.0\n"))

    def test_a_semicolon_in_quotes_belongs_to_its_command(self):
        self.assertEqual(run(['-q', '-esys json a {"a":"1;2"};sys version']),
                         (0, '"1;2"\nvxmedia 1.0.0\n'))

    def test_standard_input_is_not_read_beside_commands(self):
        self.assertEqual(run(['-q', '-esys version'], 'nonsense\n'), (0, 'vxmedia 1.0.0\n'))

    def test_a_script_is_executed(self):
        self.write(b'script', b'sys version\r\n\n  lib   stats  \nsys version')
        status, output = run(['-q', '-sscript'], cwd=self.folder)
        self.assertEqual((status, output), (0, 'vxmedia 1.0.0\n' + EMPTY_STATS + 'vxmedia 1.0.0\n'))
        self.write(b'bad', b'sys version\nsys nonsense\n')
        self.assertEqual(run(['-q', '-s', os.fsdecode(self.path(b'bad'))]),
                         (1, "vxmedia 1.0.0\nERROR: Unknown command 'nonsense'. Type 'help sys' to "
                             "display the list of commands\n"))

    def test_a_script_that_cannot_be_read_is_an_error(self):
        self.assertEqual(run(['-q', '-s', '/nowhere/script']),
                         (1, "ERROR: Unable to open file '/nowhere/script'\n"))
        status, output = run(['-q', '-s', '/'])
        self.assertEqual((status, output[:7]), (1, 'ERROR: '))

    def test_a_pipe_ends_with_status_0(self):
        self.assertEqual(run(['-q'], 'nonsense')[0], 0)
        self.assertEqual(run(['-q', '/nowhere'], 'lib stats'),
                         (0, "ERROR: There is no file or directory '/nowhere'\n" + EMPTY_STATS))
        self.assertEqual(run(['-q'], 'exit\nnonsense'), (0, ''))

    def test_input_that_is_closed_is_at_its_end(self):
        done = subprocess.run(['sh', '-c', 'exec "$@" <&-', 'sh'] + PROGRAM + ['-q'],
                              stdout=subprocess.PIPE, timeout=60)
        self.assertEqual((done.returncode, done.stdout), (0, b''))

    def test_answers_that_cannot_be_written_are_a_failure(self):
        for arguments in (['-q', '-esys version'], ['-q']):
            with open('/dev/full', 'wb') as full:
                done = subprocess.run(PROGRAM + arguments, input=b'sys version\n', stdout=full,
                                      stderr=subprocess.PIPE, timeout=60)
            self.assertEqual((done.returncode, done.stderr), (1, b''))

    def test_input_may_be_a_file(self):
        self.write(b'lines', b'sys version\n' * 1000)
        with open(self.path(b'lines'), 'rb') as file:
            done = subprocess.run(PROGRAM + ['-q'], stdin=file, stdout=subprocess.PIPE, timeout=60)
        self.assertEqual((done.returncode, done.stdout), (0, b'vxmedia 1.0.0\n' * 1000))
        done = subprocess.run(PROGRAM + ['-q'], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              timeout=60)
        self.assertEqual((done.returncode, done.stdout), (0, b''))


class Commands(Scratch):
    """What the modules answer."""

    def test_help_lists_modules_and_commands(self):
        self.assertEqual(ask('help\n'), 'Available modules:\n    !\n    library,lib\n    timer\n    sys\n'
                         '    config\n    export,ex\n    plugin\n    cache,fc\n')
        self.assertEqual(ask('help lib\n'), HELP_LIB)
        self.assertEqual(ask('help library\n'), HELP_LIB.replace('    lib ', '    library '))
        self.assertEqual(ask('help timer\n'), HELP_TIMER)
        self.assertEqual(ask('help sys\n'), HELP_SYS)
        self.assertEqual(ask('help !\n'), '    exit : request to exit the application\n'
                                          '    help (module) : display help\n')
        self.assertEqual(ask('help none\n'), "ERROR: Module 'none' is unknown. Type 'help' to display "
                                             "the list of modules\n")

    def test_a_module_can_be_entered_and_left(self):
        self.assertEqual(ask('!sys\nversion\nhelp\n!lib show 7\n!\nversion\n'),
                         'vxmedia 1.0.0\n' + HELP_SYS.replace('    sys ', '    ') +
                         'ERROR: There is no media file 7\n'
                         "ERROR: Unknown module 'version'. Type 'help' to display the list of modules\n")

    def test_numbers_out_of_range_are_refused(self):
        for line, position in (('lib list 0', 1), ('lib list 100001', 1), ('lib show 0', 1),
                               ('lib show 4294967296', 1), ('lib show -1', 1), ('lib show x', 1),
                               ('lib show 1e99999', 1), ('lib list nan', 1), ('lib list 0x10', 1),
                               ('timer after 86400001 x', 1), ('timer every 99 x', 1),
                               ('timer cancel 0', 1), ('sys watch ' + '9' * 400, 1)):
            with self.subTest(line):
                self.assertEqual(ask(line), "ERROR: Invalid parameter %d: '%s'%s\n" %
                                 (position, line.split()[2], HINT))
        self.assertEqual(ask('lib list 1 2'), 'ERROR: Too many parameters' + HINT + '\n')
        self.assertEqual(ask('lib show'), 'ERROR: Missing parameter 1' + HINT + '\n')
        self.assertEqual(ask('lib show 4294967295'), 'ERROR: There is no media file 4294967295\n')

    def test_directories_must_exist(self):
        self.assertEqual(ask('lib scan\n'), 'ERROR: Please specify the directory to scan\n')
        self.assertEqual(ask('lib scan ""\n'), 'ERROR: Please specify the directory to scan\n')
        self.assertEqual(ask('lib scan /no/where\n'),
                         "ERROR: There is no file or directory '/no/where'\n")
        self.assertEqual(ask('lib scan /dev/null\n'),
                         "ERROR: Neither a file nor a directory: '/dev/null'\n")

    def test_directories_may_have_blanks(self):
        self.write(b'a b/x.gif')
        answer = 'Scanned a b: media 1, others 0, refused 0, directories 1\n'
        for line in ('lib scan a b', 'lib scan "a b"', "lib scan 'a b'", 'lib scan a b///'):
            with self.subTest(line):
                self.assertEqual(ask(line, self.folder), answer)

    def test_bits(self):
        data = base64.b64encode(bytes(range(0x40, 0x48))).decode()
        self.assertEqual(ask('sys bits %s\n' % data),
                         '8 bytes\n'
                         '00000000  01000000 01000001 01000010 01000011 01000100 01000101  @ABCDE\n'
                         '00000006  01000110 01000111                                      FG\n')
        self.assertEqual(ask('sys bits AP8=\n'), '2 bytes\n00000000  00000000 11111111'
                                                 + ' ' * 38 + '..\n')
        for data in ('!', '"@@@@"', 'A', '"" '):
            with self.subTest(data):
                self.assertEqual(ask('sys bits ' + data)[:7], 'ERROR: ')

    def test_json(self):
        self.assertEqual(ask('sys json a[1].b {"a":[1,{"b":"x"}]}\n'), '"x"\n')
        self.assertEqual(ask("sys json $.a '{\"a\":18446744073709551615}'\n"), '18446744073709551615\n')
        self.assertEqual(ask('sys json b {"a":1}\n'), "ERROR: There is no 'b' in the text\n")
        self.assertEqual(ask('sys json a[9] {"a":[]}\n'), "ERROR: There is no 'a[9]' in the text\n")
        self.assertEqual(ask('sys json a {"a":}\n'), 'ERROR: The text is not JSON at byte 6\n')
        self.assertEqual(ask('sys json a\n'), 'ERROR: The text is not JSON at byte 1\n')
        self.assertEqual(ask('sys json $ {"b":[]}\n').split(), ['{', '"b":', '[]', '}'])

    def test_bench_measures_its_jobs(self):
        for i, name in enumerate(('json', 'mpack', 'strings', 'xml')):
            output = ask('sys bench %s\nsys version' % name, self.folder)
            self.assertRegex(output, r'\A%s: .*\nDuration: \d+\.\d{3} seconds\n\nvxmedia 1\.0\.0\n\Z' % name)
            with open(self.path(b'vxmedia-bench.txt'), encoding='utf-8') as file:
                self.assertEqual(file.read().count('Duration: '), i + 1)
        self.assertEqual(ask('sys bench none'),
                         "ERROR: There is no job 'none'; there are json, mpack, strings, xml\n")

    def test_records_of_measurements_lie_beside_the_configuration(self):
        status, output = run(['-q', '-cconf', '-esys bench strings'], cwd=self.folder)
        self.assertEqual(status, 0)
        with open(self.path(b'conf/vxmedia-bench.txt'), encoding='utf-8') as file:
            self.assertEqual(file.read(), output)
        os.remove(self.path(b'conf/vxmedia-bench.txt'))
        os.mkdir(self.path(b'conf/vxmedia-bench.txt'))
        self.assertEqual(run(['-q', '-cconf', '-esys bench strings'], cwd=self.folder)[0], 0)

    def test_idle_tells_what_is_active(self):
        self.assertEqual(ask('sys idle\n'), 'library  idle\ntimer    idle\nidle for 0 s\n')
        self.assertEqual(ask('timer after 5000 help\nsys idle\ntimer cancel 1\nsys idle\n'),
                         'Timer 1: after 5000 ms\nlibrary  idle\ntimer    active\nactive\n'
                         'Timer 1 cancelled\nlibrary  idle\ntimer    idle\nidle for 0 s\n')

    def test_watch_logs_the_references_to_one_item(self):
        self.write(b'x.gif')
        done = subprocess.run(PROGRAM + ['-q', '.'], input=b'lib show 1\nsys watch 1\nlib show 1\n',
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, cwd=self.folder)
        self.assertEqual(done.returncode, 0)
        show = b'id      1\npath    ./x.gif\nformat  GIF\nbytes   13\nwidth   5\nheight  4\n' \
               b'detail  version 89a\n'
        self.assertEqual(done.stdout, show + b'Watching media file 1\n' + show)
        counts = re.findall(rb'===(>>>|<<<)\n *RefCount: (\d+)\n', done.stderr)
        self.assertEqual(counts[:2], [(b'>>>', b'1'), (b'<<<', b'0')])

    def test_a_watched_item_may_go(self):
        self.write(b'x.gif')
        process = subprocess.Popen(PROGRAM + ['-q', '.'], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                   stderr=subprocess.DEVNULL, cwd=self.folder, bufsize=0)
        process.stdin.write(b'sys watch 1\n')
        process.stdin.flush()
        self.assertEqual(process.stdout.readline(), b'Watching media file 1\n')
        os.remove(self.path(b'x.gif'))
        self.write(b'y.gif')
        output, _ = process.communicate(b'lib scan .\nlib show 1\nlib show 2\n')
        self.assertEqual(process.returncode, 0)
        self.assertIn(b'ERROR: There is no media file 1\nid      2\n', output)


class Timers(Scratch):
    """Commands that wait for their time."""

    def start(self, *arguments):
        process = subprocess.Popen(PROGRAM + ['-q', *arguments], stdin=subprocess.PIPE,
                                   stdout=subprocess.PIPE, cwd=self.folder)
        self.addCleanup(self.stop, process)
        return process

    @staticmethod
    def stop(process):
        process.kill()
        process.stdin.close()
        process.stdout.close()
        process.wait()

    @staticmethod
    def tell(process, line):
        process.stdin.write(line.encode() + b'\n')
        process.stdin.flush()

    def test_lines_are_answered_one_by_one(self):
        process = self.start()
        for _ in range(3):
            self.tell(process, 'sys version')
            self.assertEqual(process.stdout.readline(), b'vxmedia 1.0.0\n')

    def test_timers_fire_in_the_order_of_their_times(self):
        process = self.start()
        self.tell(process, 'timer after 600 lib show 3\ntimer after 300 lib show 2\n'
                           'timer after 0 lib show 1')
        lines = [process.stdout.readline().decode() for _ in range(6)]
        self.assertEqual(lines, ['Timer 1: after 600 ms\n', 'Timer 2: after 300 ms\n',
                                 'Timer 3: after 0 ms\n'] +
                         ['ERROR: There is no media file %d\n' % i for i in (1, 2, 3)])
        self.tell(process, 'timer list')
        self.assertEqual(process.stdout.readline(), b'ID  LEFT  EVERY  COMMAND\n')

    def test_a_timer_waits_for_its_time(self):
        process = self.start()
        begin = time.monotonic()
        self.tell(process, 'timer after 500 sys version')
        self.assertEqual(process.stdout.readline(), b'Timer 1: after 500 ms\n')
        self.assertEqual(process.stdout.readline(), b'vxmedia 1.0.0\n')
        self.assertGreaterEqual(time.monotonic() - begin, 0.499)

    def test_every_repeats_until_it_is_cancelled(self):
        process = self.start()
        self.tell(process, 'timer every 100 sys version')
        self.assertEqual(process.stdout.readline(), b'Timer 1: every 100 ms\n')
        for _ in range(3):
            self.assertEqual(process.stdout.readline(), b'vxmedia 1.0.0\n')
        self.tell(process, 'timer list')
        while True:
            line = process.stdout.readline()
            if line != b'vxmedia 1.0.0\n':
                break
        self.assertEqual(line.split(), [b'ID', b'LEFT', b'EVERY', b'COMMAND'])
        row = process.stdout.readline().split()
        self.assertEqual((row[0], row[2:]), (b'1', [b'100', b'sys', b'version']))
        self.tell(process, 'timer cancel 1\ntimer cancel 1\nexit')
        rest = process.stdout.read().replace(b'vxmedia 1.0.0\n', b'')
        self.assertEqual(rest, b'Timer 1 cancelled\nERROR: There is no timer 1\n')

    def test_a_timer_may_cancel_others_and_itself(self):
        process = self.start()
        self.tell(process, 'timer every 100 timer cancel 1')
        self.assertEqual(process.stdout.readline(), b'Timer 1: every 100 ms\n')
        self.assertEqual(process.stdout.readline(), b'Timer 1 cancelled\n')
        self.tell(process, 'timer after 0 exit')
        self.assertEqual(process.stdout.read(), b'Timer 2: after 0 ms\n')
        self.assertEqual(process.wait(), 0)

    def test_there_is_a_limit_to_timers(self):
        lines = 'timer after 86400000 help\n' * 1001
        output = ask(lines).splitlines()
        self.assertEqual(output[999:], ['Timer 1000: after 86400000 ms',
                                        'ERROR: Too many timers wait already'])

    def test_a_timer_needs_a_command(self):
        self.assertEqual(ask('timer after 5'), 'ERROR: Please specify the command line to execute\n')

    def test_a_timer_fires_during_a_scan(self):
        for i in range(3000):
            self.write(b'%d/x.gif' % (i % 30) if i < 30 else b'%d/%d.txt' % (i % 30, i), GIF[:13])
        process = self.start()
        self.tell(process, 'timer after 0 sys version\nlib scan .\nlib stats')
        lines = [process.stdout.readline() for _ in range(3)]
        self.assertEqual(lines[:2], [b'Timer 1: after 0 ms\n', b'vxmedia 1.0.0\n'])
        self.assertEqual(lines[2], b'Scanned .: media 3000, others 0, refused 0, directories 31\n')

    def test_waiting_costs_nothing(self):
        process = self.start()
        self.tell(process, 'timer after 86400000 help')
        process.stdout.readline()
        for _ in range(20):  # on a busy machine it may take a while until the program waits
            before = context_switches(process.pid)
            time.sleep(1.5)
            switches = context_switches(process.pid) - before
            if switches <= 1:
                break
        self.assertLessEqual(switches, 1)


def context_switches(pid):
    with open('/proc/%d/status' % pid) as file:
        return sum(int(line.split()[1]) for line in file if 'ctxt_switches' in line)


class Terminal(OnTerminal):
    """A user at a terminal."""

    def test_it_prompts(self):
        self.start()
        self.assertEqual(self.read_until(b'vxmedia> '), BANNER + 'vxmedia> ')
        self.type('sys version\n')
        self.assertEqual(self.read_until(b'vxmedia> '), 'sys version\nvxmedia 1.0.0\nvxmedia> ')
        self.type('\n')
        self.assertEqual(self.read_until(b'vxmedia> '), '\nvxmedia> ')
        self.type('exit\n')
        self.assertEqual(self.status(), (0, 'exit\n'))

    def test_the_end_of_input_ends_the_line(self):
        self.start('-q')
        self.assertEqual(self.read_until(b'vxmedia> '), 'vxmedia> ')
        self.type('\x04')
        self.assertEqual(self.status(), (0, '\n'))

    def test_a_timer_starts_its_own_line_and_the_prompt_comes_back(self):
        self.start('-q')
        self.read_until(b'vxmedia> ')
        self.type('timer after 300 sys version\n')
        self.assertEqual(self.read_until(b'vxmedia> '),
                         'timer after 300 sys version\nTimer 1: after 300 ms\nvxmedia> ')
        self.assertEqual(self.read_until(b'vxmedia> '), '\nvxmedia 1.0.0\nvxmedia> ')

    def test_a_scan_starts_its_own_line_and_the_prompt_comes_back(self):
        self.write(b'x.gif')
        self.start('-q', '.')
        self.read_until(b'vxmedia> ')
        self.type('lib scan .\n')
        self.assertEqual(self.read_until(b'directories 1\r\nvxmedia> '),
                         'lib scan .\nvxmedia> \n'
                         'Scanned .: media 1, others 0, refused 0, directories 1\nvxmedia> ')

    def test_commands_in_arguments_need_no_prompt(self):
        self.start('-q', '-esys version')
        self.assertEqual(self.status(), (0, 'vxmedia 1.0.0\n'))


class BadInput(Scratch):
    """Lines and files that nobody should write."""

    def test_a_line_of_a_megabyte(self):
        word = 'x' * (1 << 20)
        self.assertEqual(ask(word), "ERROR: Unknown module '%s'. Type 'help' to display the list of "
                                    "modules\n" % word)
        self.assertEqual(ask('lib show ' + word), "ERROR: Invalid parameter 1: '%s'%s\n" % (word, HINT))
        self.assertEqual(ask('lib scan ' + word),
                         "ERROR: There is no file or directory '%s'\n" % word)
        self.assertEqual(ask('"' * (1 << 20) + '\nsys version').splitlines()[-1], 'vxmedia 1.0.0')
        self.assertEqual(ask('sys json a {"a":"%s"}' % word), '"%s"\n' % word)
        self.assertEqual(ask('a ' * (1 << 19))[:33], "ERROR: Unknown module 'a'. Type '"[:33])
        self.assertEqual(ask('sys bits ' + 'QUJD' * (1 << 18)).split('\n')[0], '786432 bytes')

    def test_a_line_beyond_the_limit_is_refused_and_the_next_one_answered(self):
        output = ask('x' * (17 << 20) + '\nsys version\n' + 'y' * (17 << 20))
        self.assertEqual(output, 'ERROR: The line is too long\nvxmedia 1.0.0\n'
                                 'ERROR: The line is too long\n')

    def test_percent_signs_are_only_text(self):
        for text in ('%n', '%s%s%s%n', '%1000000000d', '%'):
            self.assertEqual(ask(text), "ERROR: Unknown module '%s'. Type 'help' to display the list "
                                        "of modules\n" % text)
            self.assertEqual(ask('lib ' + text), "ERROR: Unknown command '%s'. Type 'help lib' to "
                                                 "display the list of commands\n" % text)
            self.assertEqual(ask('lib show ' + text), "ERROR: Invalid parameter 1: '%s'%s\n" % (text, HINT))
            self.assertEqual(ask('lib scan ' + text),
                             "ERROR: There is no file or directory '%s'\n" % text)
            self.assertEqual(ask('help ' + text), "ERROR: Module '%s' is unknown. Type 'help' to "
                                                  "display the list of modules\n" % text)
            self.assertEqual(ask('sys json %s {}' % text), "ERROR: There is no '%s' in the text\n" % text)
            self.assertEqual(ask('sys json a {"a":"%s"}' % text), '"%s"\n' % text)
        self.write(b'%n%s/%n.gif')
        self.assertIn('./%n%s/%n.gif', ask('lib scan .\nlib list', self.folder))
        self.assertEqual(run(['-q', '-e%n']), (1, "ERROR: Unknown module '%n'. Type 'help' to display "
                                                  "the list of modules\n"))
        self.assertEqual(run(['-%n']), (1, USAGE + "Unknown option ''\n"))

    def test_bytes_that_steer_a_terminal_are_escaped(self):
        self.assertEqual(ask(b'\x1b[2J\xff\x07\n').split('.')[0],
                         "ERROR: Unknown module '\\x1B[2J\\xFF\\x07'")
        self.assertEqual(ask(b'lib show \xc2\x9b'), "ERROR: Invalid parameter 1: '\\xC2\\x9B'" + HINT + '\n')
        self.assertEqual(ask(b'a\0b\nsys version\n'), 'ERROR: The line holds a NUL byte\nvxmedia 1.0.0\n')
        self.assertEqual(ask('sys json a {"a":"\\u001b\u202e"}'), '"\\u001b\\u202e"\n')

    def test_every_single_byte_is_survived(self):
        lines = b''.join(bytes([i]) + b'\n' for i in range(256) if i != 10)
        output = ask(lines + b'sys version\n')
        self.assertEqual(output.splitlines()[-1], 'vxmedia 1.0.0')
        pairs = b''.join(bytes([i, j]) + b'\n' for i in b'"\'!\\ \t%;' for j in range(1, 256))
        self.assertEqual(ask(pairs + b'!\nsys version\n').splitlines()[-1], 'vxmedia 1.0.0')

    def test_random_lines_are_survived(self):
        import random
        chance = random.Random(4711)
        words = [b'lib', b'timer', b'sys', b'help', b'!', b'!lib', b'json', b'bits', b'list', b'show',
                 b'stats', b'"', b"'", b'%n', b'0', b'-1', b'1e308', b'{"a":[1,2,{"b":null}]}', b'a[0]',
                 b'$', b'AAAA', b'\xff\xfe', b'watch', b'idle', b'\t', b'{', b'[[[[', b'99999999999']
        lines = b'\n'.join(b' '.join(chance.choice(words) for _ in range(chance.randrange(6)))
                           for _ in range(5000))
        self.assertEqual(ask(lines + b'\n!\nsys version\n').splitlines()[-1], 'vxmedia 1.0.0')

    def test_json_nested_a_million_deep_is_refused(self):
        for text in ('[' * DEEP, '{"a":' * DEEP, '[' * DEEP + ']' * DEEP):
            output = ask('sys json a %s\n' % text)
            self.assertRegex(output, r'^ERROR: The text is not JSON at byte \d+\n$')
        self.assertEqual(ask('sys json %s {"a":1}\n' % ('a.' * DEEP))[:20], 'ERROR: There is no \'')
        self.assertEqual(ask('sys json %s {"a":1}\n' % ('a[' * DEEP))[:20], 'ERROR: There is no \'')

    def test_names_that_are_not_text_are_escaped(self):
        for name in (b'\xff\xfe.gif', b'\x1b[31m.gif', b'new\nline.gif', b'back\\slash.gif',
                     'blank \u00e9.gif'.encode(), b'dot..gif', b'.hidden.gif', b"quote'.gif", b'-.gif'):
            self.write(name)
        output = ask('lib scan .\nlib list', self.folder).splitlines()
        self.assertEqual([line.split(None, 7)[7] for line in output[2:-1]],
                         ['./\\x1B[31m.gif', './-.gif', './.hidden.gif', './back\\\\slash.gif',
                          './blank \u00e9.gif', './dot..gif', './new\\x0Aline.gif', "./quote'.gif",
                          './\\xFF\\xFE.gif'])

    def test_names_that_end_in_odd_ways_are_found(self):
        for name in (b'dot.', b'two..', b'...', b' ', b'gif', b'a.gif.', b'a/b/...', b'a/b../x'):
            self.write(name)
        output = ask('lib scan .', self.folder)
        self.assertEqual(output, 'Scanned .: media 8, others 0, refused 0, directories 4\n')

    def test_links_are_counted_and_not_followed(self):
        self.write(b'a/x.gif')
        os.symlink(b'..', self.path(b'a/up'))
        os.symlink(b'a', self.path(b'again'))
        os.symlink(b'loop', self.path(b'loop'))
        os.symlink(b'nowhere', self.path(b'dangling'))
        os.symlink(b'a/x.gif', self.path(b'y.gif'))
        output = ask('lib scan .\nlib stats', self.folder)
        self.assertEqual(output.splitlines()[0],
                         'Scanned .: media 1, others 0, refused 0, directories 2')
        self.assertIn('5  symbolic links, not followed\n', output)
        self.assertEqual(ask('lib scan loop', self.folder),
                         "ERROR: There is no file or directory 'loop'\n")
        self.assertEqual(ask('lib scan again', self.folder),
                         'Scanned again: media 1, others 0, refused 0, directories 1\n')
        self.assertEqual(ask('lib scan again/up/again/x.gif', self.folder),
                         'Scanned again/up/again/x.gif: media 1, others 0, refused 0, directories 0\n')

    def test_a_scan_around_another_one_renews_it(self):
        self.write(b'a/x.gif')
        self.write(b'a/b/y.gif')
        self.write(b'z.gif')
        process = subprocess.Popen(PROGRAM + ['-q', 'a/b', 'a'], stdin=subprocess.PIPE,
                                   stdout=subprocess.PIPE, cwd=self.folder, bufsize=0)
        process.stdin.write(b'lib scan .\n')
        self.assertEqual(process.stdout.readline(),
                         b'Scanned .: media 3, others 0, refused 0, directories 3\n')
        os.remove(self.path(b'a/b/y.gif'))
        os.rename(self.path(b'a/x.gif'), self.path(b'a/w.gif'))
        output, _ = process.communicate(b'lib scan .\nlib list\nlib stats\n')
        lines = output.decode().splitlines()
        self.assertEqual(lines[0], 'Scanned .: media 2, others 0, refused 0, directories 3')
        self.assertEqual([line.split()[-1] for line in lines[2:4]], ['./z.gif', 'a/w.gif'])
        self.assertIn('3  directories', lines)

    def test_pipes_and_sockets_are_counted_and_not_opened(self):
        os.mkfifo(self.path(b'pipe.mp3'))
        os.mknod(self.path(b'socket'), stat.S_IFSOCK | 0o600)  # binding one limits the path's length
        output = ask('lib scan .\nlib stats', self.folder, timeout=30)
        self.assertEqual(output.splitlines()[0],
                         'Scanned .: media 0, others 0, refused 0, directories 1')
        self.assertIn('2  pipes, sockets and devices\n', output)
        self.assertEqual(ask('lib scan pipe.mp3', self.folder),
                         "ERROR: Neither a file nor a directory: 'pipe.mp3'\n")

    def test_broken_files_are_refused_and_explained(self):
        self.write(b'empty.png', b'')
        self.write(b'empty.txt', b'')
        self.write(b'text.jpg', b'text')
        self.write(b'cut.gif', GIF[:9])
        self.write(b'lie.wav', b'RIFF\xff\xff\xff\xffWAVEfmt \xff\xff\xff\xff')
        self.write(b'x.gif')
        self.assertEqual(ask('lib scan .\nlib stats', self.folder), BROKEN)

    def test_many_refusals_are_cut_in_the_report(self):
        for i in range(15):
            self.write(b'%02d.png' % i, b'')
        self.assertEqual(ask('lib scan .', self.folder).splitlines(),
                         ['Scanned .: media 0, others 0, refused 15, directories 1'] +
                         ['  refused ./%02d.png: the file is empty' % i for i in range(10)] +
                         ["  and 5 more; 'lib stats' counts the reasons"])

    def test_what_cannot_be_read_is_refused(self):
        self.write(b'shut/x.gif')
        self.write(b'locked.gif')
        os.chmod(self.path(b'shut'), 0)
        os.chmod(self.path(b'locked.gif'), 0)
        output = ask('lib scan .\nlib scan shut\nlib stats', self.folder, prefix=HUMBLE)
        self.assertEqual(output.splitlines()[:4],
                         ['Scanned .: media 0, others 0, refused 2, directories 2',
                          '  refused ./locked.gif: the file cannot be read',
                          "  refused ./shut: the directory cannot be read (error: 1 [scan] 'tried 3 times')"
                          " (error: 13 [system] 'Permission denied')",
                          "ERROR: Unable to read the directory 'shut'"])

    def test_directories_may_be_nested_deep(self):
        here = os.open(self.folder, os.O_RDONLY)
        for _ in range(1900):
            os.mkdir(b'd', dir_fd=here)
            below = os.open(b'd', os.O_RDONLY, dir_fd=here)
            os.close(here)
            here = below
        with os.fdopen(os.open(b'x.gif', os.O_CREAT | os.O_WRONLY, dir_fd=here), 'wb') as file:
            file.write(GIF)
        os.close(here)
        self.assertEqual(ask('lib scan .', self.folder),
                         'Scanned .: media 1, others 0, refused 0, directories 1901\n')

    def test_paths_beyond_the_system_limit_are_refused(self):
        here = os.open(self.folder, os.O_RDONLY)
        for _ in range(30):
            os.mkdir(b'd' * 200, dir_fd=here)
            below = os.open(b'd' * 200, os.O_RDONLY, dir_fd=here)
            os.close(here)
            here = below
        os.close(here)
        output = ask('lib scan .', self.folder)
        self.assertEqual(output.splitlines()[0],
                         'Scanned .: media 0, others 0, refused 1, directories 21')
        self.assertTrue(output.endswith(': the entry cannot be examined\n'))

    def test_a_scan_forgets_what_is_gone(self):
        self.write(b'a.gif')
        self.write(b'b/c.gif')
        process = subprocess.Popen(PROGRAM + ['-q', '.'], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                   cwd=self.folder, bufsize=0)
        process.stdin.write(b'lib show 2\n')
        process.stdin.flush()
        self.assertEqual(process.stdout.readline(), b'id      2\n')
        shutil.rmtree(self.path(b'b'))
        self.write(b'c.gif')
        output, _ = process.communicate(b'lib scan .\nlib list\n')
        self.assertEqual(output.decode().splitlines()[6:],
                         ['Scanned .: media 2, others 0, refused 0, directories 1',
                          'ID  FORMAT  BYTES  PICTURE  CHANNELS  RATE  SECONDS  PATH',
                          ' 1  GIF        13  5x4             -     -        -  ./a.gif',
                          ' 3  GIF        13  5x4             -     -        -  ./c.gif',
                          '2 of 2 media files'])

    def test_the_system_folders_are_scanned_in_time(self):
        for _ in range(5):  # somebody may be installing something
            before = count_files('d'), count_files('f', '*.png')
            output = ask('lib scan /usr/share\nlib stats\nlib scan /proc/self\n', timeout=300)
            directories, images = count_files('d'), count_files('f', '*.png')
            if before == (directories, images):
                break
        lines = output.splitlines()
        pictures = int(re.search(r'^PNG +(\d+)', output, re.M).group(1))
        self.assertGreaterEqual(pictures, images - refusals(lines[0]))
        self.assertEqual(int(lines[0].rsplit(None, 1)[1]), directories)
        self.assertRegex(lines[-1], r'^Scanned /proc/self: |^  ')


def count_files(kind, pattern='*'):
    found = subprocess.run(['find', '/usr/share', '-type', kind, '-name', pattern],
                           stdout=subprocess.PIPE).stdout
    return len(found.splitlines())


def refusals(report):
    return int(re.search(r'refused (\d+)', report).group(1))


LIST = """\
ID  FORMAT  BYTES  PICTURE  CHANNELS   RATE  SECONDS  PATH
 1  GIF       261  48x48           -      -        -  samples/pictures/animated.gif
 2  JPEG      855  160x120         -      -        -  samples/pictures/baseline.jpg
 3  PNG        73  31x7            -      -        -  samples/pictures/bilevel.png
 4  PNG       150  20x30           -      -        -  samples/pictures/deep-16bit.png
 5  JPEG      489  50x50           -      -        -  samples/pictures/four-colors.jpg
 6  PNG       190  64x48           -      -        -  samples/pictures/gradient-rgb.png
 7  JPEG      329  90x60           -      -        -  samples/pictures/grey.jpeg
 8  PNG       355  40x40           -      -        -  samples/pictures/interlaced.png
 9  JPEG      820  123x77          -      -        -  samples/pictures/progressive.jpg
10  GIF       235  24x18           -      -        -  samples/pictures/still.gif
11  PNG       696  33x17           -      -        -  samples/pictures/veil-rgba.png
12  GIF        73  300x2           -      -        -  samples/pictures/wide-interlaced.gif
13  MP3     19008  -               2  32000    1.548  samples/sounds/chord-cbr.mp3
14  Ogg     18169  -               1  96000    0.200  samples/sounds/chord-flac.oga
15  FLAC    63805  -               2  44100    1.500  samples/sounds/chord-tagged.flac
16  MP3     10599  -               2  44100    1.541  samples/sounds/chord-vbr-tagged.mp3
17  Ogg      7896  -               2  44100    1.500  samples/sounds/chord-vorbis.ogg
18  FLAC    17923  -               1  96000    0.200  samples/sounds/hires-24bit.flac
19  MP3     10836  -               1  32000    1.548  samples/sounds/mono-no-header.mp3
20  WAV     28880  -               6  48000    0.050  samples/sounds/surround-extensible.wav
21  WAV     44144  -               2  44100    0.250  samples/sounds/tone-16bit.wav
22  WAV     28880  -               2  48000    0.100  samples/sounds/tone-24bit.wav
23  WAV      8044  -               1   8000    1.000  samples/sounds/tone-8bit.wav
24  WAV      4156  -               1  16000    0.500  samples/sounds/tone-adpcm.wav
25  WAV     17698  -               1  22050    0.200  samples/sounds/tone-float.wav
26  WAV      4058  -               1   8000    0.500  samples/sounds/tone-mulaw.wav
27  MP3      4176  -               1  16000    2.088  samples/speech/voice-mpeg2.mp3
28  Ogg      4866  -               1  16000    2.000  samples/speech/voice-vorbis.ogg
29  FLAC    30940  -               1  16000    2.000  samples/speech/voice.flac
30  Ogg      4680  -               1  48000    2.000  samples/speech/voice.opus
"""
STATS = """\
FORMAT  FILES   BYTES  SECONDS
PNG         5    1464        -
JPEG        4    2493        -
GIF         3     569        -
WAV         7  135860    2.600
FLAC        3  112668    3.700
Ogg         4   35611    5.700
MP3         4   44619    6.725
QOI         0       0        -
total      30  333284   18.725
4  directories
0  other files
0  symbolic links, not followed
0  pipes, sockets and devices
0  refused
"""
EMPTY_STATS = """\
FORMAT  FILES  BYTES  SECONDS
PNG         0      0        -
JPEG        0      0        -
GIF         0      0        -
WAV         0      0        -
FLAC        0      0        -
Ogg         0      0        -
MP3         0      0        -
QOI         0      0        -
total       0      0        -
0  directories
0  other files
0  symbolic links, not followed
0  pipes, sockets and devices
0  refused
"""
SHOW = """\
id        17
path      samples/sounds/chord-vorbis.ogg
format    Ogg
bytes     7896
channels  2
rate      44100
seconds   1.500
detail    Vorbis
id      8
path    samples/pictures/interlaced.png
format  PNG
bytes   355
width   40
height  40
detail  8-bit palette, interlaced
"""
USAGE = """\
Usage: vxmedia [-h] [-q] [-c<str>] [-e<str>] [-s<str>] [directory...]
  -h      \tshow this help
  -q      \tquiet: no banner
  -c <str>\tdirectory of the configuration
  -e <str>\texecute these commands, separated by ';', then end
  -s <str>\texecute the lines of this script file, then end
"""
HELP_LIB = """\
    lib find criteria : list media files that match search criteria
    lib first count[1,1000] criteria : list the first ones that match
    lib info id[1,4294967295] : show the media info of a media file
    lib list (limit[1,100000]) : list media files by path
    lib merge into[1,4294967295] from[1,4294967295] : add to a media info what another one knows
    lib profile name : show MIME types and extensions of a DLNA profile
    lib profiles : show all DLNA profiles and how many media files have each
    lib progress : show how far the scan is
    lib scan path : read the media files of a directory and below
    lib set id[1,4294967295] key value : edit a value of a media info; without a value: as the file has it
    lib show id[1,4294967295] : show all about one media file
    lib stats : show numbers of files, bytes and seconds by format
    lib stop : stop the scan, and drop those that wait behind it
"""
HELP_TIMER = """\
    timer after ms[0,86400000] command : execute a command line after a time
    timer cancel id[1,4294967295] : take a timer away
    timer every ms[100,86400000] command : execute a command line again and again
    timer list : list the timers that wait
"""
HELP_SYS = """\
    sys bench name : measure how long a built-in job takes
    sys bits data : show the bits of bytes that are given as base64
    sys idle : show what is active, and for how long nothing was
    sys json path text : fetch a value by its path from a JSON text
    sys threads : show what the worker threads do
    sys version : show the version of the program
    sys watch id[1,4294967295] : log the references to one media file
"""
BROKEN = """\
Scanned .: media 1, others 1, refused 4, directories 1
  refused ./cut.gif: GIF: the file ends inside the header
  refused ./empty.png: the file is empty
  refused ./lie.wav: WAV: the file ends inside the format chunk
  refused ./text.jpg: JPEG: the signature is missing
FORMAT  FILES  BYTES  SECONDS
PNG         0      0        -
JPEG        0      0        -
GIF         1     13        -
WAV         0      0        -
FLAC        0      0        -
Ogg         0      0        -
MP3         0      0        -
QOI         0      0        -
total       1     13        -
1  directories
1  other files
0  symbolic links, not followed
0  pipes, sockets and devices
4  refused
  1  GIF: the file ends inside the header
  1  JPEG: the signature is missing
  1  WAV: the file ends inside the format chunk
  1  the file is empty
"""

if __name__ == '__main__':
    main()
