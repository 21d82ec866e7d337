#!/usr/bin/env python3
"""The configuration of the program vxmedia: its commands, its files, and files that nobody should write."""
import os
import random
import resource
import signal
import subprocess
import time

from harness import HINT, HUMBLE, PROGRAM, Scratch, ask, main, run, small_disk

NO_DIRECTORY = "ERROR: There is no configuration directory; '-c' names one at the start\n"


class ConfigScratch(Scratch):
    """A test whose program works with the configuration directory `conf`."""

    def ask(self, *lines, **options):
        """Returns the answers to lines; none of them may fail."""
        status, output = self.run_lines(*lines, **options)
        self.assertEqual(status, 0, output)
        return output

    def run_lines(self, *lines, **options):
        self.write(b'script', '\n'.join(lines).encode())
        return run(['-q', '-cconf', '-sscript'], cwd=self.folder, **options)

    def read(self, name):
        with open(self.path(name), 'rb') as file:
            return file.read()

    def start(self, *arguments):
        process = subprocess.Popen(PROGRAM + ['-q', *arguments], stdin=subprocess.PIPE,
                                   stdout=subprocess.PIPE, cwd=self.folder, bufsize=0)
        self.addCleanup(self.stop, process)
        return process

    @staticmethod
    def stop(process):
        process.kill()
        process.stdin.close()
        process.stdout.close()
        process.wait()


class Config(ConfigScratch):
    """What the module answers, and what the settings do."""

    def test_help(self):
        self.assertEqual(ask('help config'), HELP)

    def test_without_a_configuration_everything_has_its_default(self):
        self.assertEqual(ask('config dump', self.folder), DUMP)
        self.assertEqual(ask('config set owner me\nconfig get owner\nconfig save', self.folder),
                         'me\n' + NO_DIRECTORY)
        self.assertEqual(ask('config paths', self.folder),
                         'FILE       STATE    PATH\nbootstrap  missing  /etc/ConfigPath.ini\n')
        self.assertEqual(os.listdir(self.folder), [])

    def test_a_directory_that_is_named_is_made_with_its_bootstrap_file(self):
        self.assertEqual(run(['-q', '-ca/b'], cwd=self.folder), (0, ''))
        folder = os.path.realpath(self.path(b'a/b'))
        self.assertEqual(self.read(b'a/b/ConfigPath.ini'),
                         b'ReadPath=' + folder + b'\nWritePath=' + folder + b'\n')

    def test_the_bootstrap_file_tells_where_the_files_lie(self):
        self.write(b'conf/ConfigPath.ini', b'ReadPath=read\nWritePath=deep/write\n')
        self.write(b'read/vxmedia.ini', b'[Library]\nListLimit=7\n[Export]\nOwner=firm\n')
        self.assertEqual(self.ask('config get list-limit', 'config set owner me', 'config save',
                                  'config paths'), '7\nSaved\n' + PATHS_TABLE % (
                                      os.path.realpath(self.path(b'conf')).decode()))
        self.assertEqual(self.read(b'deep/write/_vxmedia.ini'), b'[Export]\nOwner=me\n')
        self.assertEqual(self.read(b'read/vxmedia.ini'),
                         b'[Library]\nListLimit=7\n[Export]\nOwner=firm\n')

    def test_the_environment_may_name_the_directory(self):
        self.write(b'conf/ConfigPath.ini', b'ReadPath=conf\nWritePath=conf\n')
        self.write(b'conf/vxmedia.ini', b'[Library]\nListLimit=7\n')
        self.assertEqual(ask('config get list-limit', self.folder,
                             env={**os.environ, 'VXCONFIGPATH': 'conf'}), '7\n')

    def test_set_and_get(self):
        self.assertEqual(
            self.ask('config set banner OFF', 'config get banner', 'config set prompt "a b> "',
                     'config get prompt', 'config set prompt ""', 'config get prompt',
                     'config set skip a,b\\,c', 'config get skip', 'config set plugin-path dir',
                     'config get plugin-path', 'config set refusals 1000', 'config get refusals',
                     'config set owner two words', 'config get owner', 'config set owner',
                     'config get owner'),
            'false\na b> \n\na,b\\,c\ndir/\n1000\ntwo words\n\n')

    def test_mistakes_are_explained(self):
        for line, answer in (
                ('config get none', "ERROR: There is no option 'none'"),
                ('config set none 1', "ERROR: There is no option 'none'"),
                ('config set none', "ERROR: There is no option 'none'"),
                ('config secret none 1', "ERROR: There is no option 'none'"),
                ('config secret banner 1', "ERROR: 'banner' is no text that can be hidden"),
                ('config secret skip 1', "ERROR: 'skip' is no text that can be hidden"),
                ('config set banner maybe', "ERROR: 'banner' is true or false"),
                ('config set banner ""', "ERROR: 'banner' is true or false"),
                ('config set list-limit 0', "ERROR: 'list-limit' is a number from 1 to 100000"),
                ('config set list-limit 100001', "ERROR: 'list-limit' is a number from 1 to 100000"),
                ('config set list-limit 1x', "ERROR: 'list-limit' is a number from 1 to 100000"),
                ('config set refusals 1001', "ERROR: 'refusals' is a number from 1 to 1000"),
                ('config set owner ' + 'x' * 4097, 'ERROR: A value has at most 4096 bytes'),
                ('config brand none', "ERROR: There is no brand key 'none'; there are MBus, SBus, "
                                      'X_RPC, AppSet'),
                ('config get', 'ERROR: Missing parameter 1' + HINT)):
            with self.subTest(line[:40]):
                self.assertEqual(self.run_lines(line), (1, answer + '\n'))

    def test_changes_are_kept_when_they_are_saved(self):
        self.ask('config set owner me', 'config set list-limit 3')
        self.assertEqual(self.ask('config get owner'), '\n')
        self.ask('config set owner me', 'config set list-limit 3', 'config save')
        self.assertEqual(self.ask('config get owner', 'config get list-limit'), 'me\n3\n')
        self.assertEqual(self.read(b'conf/_vxmedia.ini'), b'[Export]\nOwner=me\n[Library]\nListLimit=3\n')

    def test_a_default_hides_what_the_read_only_file_says(self):
        self.write(b'conf/vxmedia.ini', b'[Export]\nOwner=firm\n')
        self.assertEqual(self.ask('config get owner', 'config set owner', 'config get owner',
                                  'config save'), 'firm\n\nSaved\n')
        self.assertEqual(self.ask('config get owner'), '\n')

    def test_a_secret_is_not_seen_in_the_file_and_in_the_dump(self):
        output = self.ask('config secret owner "Jane Doe"', 'config get owner', 'config save',
                          'config dump')
        self.assertEqual(output, 'Jane Doe\nSaved\n' +
                         DUMP.replace("owner         text       ''", "owner         text       '********'"))
        saved = self.read(b'conf/_vxmedia.ini')
        self.assertNotIn(b'Jane', saved)
        self.assertRegex(saved, rb'^\[Export\]\nOwner=secret:\d+:[A-Za-z0-9+/=]+\n$')
        self.assertEqual(self.ask('config get owner'), 'Jane Doe\n')

    def test_every_secret_comes_back(self):
        chance = random.Random(815)
        for length in (1, 2, 16, 255, 1000):
            text = ''.join(chance.choice('abc %\\;:=[]#\u00e9\u4e2d') for _ in range(length)).strip() + '.'
            with self.subTest(length):
                self.assertEqual(self.ask("config secret owner '%s'" % text, 'config get owner',
                                          'config save'), text + '\nSaved\n')
                self.assertEqual(self.ask('config get owner'), text + '\n')

    def test_a_text_that_looks_like_a_secret_comes_back(self):
        for text in ('secret:', 'secret:0:', 'secret:0:AAAA', 'secret:x:!'):
            self.assertEqual(self.ask('config set owner ' + text, 'config get owner'), text + '\n')

    def test_brands(self):
        self.assertEqual(self.ask('config brand MBus', 'config brand SBus', 'config brand X_RPC',
                                  'config brand AppSet'), 'tesk\n\n\ncom.tesk.\n')
        self.assertEqual(self.ask('config brand MBus', 'config brand SBus', 'config brand AppSet',
                                  env={**os.environ, 'VXBRANDID': 'acme'}), 'acme\n\nacme.\n')
        self.write(b'conf/ConfigPath.ini', b'ReadPath=conf\nWritePath=conf\n[Brand]\nSBus=s-%USERID%\n')
        self.assertEqual(self.ask('config brand SBus'), 's-%d\n' % os.getuid())

    def test_the_banner_and_the_prompt_are_settings(self):
        self.write(b'conf/vxmedia.ini', b'[Console]\nBanner=no\n')
        self.assertEqual(run(['-cconf'], cwd=self.folder), (0, ''))

    def test_the_list_has_the_length_of_the_setting(self):
        for i in range(5):
            self.write(b'pictures/%d.gif' % i)
        output = self.ask('lib scan pictures', 'lib list', 'config set list-limit 2', 'lib list',
                          'lib list 3').splitlines()
        self.assertEqual([line for line in output if line.endswith('media files')],
                         ['5 of 5 media files', '2 of 5 media files', '3 of 5 media files'])

    def test_scans_obey_their_settings(self):
        self.write(b'x/a.gif')
        self.write(b'x/.b.gif')
        self.write(b'x/.c/d.gif')
        self.write(b'x/e.part.gif')
        self.write(b'x/f.TIF', b'II*\0')
        self.assertEqual(
            self.ask('lib scan x', 'config set hidden no', 'config set skip part.gif, bak',
                     'config set expect tif', 'lib scan x'),
            'Scanned x: media 4, others 1, refused 0, directories 2\n'
            'Scanned x: media 1, others 1, refused 1, directories 1\n'
            '  refused x/f.TIF: the content is of no known format\n')
        for i in range(3):
            self.write(b'y/%d.png' % i, b'')
        self.assertEqual(self.ask('config set refusals 1', 'lib scan y').splitlines()[1:],
                         ['  refused y/0.png: the file is empty',
                          "  and 2 more; 'lib stats' counts the reasons"])

    def test_a_second_start_on_the_same_directory_is_refused(self):
        process = self.start('-cconf')
        process.stdin.write(b'sys version\n')
        self.assertEqual(process.stdout.readline(), b'vxmedia 1.0.0\n')
        os.symlink('conf', self.path(b'link'))
        for name in ('conf', './conf/', 'link'):
            status, output = run(['-q', '-c' + name], cwd=self.folder)
            self.assertEqual((status, output), (2, 'ERROR: Another vxmedia works with the configuration '
                                                   "directory '%s'\n" % os.path.realpath(
                                                       self.path(b'conf')).decode()))
        self.assertEqual(run(['-q', '-cother'], cwd=self.folder), (0, ''))
        self.assertEqual(run(['-q'], cwd=self.folder), (0, ''))
        process.send_signal(signal.SIGKILL)
        process.wait()
        self.assertEqual(run(['-q', '-cconf'], cwd=self.folder), (0, ''))

    def test_a_start_that_cannot_be_checked_is_refused(self):
        environment = {**os.environ, 'XDG_RUNTIME_DIR': '/nonexistent'}
        status, output = run(['-q', '-cconf'], cwd=self.folder, env=environment)
        self.assertEqual((status, output), (2, 'ERROR: Unable to find out whether another vxmedia works '
                                               "with the configuration directory '%s'\n" %
                                            os.path.realpath(self.path(b'conf')).decode()))
        self.assertEqual(run(['-q'], cwd=self.folder, env=environment), (0, ''))


class BadConfig(ConfigScratch):
    """Configuration files that are broken, and saves that cannot be done."""

    def test_a_directory_that_cannot_be_used_is_told(self):
        error = "ERROR: Unable to use the configuration directory '%s'\n"
        self.write(b'file', b'')
        for name in ('/dev/null', 'file', 'file/conf', ''):
            self.assertEqual(run(['-q', '-c' + name, '-econfig get list-limit']
                                 if name else ['-q', '-c', '', '-econfig get list-limit'],
                                 cwd=self.folder), (1, error % name + '20\n'))
        self.assertEqual(run(['-q', '-cfile'], 'config save', cwd=self.folder),
                         (0, error % 'file' + NO_DIRECTORY))

    def test_binary_files_are_survived(self):
        chance = random.Random(2718)
        for _ in range(30):
            for name in (b'conf/vxmedia.ini', b'conf/_vxmedia.ini'):
                self.write(name, bytes(chance.randrange(256) for _ in range(2000)))
            self.assertEqual(self.ask('config get list-limit', 'config set list-limit 9', 'config save'),
                             '20\nSaved\n')
            self.assertEqual(self.ask('config get list-limit'), '9\n')

    def test_a_binary_bootstrap_file_leaves_the_current_folder(self):
        self.write(b'conf/ConfigPath.ini', bytes(range(256)))
        self.assertEqual(self.ask('config set owner me', 'config save'), 'Saved\n')
        self.assertEqual(self.read(b'_vxmedia.ini'), b'[Export]\nOwner=me\n')

    def test_values_that_do_not_fit_count_as_defaults(self):
        self.write(b'conf/vxmedia.ini',
                   b'[Library]\nListLimit=-5\n[Scan]\nRefusals=99999\nHidden=perhaps\n'
                   b'[Export]\nOwner=secret:0:!!!\n[Console]\nPrompt=\x1b[2J\xff\n')
        self.assertEqual(self.ask('config get list-limit', 'config get refusals', 'config get hidden',
                                  'config get prompt'), '20\n10\ntrue\n\\x1B[2J\\xFF\n')
        self.ask('config get owner')
        self.write(b'conf/vxmedia.ini', b'[Library]\nListLimit=4000000000\n')
        self.assertEqual(self.ask('config get list-limit'), '100000\n')

    def test_a_huge_file_is_not_read_and_not_overwritten(self):
        self.write(b'conf/_vxmedia.ini', b'[Library]\nListLimit=5\n' + b';' * (17 << 20))
        status, output = self.run_lines('config get list-limit', 'config set list-limit 6', 'config save')
        folder = os.path.realpath(self.path(b'conf')).decode()
        self.assertEqual((status, output), (1, (
            "ERROR: Configuration 'vxmedia.ini': cannot read '%s/_vxmedia.ini'\n20\n"
            "ERROR: Configuration 'vxmedia.ini': cannot save '%s/_vxmedia.ini': the file exists but "
            "cannot be read\n" % (folder, folder))))
        self.assertEqual(len(self.read(b'conf/_vxmedia.ini')), 22 + (17 << 20))

    def test_a_large_file_is_read_in_time(self):
        lines = b''.join(b'[s%d]\nkey=value\n' % i for i in range(200000))
        self.write(b'conf/vxmedia.ini', lines + b'[Library]\nListLimit=5\n')
        self.assertEqual(self.ask('config get list-limit', timeout=60), '5\n')

    def test_a_half_written_file_counts_as_far_as_it_goes(self):
        whole = b'[Library]\nListLimit=5\n[Export]\nOwner=somebody\n'
        for end in range(len(whole)):
            self.write(b'conf/_vxmedia.ini', whole[:end])
            limit, owner = self.ask('config get list-limit', 'config get owner').splitlines()
            self.assertEqual(limit, '5' if end > 20 else '20')
            self.assertEqual(owner, 'somebody'[:max(0, end - 37)])

    def test_files_that_must_not_be_read_are_told(self):
        self.ask('')  # makes the bootstrap file
        folder = os.path.realpath(self.path(b'conf')).decode()
        self.write(b'conf/vxmedia.ini', b'[Library]\nListLimit=5\n')
        os.chmod(self.path(b'conf/vxmedia.ini'), 0)
        self.assertEqual(self.run_lines('config get list-limit', 'config paths', prefix=HUMBLE),
                         (1, "ERROR: Configuration 'vxmedia.ini': cannot read '%s/vxmedia.ini'\n20\n"
                             'FILE       STATE       PATH\n'
                             'bootstrap  found       %s/ConfigPath.ini\n'
                             'read       unreadable  %s/vxmedia.ini\n'
                             'write      missing     %s/_vxmedia.ini\n' % ((folder,) * 4)))
        os.chmod(self.path(b'conf/ConfigPath.ini'), 0)
        status, output = self.run_lines('config set owner me', 'config save', prefix=HUMBLE)
        self.assertEqual((status, output.splitlines()[-1] + '\n'), (1, NO_DIRECTORY))
        self.assertEqual(sorted(os.listdir(self.folder)), [b'conf', b'script'])

    def test_files_that_must_not_be_written_stay(self):
        self.ask('config set owner me', 'config save')
        os.chmod(self.path(b'conf/_vxmedia.ini'), 0o444)
        os.chmod(self.path(b'conf'), 0o555)
        status, output = self.run_lines('config set owner you', 'config save', 'config get owner',
                                        prefix=HUMBLE)
        self.assertEqual((status, output.splitlines()[1]), (1, 'you'))
        self.assertRegex(output, r"^ERROR: Configuration 'vxmedia.ini': cannot save '.*_vxmedia.ini': ")
        self.assertEqual(self.read(b'conf/_vxmedia.ini'), b'[Export]\nOwner=me\n')

    def test_what_others_change_meanwhile_is_kept(self):
        process = self.start('-cconf')
        process.stdin.write(b'config set owner me\nconfig get owner\n')
        self.assertEqual(process.stdout.readline(), b'me\n')
        self.write(b'conf/_vxmedia.ini', b'; mine\n[Library]\nListLimit=5\n[Export]\nOwner=other\n')
        process.stdin.write(b'config save\nconfig get list-limit\nconfig get owner\n')
        self.assertEqual([process.stdout.readline() for _ in range(3)], [b'Saved\n', b'5\n', b'me\n'])
        self.assertEqual(self.read(b'conf/_vxmedia.ini'),
                         b'; mine\n[Library]\nListLimit=5\n[Export]\nOwner=me\n')

    def test_a_directory_that_goes_meanwhile_is_told(self):
        process = self.start('-cconf')
        process.stdin.write(b'config set owner me\nconfig get owner\n')
        self.assertEqual(process.stdout.readline(), b'me\n')
        os.rename(self.path(b'conf'), self.path(b'gone'))
        process.stdin.write(b'config save\nconfig get owner\nconfig paths\n')
        self.assertRegex(process.stdout.readline(), rb"^ERROR: Configuration 'vxmedia.ini': cannot save ")
        self.assertEqual(process.stdout.readline(), b'me\n')

    def test_a_full_disk_leaves_the_old_file(self):
        self.ask('config set owner me', 'config save')
        old = self.read(b'conf/_vxmedia.ini')
        status, output = self.run_lines(
            'config set owner ' + 'x' * 4000, 'config save',
            preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (2000, 2000)))
        self.assertRegex(output, r"^ERROR: Configuration 'vxmedia.ini': cannot save '.*': File too large")
        self.assertEqual(status, 1)
        self.assertEqual(self.read(b'conf/_vxmedia.ini'), old)
        self.assertEqual(sorted(os.listdir(self.path(b'conf'))), [b'ConfigPath.ini', b'_vxmedia.ini'])

    def test_a_small_medium_that_is_full_leaves_the_old_file(self):
        with small_disk(self.path(b'conf'), 16384):
            self.ask('config set owner me', 'config save')
            self.write(b'conf/rest', b'')
            with open(self.path(b'conf/rest'), 'wb', buffering=0) as file:
                while True:
                    try:
                        file.write(b'x' * 512)
                    except OSError:
                        break
            status, output = self.run_lines('config set owner you', 'config save')
            self.assertRegex(output, r"^ERROR: Configuration 'vxmedia.ini': cannot save '.*': No space left")
            self.assertEqual(status, 1)
            self.assertEqual(self.read(b'conf/_vxmedia.ini'), b'[Export]\nOwner=me\n')

    def test_a_kill_while_saving_leaves_a_whole_file(self):
        chance = random.Random(99)
        lines = ''.join('config set owner %s\nconfig save\n' % ('%04d' % i * 500) for i in range(400))
        self.ask('config set owner ' + '0000' * 500, 'config save')
        for _ in range(12):
            process = self.start('-cconf')
            process.stdin.write(lines[:60000].encode())
            process.stdout.readline()
            time.sleep(chance.random() * 0.02)
            process.send_signal(signal.SIGKILL)
            process.wait()
            self.assertRegex(self.read(b'conf/_vxmedia.ini'), rb'^\[Export\]\nOwner=(\d{4})\1{499}\n$')


HELP = """\
    config brand key : show a name that depends on the product
    config dump : show all options
    config get option : show the value of an option
    config paths : show the files of the configuration
    config save : write the changes
    config secret option value : change a text that the file keeps hidden
    config set option value : change an option; without a value: to its default
"""
DUMP = """\
OPTION        TYPE       VALUE
banner        switch     true
prompt        text       'vxmedia> '
list-limit    number     20
library-file  text       'library.json'
save-after    number     10
hidden        switch     true
skip          list       ''
expect        list       ''
refusals      number     10
threads       number     0
cache-path    directory  ''
cache-limit   number     64
info-files    number     1000
info-kbytes   number     512
plugins       text       ''
plugin-path   directory  ''
owner         text       ''
"""
PATHS_TABLE = """\
FILE       STATE  PATH
bootstrap  found  %s/ConfigPath.ini
read       found  read/vxmedia.ini
write      found  deep/write/_vxmedia.ini
"""

if __name__ == '__main__':
    main()
