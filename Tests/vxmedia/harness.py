"""What the tests of the program vxmedia share: how they start it, and a folder for each test.

Every test file is started as: FILE PROGRAM SAMPLES README PLUGINS BAD_PLUGINS [unittest arguments].
PROGRAM may hold a program to run it with, separated by `;`; PLUGINS is the folder of the plug-ins that
were built with it, BAD_PLUGINS that of others, which are built for the tests.
"""
import contextlib
import os
import pty
import select
import shutil
import signal
import subprocess
import sys
import tempfile
import unittest

PROGRAM = []
PATHS = {}  # samples, readme, plugins, bad_plugins

BANNER = "vxmedia 1.0.0, the media library console. Type 'help' for the modules.\n"
DEEP = 1000000  # levels of nesting

HINT = "; 'help MODULE' shows what the commands of a module take"  # behind errors about parameters
GIF = b'GIF89a\x05\x00\x04\x00\x00\x00\x00'  # the smallest picture that is read: 5 by 4


# Starts a program of root without the right to pass over file modes.
HUMBLE = ['setpriv', '--bounding-set=-dac_override,-dac_read_search'] if os.getuid() == 0 else []


def run(arguments=(), stdin=b'', cwd=None, timeout=120, env=None, prefix=(), **options):
    """Returns exit status and output; standard error must stay empty."""
    if isinstance(stdin, str):
        stdin = stdin.encode()
    done = subprocess.run(list(prefix) + PROGRAM + list(arguments), input=stdin, stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE, cwd=cwd, timeout=timeout, env=env, **options)
    assert done.stderr == b'', done.stderr[:2000]
    return done.returncode, done.stdout.decode()


def ask(lines, cwd=None, **options):
    """Returns the answers to lines that come through a pipe."""
    status, output = run(['-q'], lines, cwd, **options)
    assert status == 0, status
    return output


@contextlib.contextmanager
def small_disk(folder, size):
    """A file system of `size` bytes in a folder that it makes; skips the test where none can be had."""
    os.mkdir(folder)
    if shutil.which('mount') is None or subprocess.run(
            ['mount', '-t', 'tmpfs', '-o', 'size=%d' % size, 'tmpfs', folder],
            stderr=subprocess.DEVNULL).returncode != 0:
        raise unittest.SkipTest('file systems cannot be mounted here')
    try:
        yield
    finally:
        subprocess.run(['umount', folder])


class Scratch(unittest.TestCase):
    """A test with a folder of its own."""

    maxDiff = None

    def setUp(self):
        self.folder = os.fsencode(tempfile.mkdtemp(prefix='vxmedia-test-'))

    def tearDown(self):
        subprocess.run(['chmod', '-R', 'u+rwx', self.folder])
        subprocess.run(['rm', '-rf', self.folder])

    def path(self, name):
        return os.path.join(self.folder, name)

    def write(self, name, content=GIF):
        os.makedirs(os.path.dirname(self.path(name)), exist_ok=True)
        with open(self.path(name), 'wb') as file:
            file.write(content)


class OnTerminal(Scratch):
    """A test with a user at a terminal."""

    def start(self, *arguments, prefix=()):
        program = list(prefix) + PROGRAM + list(arguments)
        self.pid, self.terminal = pty.fork()
        if self.pid == 0:
            try:
                os.chdir(self.folder)
                os.execvp(program[0], program)
            finally:
                os._exit(127)

    def tearDown(self):
        os.close(self.terminal)
        try:
            os.kill(self.pid, signal.SIGKILL)
            os.waitpid(self.pid, 0)
        except (ProcessLookupError, ChildProcessError):
            pass
        super().tearDown()

    def read_until(self, end):
        """Returns everything up to `end`, which must come last."""
        output = b''
        while not output.endswith(end):
            self.assertTrue(select.select([self.terminal], [], [], 60)[0], output)
            output += os.read(self.terminal, 4096)
        return output.replace(b'\r\n', b'\n').decode()

    def type(self, text):
        os.write(self.terminal, text.encode())

    def status(self):
        output = b''
        try:
            while True:
                piece = os.read(self.terminal, 4096)
                if not piece:
                    break
                output += piece
        except OSError:
            pass
        status = os.waitpid(self.pid, 0)[1]
        return os.waitstatus_to_exitcode(status), output.replace(b'\r\n', b'\n').decode()


def main():
    """Takes the arguments of the test file and runs its tests."""
    PROGRAM[:] = [word for word in sys.argv[1].split(';') if word]
    PATHS.update(samples=sys.argv[2], readme=sys.argv[3], plugins=sys.argv[4],
                 bad_plugins=sys.argv[5])
    # What the machine's own environment says is none of the tests' business.
    for name in ('VXCONFIGPATH', 'VXBRANDID', 'VXLOG', 'VXLOGFILE', 'VXASSERT'):
        os.environ.pop(name, None)
    os.environ.update(XDG_CONFIG_HOME='/nonexistent', XDG_CONFIG_DIRS='/nonexistent',
                      VXPLUGINPATH=sys.argv[4])
    # Claims of directories leave files behind.
    with tempfile.TemporaryDirectory(prefix='vxmedia-claims-') as claims:
        os.environ['XDG_RUNTIME_DIR'] = claims
        unittest.main('__main__', argv=sys.argv[:1] + sys.argv[6:])
