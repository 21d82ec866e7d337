#!/usr/bin/env python3
"""A user of the program vxmedia who scans, searches and looks at covers at once, while files change.

Meant for the thread sanitizer, too, whose reports come over the terminal and end the program with a
status of its own.
"""
import os
import pty
import random
import re
import signal
import threading
import time
import tty

from harness import PATHS, PROGRAM, Scratch, main, run

GENRES = ['Rock', 'Jazz', 'Folk', 'Opera', 'Blues']
FILES = 320
PATIENCE = 240  # seconds before a program counts as hung


def synchsafe(number):
    return bytes(number >> shift & 0x7F for shift in (21, 14, 7, 0))


class Medium:
    """One generated file: a song with tags and a cover, a picture, or no media at all."""

    def __init__(self, number, sounds):
        self.number = number
        self.sound = sounds[number % len(sounds)]
        self.version = 1
        self.kind = ('text', 'broken', 'gif', 'png')[number % 10] if number % 10 < 4 else 'song'
        self.name = 'media/d%02d/%s-%03d.%s' % (number % 12, self.kind, number,
                                               {'song': 'mp3', 'text': 'txt', 'broken': 'mp3'}.get(
                                                   self.kind, self.kind))
        self.genre = GENRES[number % 5]
        self.artist = 'Artist %d' % (number % 7)
        self.year = 1990 + number % 30
        self.covers = set()

    def is_media(self):
        return self.kind not in ('text', 'broken')

    def is_song(self):
        return self.kind == 'song'

    def title(self):
        return 'Song %d, take %d' % (self.number, self.version)

    def cover(self):
        """Another picture for each file and version, and of another size."""
        return (b'\x89PNG\r\n\x1a\n' + b'%d:%d;' % (self.number, self.version) * 2000
                )[:3000 + self.number + self.version * 1000]

    def content(self):
        if self.kind == 'text':
            return b'nothing to see\n' * self.version
        if self.kind == 'broken':
            return b'no sound at all\n' * self.version
        if self.kind == 'gif':
            return b'GIF89a' + (self.number + 1).to_bytes(2, 'little') + b'\4\0' + bytes(self.version + 2)
        if self.kind == 'png':
            return self.png()
        self.covers.add(self.cover())
        frames = [(b'TIT2', b'\0' + self.title().encode()), (b'TPE1', b'\0' + self.artist.encode()),
                  (b'TCON', b'\0' + self.genre.encode()), (b'TYER', b'\0%d' % self.year),
                  (b'TRCK', b'\0%d' % (self.number % 20 + 1)),
                  (b'APIC', b'\0image/png\0\x03\0' + self.cover())]
        body = b''.join(name + len(data).to_bytes(4, 'big') + b'\0\0' + data for name, data in frames)
        return b'ID3\x03\0\0' + synchsafe(len(body)) + body + self.sound

    def png(self):
        import zlib
        header = b'IHDR' + (100 + self.number).to_bytes(4, 'big') + (50).to_bytes(4, 'big') + b'\x08\2\0\0\0'
        end = b'IEND'
        return b'\x89PNG\r\n\x1a\n' + b''.join(
            (len(chunk) - 4).to_bytes(4, 'big') + chunk + zlib.crc32(chunk).to_bytes(4, 'big')
            for chunk in (header, end)) + bytes(self.version)


# Criteria, and whether a file matches.
SEARCHES = [
    ('*', lambda medium: True),
    ('upnp:genre = "JAZZ"', lambda medium: medium.is_song() and medium.genre == 'Jazz'),
    ('upnp:artist = "artist 3" and dc:date >= "2000"',
     lambda medium: medium.is_song() and medium.number % 7 == 3 and medium.year >= 2000),
    ('dc:date < "1995" or upnp:class derivedfrom "object.item.imageItem"',
     lambda medium: not medium.is_song() or medium.year < 1995),
    ('(upnp:genre = "Rock" or upnp:genre = "Folk") and upnp:originalTrackNumber > "10"',
     lambda medium: medium.is_song() and medium.number % 5 in (0, 2) and medium.number % 20 >= 10),
    ('res@resolution like "*x50"', lambda medium: medium.kind == 'png'),
    ('upnp:albumArtURI exists false', lambda medium: not medium.is_song()),
    ('dc:title contains "song" and res@duration > "0:00:00"', Medium.is_song),
]


class Session(Scratch):
    def setUp(self):
        super().setUp()
        sounds = []
        for name in ('sounds/mono-no-header.mp3', 'speech/voice-mpeg2.mp3'):
            with open(os.path.join(PATHS['samples'], name), 'rb') as file:
                sounds.append(file.read())
        self.chance = random.Random(1810)
        self.media = {medium.name: medium for medium in (Medium(i, sounds) for i in range(FILES))}
        for medium in self.media.values():
            self.put(medium)
        self.everything = dict(self.media)
        self.pid = None

    def tearDown(self):
        if self.pid is not None:
            os.kill(self.pid, signal.SIGKILL)
            os.waitpid(self.pid, 0)
            self.reader.join()
            os.close(self.terminal)
        super().tearDown()

    def put(self, medium):
        """Writes a file beside, and moves it into its place: nobody sees half of it."""
        self.write(b'new', medium.content())
        path = self.path(os.fsencode(medium.name))
        os.makedirs(os.path.dirname(path), exist_ok=True)
        os.replace(self.path(b'new'), path)

    def change_files(self):
        """Some files get other tags, some go away, some come back."""
        for name in self.chance.sample(sorted(self.everything), 12):
            medium = self.everything[name]
            if name in self.media and self.chance.random() < 0.3:
                os.remove(self.path(os.fsencode(name)))
                del self.media[name]
            else:
                medium.version += 1
                self.put(medium)
                self.media[name] = medium

    def start(self):
        """Starts the program on a terminal that shows nothing of what is typed."""
        self.output = b''
        self.marks = 0
        self.came = threading.Condition()
        self.pid, self.terminal = pty.fork()
        if self.pid == 0:
            try:
                tty.setraw(0)
                os.chdir(self.folder)
                os.execvp(PROGRAM[0], PROGRAM + ['-q', '-cconf'])
            finally:
                os._exit(127)
        self.reader = threading.Thread(target=self.read)
        self.reader.start()
        self.wait_for('vxmedia> ')
        self.say('config set prompt ""', 'config set cache-path cache', 'config set threads 4')

    def read(self):
        while True:
            try:
                piece = os.read(self.terminal, 65536)
            except OSError:
                piece = b''
            with self.came:
                self.output += piece
                self.came.notify_all()
            if not piece:
                return

    def say(self, *lines):
        for line in lines:
            data = line.encode() + b'\n'
            while data:
                data = data[os.write(self.terminal, data):]

    def wait_until(self, is_there):
        end = time.monotonic() + PATIENCE
        with self.came:
            while not is_there(self.output):
                self.assertTrue(self.came.wait(end - time.monotonic()), self.output[-2000:])

    def wait_for(self, text):
        self.wait_until(lambda output: text.encode() in output)

    def ask(self, *lines):
        """Returns the answers to lines while nothing else goes on."""
        self.marks += 1
        with self.came:
            start = len(self.output)
        self.say(*lines, 'sys json $ {"mark":%d}' % self.marks)
        end = b'"mark": %d' % self.marks
        self.wait_until(lambda output: end in output[start:])
        with self.came:
            return self.output[start:].decode()

    def finish(self):
        """Ends the program, and returns its status and everything that it has said."""
        self.say('exit')
        end = time.monotonic() + PATIENCE
        while time.monotonic() < end:
            pid, status = os.waitpid(self.pid, os.WNOHANG)
            if pid != 0:
                self.pid = None
                self.reader.join()
                os.close(self.terminal)
                return os.waitstatus_to_exitcode(status), self.output.decode()
            time.sleep(0.01)
        self.fail('the program does not end')

    def wait_for_idle(self):
        end = time.monotonic() + PATIENCE
        while 'no scan is running' not in self.ask('lib progress').lower():
            self.assertLess(time.monotonic(), end)

    def check_rows(self, text):
        """Every row is of a file that there was, and nothing but known lines came."""
        self.assertNotIn('ThreadSanitizer', text)
        for path in re.findall(r'^ *\d+ .*  (media/\S+)$', text, re.M):
            self.assertIn(path, self.everything)
            self.assertTrue(self.everything[path].is_media(), path)

    def check_cover(self, answer):
        """The file has a cover that its song has had."""
        path, size, words = re.fullmatch(r'(cache/covers/\S+): (\d+) bytes, image/png, (.*)', answer).groups()
        self.assertIn(words, ('written', 'from cache'))
        with open(self.path(path.encode()), 'rb') as file:
            cover = file.read()
        self.assertEqual(len(cover), int(size))
        self.assertTrue(any(cover in medium.covers for medium in self.everything.values()), path)

    def check_end(self):
        """What the session knows in the end is what a new program finds out."""
        for criteria, matches in SEARCHES:
            answer = self.ask('lib find ' + criteria)
            paths = re.findall(r'^ *\d+ .*  (media/\S+)$', answer, re.M)
            self.assertEqual(paths, sorted(name for name, medium in self.media.items()
                                           if medium.is_media() and matches(medium)), criteria)
        rows = self.rows(self.ask('lib find *'))
        status, output = run(['-q', '-elib scan media;lib find *'], cwd=self.folder)
        self.assertEqual(status, 0)
        self.assertEqual(rows, self.rows(output))
        self.assertEqual(self.ask('lib stats').split('total')[1].split('"mark"')[0].split('{')[0],
                         run(['-q', '-elib stats', 'media'], cwd=self.folder)[1].split('total')[1])
        return rows

    @staticmethod
    def rows(text):
        """The rows of a list without the numbers of the files."""
        return sorted(re.findall(r'^ *\d+  +(\S.* media/\S+)$', text, re.M))

    def test_scans_searches_and_covers_at_once(self):
        self.start()
        covers = 0
        for step in range(25):
            self.say('lib scan media' if step % 3 else 'lib scan media/d%02d' % (step % 12))
            for _ in range(8):
                self.say('lib find ' + self.chance.choice(SEARCHES)[0])
                number = self.chance.randrange(10, FILES)
                self.say('cache cover %d' % number, 'cache cover %d' % number, 'lib progress')
                covers += 2
                self.say('lib info %d' % self.chance.randrange(1, 10))
            self.say('lib first 3 @id exists true', 'sys threads', 'lib list 4', 'cache status', 'lib stats')
            if step % 5 == 4:
                self.say('lib stop')
            if step % 7 == 3:
                self.say('cache limit %d' % (1 + step))
            if step % 11 == 7:
                self.say('cache empty')
            self.change_files()
        self.wait_for_idle()
        self.ask('lib scan media')
        self.wait_for_idle()
        # Details are asked for by numbers below 10, covers by others.
        late = re.compile(rb'^(?:cache/covers/.*|ERROR: The file .*|ERROR: There is no media file \d\d+)\n',
                          re.M)
        self.wait_until(lambda output: len(late.findall(output)) >= covers)
        self.check_rows(self.output.decode())
        self.assertIn('written\n', self.output.decode())
        self.assertIn('from cache\n', self.output.decode())
        rows = self.check_end()
        for number, name in re.findall(r'^ *(\d+) .*  (media/\S+\.mp3)$', self.ask('lib find *'), re.M)[::12]:
            with self.came:
                start = len(self.output)
            self.say('cache cover ' + number)
            self.wait_until(lambda output: output[start:].endswith(b'\n') and b'image/png' in output[start:])
            answer = self.output[start:].decode().strip()
            self.check_cover(answer)
            with open(self.path(answer.split(': ')[0].encode()), 'rb') as file:
                self.assertEqual(file.read(), self.media[name].cover())
        status, output = self.finish()
        self.assertEqual(status, 0, output[-2000:])
        self.check_rows(output)
        self.assertEqual(self.rows(run(['-q', '-cconf', '-elib find *'], cwd=self.folder)[1]), rows)

    def test_the_program_ends_in_the_middle_of_everything(self):
        for step in range(8):
            self.start()
            self.say('lib scan media')
            if step % 2:
                self.wait_for_idle()
                self.change_files()
                self.say('lib scan media')
            self.say(*['cache cover %d' % i for i in range(1, 30)],
                     *['lib find ' + criteria for criteria, _ in SEARCHES][:step])
            status, output = self.finish()
            self.assertEqual(status, 0, output[-2000:])
            self.check_rows(output)


if __name__ == '__main__':
    main()
