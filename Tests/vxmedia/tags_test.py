"""What the tag readers of vxmedia find, held against what ffprobe and exiftool find.

usage: tags_test.py FILTER

FILTER prints the tags of one file and writes its picture; a ';' separates its words. The files are
made by the common tools, and those that no tool makes byte by byte.
"""
import base64
import json
import os
import shutil
import subprocess
import sys
import tempfile
import unittest

FILTER = sys.argv.pop(1).split(';')
FILTER = [word for word in FILTER if word]
os.environ['LC_ALL'] = 'C.UTF-8'  # what the tools take their arguments for
NAMES = ['title', 'artist', 'album', 'genre', 'date', 'track', 'disc']
WORDS = {'title': 'Für Elise — 月光', 'artist': 'Björk; Sigur Rós', 'album': 'Ágætis byrjun',
         'genre': 'Jazz', 'date': '2015', 'track': '3/12', 'disc': '2/2'}
PLAIN = {'title': 'Long chord', 'artist': 'vxmedia', 'album': 'Tests', 'genre': 'Rock',
         'date': '1999', 'track': '7'}


def run(*command):
    done = subprocess.run([str(word) for word in command], stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE, check=False)
    if done.returncode != 0:
        raise AssertionError(f'{command}: {done.stderr.decode(errors="replace")}')
    return done.stdout


def synchsafe(number):
    return bytes(number >> shift & 0x7F for shift in (21, 14, 7, 0))


def unsynchronised(data):
    out = bytearray()
    for i, byte in enumerate(data):
        out.append(byte)
        if byte == 0xFF and (i + 1 == len(data) or data[i + 1] == 0 or data[i + 1] >= 0xE0):
            out.append(0)
    return bytes(out)


class TagsTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.dir = tempfile.mkdtemp()
        run('sox', '-R', '-n', '-r', '44100', '-c', '2', '-b', '16', cls.path('tone.wav'), 'synth', '0.3',
            'sine', '440', 'gain', '-6')
        run('convert', '-size', '64x48', 'gradient:navy-gold', '-strip', cls.path('cover.jpg'))
        run('convert', '-size', '300x300', 'plasma:red-blue', '-strip', cls.path('cover.png'))
        run('lame', '--quiet', '-t', cls.path('tone.wav'), cls.path('bare.mp3'))

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.dir)

    @classmethod
    def path(cls, name):
        return os.path.join(cls.dir, name)

    def write(self, name, data):
        with open(self.path(name), 'wb') as file:
            file.write(data)
        return name

    def read(self, name):
        with open(self.path(name), 'rb') as file:
            return file.read()

    def ours(self, name):
        """The tags, and the bytes of the picture or None."""
        picture = self.path('picture.out')
        if os.path.exists(picture):
            os.remove(picture)
        lines = run(*FILTER, self.path(name), picture).decode('utf-8').splitlines()
        tags = dict(line.split('=', 1) for line in lines)
        return tags, self.read('picture.out') if os.path.exists(picture) else None

    def ffprobe(self, name):
        """The same as ffprobe has it."""
        report = json.loads(run('ffprobe', '-v', 'error', '-show_format', '-show_streams', '-of',
                                'json', self.path(name)))
        tags = dict(report['format'].get('tags', {}))
        for stream in report['streams']:
            if stream['codec_type'] == 'audio':
                tags.update(stream.get('tags', {}))
        tags = {key.lower(): value for key, value in tags.items()}
        tags = {key: tags[key] for key in NAMES if tags.get(key)}
        for key in ('track', 'disc'):
            if key in tags:
                tags[key] = tags[key].split('/')[0].lstrip('0')
        return tags

    def same_as_ffprobe(self, name, expected=None):
        tags, picture = self.ours(name)
        mime = tags.pop('picture', None)
        self.assertEqual(tags, self.ffprobe(name), name)
        if expected is not None:
            wanted = {key: value.split('/')[0] if key in ('track', 'disc') else value
                      for key, value in expected.items()}
            self.assertEqual(tags, wanted, name)
        return mime, picture

    def ffmpeg(self, name, tags, *options, cover=None):
        words = [word for key, value in tags.items() for word in ('-metadata', f'{key}={value}')]
        picture = []
        if cover is not None:
            picture = ['-i', self.path(cover), '-map', '0:a', '-map', '1:v', '-c:v', 'copy']
        run('ffmpeg', '-v', 'error', '-y', '-i', self.path('tone.wav'), *picture, *words, *options,
            self.path(name))
        return name

    # MP3

    def test_mp3_of_ffmpeg(self):
        for version in (3, 4):
            for v1 in (0, 1):
                for words in (WORDS, PLAIN):
                    name = self.ffmpeg('f.mp3', words, '-id3v2_version', version, '-write_id3v1', v1)
                    self.assertEqual(self.same_as_ffprobe(name, words), (None, None))

    def test_mp3_of_lame(self):
        options = ['--tt', 'Long chord', '--ta', 'vxmedia', '--tl', 'Tests', '--ty', '1999', '--tn',
                   '7/9', '--tg', 'Rock']
        for more in ([], ['--id3v1-only'], ['--id3v2-only'], ['--add-id3v2', '--pad-id3v2'],
                     ['--id3v2-latin1'], ['--id3v2-utf16'], ['--pad-id3v2-size', '2000']):
            run('lame', '--quiet', *options, *more, self.path('tone.wav'), self.path('l.mp3'))
            self.assertEqual(self.same_as_ffprobe('l.mp3'), (None, None))
            tags, _ = self.ours('l.mp3')
            self.assertEqual(tags['title'], 'Long chord')
            self.assertEqual(tags['genre'], 'Rock')
            self.assertEqual(tags['track'], '7')

    def test_mp3_pictures(self):
        for cover, mime in (('cover.jpg', 'image/jpeg'), ('cover.png', 'image/png')):
            for version in (3, 4):
                self.ffmpeg('p.mp3', WORDS, '-id3v2_version', version, cover=cover)
                self.assertEqual(self.same_as_ffprobe('p.mp3', WORDS), (mime, self.read(cover)))
        run('lame', '--quiet', '--tt', 'x', '--ti', self.path('cover.jpg'), self.path('tone.wav'),
            self.path('l.mp3'))
        self.assertEqual(self.ours('l.mp3'),
                         ({'title': 'x', 'picture': 'image/jpeg'}, self.read('cover.jpg')))

    def id3v2(self, version, frames, flags=0, frame_flags=b'\0\0', extended=b'', size=None,
              padding=0, plain_sizes=False):
        """A tag of frames (id, content) in front of sound without tags."""
        body = extended
        for identifier, content in frames:
            if version == 2:
                body += identifier + len(content).to_bytes(3, 'big') + content
            else:
                length = len(content).to_bytes(4, 'big')
                if version == 4 and not plain_sizes:
                    length = synchsafe(len(content))
                body += identifier + length + frame_flags + content
        if flags & 0x80 and version < 4:
            body = unsynchronised(body)
        body += bytes(padding)
        head = b'ID3' + bytes([version, 0, flags]) + synchsafe(size or len(body))
        return self.write('v2.mp3', head + body + self.read('bare.mp3'))

    TEXTS = [(b'\0', 'latin-1', b'\0'), (b'\1\xff\xfe', 'utf-16-le', b'\0\0'),
             (b'\1\xfe\xff', 'utf-16-be', b'\0\0'), (b'\2', 'utf-16-be', b'\0\0'),
             (b'\3', 'utf-8', b'\0')]

    def test_id3v2_text_encodings(self):
        frames = {2: (b'TT2', b'TP1', b'TAL'), 3: (b'TIT2', b'TPE1', b'TALB'),
                  4: (b'TIT2', b'TPE1', b'TALB')}
        for version, names in frames.items():
            for mark, encoding, end in self.TEXTS:
                for ending in (b'', end):
                    texts = ['Ágætis', 'Björk', 'ÿþ']
                    if encoding != 'latin-1':
                        texts = ['月光 𝄞', 'Björk', 'ÿ']
                    tag = [(name, mark + text.encode(encoding) + ending)
                           for name, text in zip(names, texts)]
                    for padding in (0, 1, 9, 10, 500):
                        self.id3v2(version, tag, padding=padding)
                        tags, _ = self.ours('v2.mp3')
                        self.assertEqual(tags, dict(zip(('title', 'artist', 'album'), texts)))
                    self.assertEqual(tags, self.ffprobe('v2.mp3'))

    def test_id3v2_genres(self):
        for text, genre in (('(17)', 'Rock'), ('17', 'Rock'), ('(4)Eurodisco', 'Disco'),
                            ('(0)', 'Blues'), ('(191)', 'Psybient'), ('(192)', '(192)'),
                            ('Nordic', 'Nordic'), ('(RX)', '(RX)'), ('9999', '9999')):
            self.id3v2(3, [(b'TCON', b'\0' + text.encode())])
            self.assertEqual(self.ours('v2.mp3')[0], {'genre': genre})
            self.same_as_ffprobe('v2.mp3')

    def test_id3v2_dates(self):
        for frames, date in (
                ([(b'TYER', b'\x002015')], '2015'),
                ([(b'TYER', b'\x002015'), (b'TDAT', b'\x003006')], '2015-06-30'),
                ([(b'TYER', b'\x002015'), (b'TDAT', b'\x003006'), (b'TIME', b'\x001800')],
                 '2015-06-30 18:00'),
                ([(b'TDRC', b'\x002015-06-30T18:00:00')], '2015-06-30T18:00:00'),
                ([(b'TDRL', b'\x002014')], '2014')):
            self.id3v2(4 if frames[0][0].startswith(b'TDR') else 3, frames)
            self.assertEqual(self.ours('v2.mp3')[0], {'date': date})
            self.same_as_ffprobe('v2.mp3')

    def test_id3v2_extended_header(self):
        frames = [(b'TIT2', b'\0Title')]
        for version, extended in ((3, b'\0\0\0\x06\0\0\0\0\0\0'),
                                  (3, b'\0\0\0\x0a\x80\0\0\0\0\0\1\2\3\4'),
                                  (4, b'\0\0\0\x06\x01\0'), (4, b'\0\0\0\x0c\1\x20\5\1\2\3\4\5')):
            self.id3v2(version, frames, flags=0x40, extended=extended)
            self.same_as_ffprobe('v2.mp3', {'title': 'Title'})

    def test_id3v2_unsynchronisation(self):
        picture = b'\xff\xd8\xff\0\xff\xe0\0\0' + bytes(range(256)) * 40 + b'\xff\0\xff'
        title = b'\1\xff\xfe' + 'Ägir ÿ'.encode('utf-16-le')
        art = b'\0image/jpeg\0\x03\0' + picture
        short = b'\0JPG\x03\0' + picture
        for version, frames in ((2, [(b'PIC', short), (b'TT2', title)]),
                                (3, [(b'APIC', art), (b'TIT2', title)])):
            for flags in (0, 0x80):
                self.id3v2(version, frames, flags=flags, padding=300)
                tags, found = self.ours('v2.mp3')
                self.assertEqual(tags, {'title': 'Ägir ÿ', 'picture': 'image/jpeg'})
                self.assertEqual(found, picture)
                # ffprobe loses its way in frames that have grown.
                self.assertEqual(run('exiftool', '-s3', '-Title', self.path('v2.mp3')).decode(),
                                 'Ägir ÿ\n')
                self.assertEqual(run('exiftool', '-b', '-Picture', self.path('v2.mp3')), picture)
        # Every frame for itself, by the flag of the frame or of the tag, with or without a length.
        for flags, frame_flags, front in ((0x80, b'\0\x02', b''), (0x80, b'\0\x03', None),
                                          (0, b'\0\x02', b''), (0, b'\0\x43', None),
                                          (0x80, b'\0\0', b'')):
            frames = []
            for identifier, content in ((b'APIC', art), (b'TIT2', title)):
                before = front
                if before is None:
                    before = (b'G' if frame_flags[1] & 0x40 else b'') + synchsafe(len(content))
                frames.append((identifier, before + unsynchronised(content)))
            self.id3v2(4, frames, flags=flags, frame_flags=frame_flags)
            tags, found = self.ours('v2.mp3')
            self.assertEqual(tags, {'title': 'Ägir ÿ', 'picture': 'image/jpeg'})
            self.assertEqual(found, picture)

    def test_id3v2_sizes_that_lie(self):
        title = (b'TIT2', b'\0Title')
        # The tag says that it is longer or shorter than it is; frames behind its end do not count.
        self.id3v2(3, [title, (b'TPE1', b'\0Artist')], size=16)
        self.assertEqual(self.ours('v2.mp3')[0], {'title': 'Title'})
        self.id3v2(3, [title, (b'TPE1', b'\0Artist')], size=20)
        self.assertEqual(self.ours('v2.mp3')[0], {'title': 'Title'})
        # A frame says that it goes on behind the tag.
        name = self.id3v2(3, [title, (b'TPE1', b'\0Artist')])
        data = self.read(name)
        self.write(name, data.replace(b'TPE1\0\0\0\x07', b'TPE1\0\0\xff\xff'))
        self.assertEqual(self.ours(name)[0], {'title': 'Title'})
        # Sizes of eight bits a byte where seven are due.
        for length in (127, 128, 200, 300, 255 * 128):
            text = 'x' * min(length - 1, 4095)
            frames = [(b'TIT2', b'\0' + b'x' * (length - 1)), (b'TPE1', b'\0Artist')]
            for plain in (False, True):
                self.id3v2(4, frames, plain_sizes=plain, padding=20)
                self.assertEqual(self.ours('v2.mp3')[0], {'title': text, 'artist': 'Artist'})

    def test_id3v2_frames_that_cannot_be_read(self):
        for version, flags in ((3, b'\0\x80'), (3, b'\0\x40'), (4, b'\0\x08'), (4, b'\0\x04')):
            self.id3v2(version, [(b'TIT2', b'\0\0\0\x05Title')], frame_flags=flags)
            self.assertEqual(self.ours('v2.mp3')[0], {})
        self.id3v2(2, [(b'TT2', b'\0Title')], flags=0x40)
        self.assertEqual(self.ours('v2.mp3')[0], {})
        self.id3v2(5, [(b'TIT2', b'\0Title')])
        self.assertEqual(self.ours('v2.mp3')[0], {})
        for content in (b'', b'\0', b'\4Title', b'\1', b'\1\xff'):
            self.id3v2(3, [(b'TIT2', content), (b'TPE1', b'\0Artist')])
            self.assertEqual(self.ours('v2.mp3')[0], {'artist': 'Artist'})

    def test_id3v2_the_front_cover_is_taken(self):
        frames = [(b'APIC', b'\0image/png\0\x04back\0BACK'), (b'APIC', b'\0-->\0\x03\0http://x'),
                  (b'APIC', b'\1image/jpeg\0\x03\xff\xfef\0\0\0FRONT'),
                  (b'APIC', b'\0image/jpeg\0\x03\0SECOND')]
        self.id3v2(3, frames)
        self.assertEqual(self.ours('v2.mp3'), ({'picture': 'image/jpeg'}, b'FRONT'))
        self.id3v2(3, frames[:2])
        self.assertEqual(self.ours('v2.mp3'), ({'picture': 'image/png'}, b'BACK'))
        self.id3v2(3, [(b'APIC', b'\0image/png\0\x03\0')])
        self.assertEqual(self.ours('v2.mp3'), ({}, None))

    def test_id3v1(self):
        def tag(title, artist, album, year, comment, genre):
            return (b'TAG' + title.ljust(30, b'\0') + artist.ljust(30) + album.ljust(30, b'\0') +
                    year + comment + bytes([genre]))
        self.write('v1.mp3', self.read('bare.mp3') +
                   tag(b'Title', b'Artist', b'A' * 30, b'1999', b'c' * 28 + b'\0\x09', 17))
        self.same_as_ffprobe('v1.mp3', {'title': 'Title', 'artist': 'Artist', 'album': 'A' * 30,
                                        'date': '1999', 'genre': 'Rock', 'track': '9'})
        self.write('v1.mp3', self.read('bare.mp3') +
                   tag(b'\xc9t\xe9', b'', b'', b'\0\0\0\0', b'c' * 30, 255))
        self.assertEqual(self.ours('v1.mp3')[0], {'title': 'Été'})

    # FLAC and Ogg

    def test_flac(self):
        run('flac', '-s', '-f', '-T', 'TITLE=' + WORDS['title'], '-T', 'artist=Björk', '-T',
            'ARTIST=Sigur Rós', '-T', 'Album=x=y', '-T', 'GENRE=Jazz', '-T', 'DATE=2015-06-30', '-T',
            'TRACKNUMBER=3/12', '-T', 'DISCNUMBER=2', '-T', 'COMMENT=no', '-o', self.path('f.flac'),
            self.path('tone.wav'))
        expected = {'title': WORDS['title'], 'artist': 'Björk;Sigur Rós', 'album': 'x=y',
                    'genre': 'Jazz', 'date': '2015-06-30', 'track': '3', 'disc': '2'}
        self.same_as_ffprobe('f.flac', expected)
        for cover, mime in (('cover.jpg', 'image/jpeg'), ('cover.png', 'image/png')):
            shutil.copy(self.path('f.flac'), self.path('p.flac'))
            run('metaflac', '--import-picture-from=4|image/png|back||' + self.path('cover.png'),
                self.path('p.flac'))
            run('metaflac', '--import-picture-from=3|' + mime + '|a front||' + self.path(cover),
                self.path('p.flac'))
            self.assertEqual(self.same_as_ffprobe('p.flac', expected), (mime, self.read(cover)))
        name = self.ffmpeg('g.flac', WORDS)
        self.same_as_ffprobe(name, WORDS)

    def test_ogg(self):
        words = ['-t', WORDS['title'], '-a', 'Björk', '-l', 'x', '-G', 'Jazz', '-d', '2015', '-N', '3']
        expected = {'title': WORDS['title'], 'artist': 'Björk', 'album': 'x', 'genre': 'Jazz',
                    'date': '2015', 'track': '3'}
        run('oggenc', '-Q', *words, '-o', self.path('v.ogg'), self.path('tone.wav'))
        self.same_as_ffprobe('v.ogg', expected)
        run('flac', '-s', '-f', '--ogg', '-T', 'TITLE=' + WORDS['title'], '-T', 'DISCNUMBER=2', '-o',
            self.path('f.oga'), self.path('tone.wav'))
        self.same_as_ffprobe('f.oga', {'title': WORDS['title'], 'disc': '2'})
        self.same_as_ffprobe(self.ffmpeg('f.opus', WORDS, '-c:a', 'libopus'), WORDS)

    def picture_block(self, cover, mime, kind=3, description=b'a front'):
        data = self.read(cover)
        return (kind.to_bytes(4, 'big') + len(mime).to_bytes(4, 'big') + mime.encode() +
                len(description).to_bytes(4, 'big') + description + bytes(16) +
                len(data).to_bytes(4, 'big') + data)

    def test_ogg_pictures(self):
        for source, options in (('v.ogg', ['-c:a', 'libvorbis']), ('o.opus', ['-c:a', 'libopus']),
                                ('f.oga', ['-c:a', 'flac'])):
            self.ffmpeg('bare-' + source, {'title': 'x'}, *options)
            for cover, mime in (('cover.jpg', 'image/jpeg'), ('cover.png', 'image/png')):
                for description in (b'', b'a', b'ab', b'abc' * 100):
                    block = self.picture_block(cover, mime, description=description)
                    text = base64.b64encode(block).decode()
                    with open(self.path('meta.txt'), 'w', encoding='utf-8') as file:
                        file.write(f';FFMETADATA1\ntitle=x\nMETADATA_BLOCK_PICTURE='
                                   f'{text.replace("=", chr(92) + "=")}\nartist=behind\n')
                    run('ffmpeg', '-v', 'error', '-y', '-i', self.path('bare-' + source), '-i',
                        self.path('meta.txt'), '-map_metadata', '1', '-map_metadata:s:a', '1:g',
                        '-c', 'copy', self.path(source))
                    self.assertEqual(self.same_as_ffprobe(source, {'title': 'x',
                                                                   'artist': 'behind'}),
                                     (mime, self.read(cover)))

    def test_flac_blocks_in_ogg(self):
        run('flac', '-s', '-f', '--ogg', '--picture', '3|image/png|||' + self.path('cover.png'),
            '-T', 'TITLE=x', '-o', self.path('p.oga'), self.path('tone.wav'))
        self.assertEqual(self.same_as_ffprobe('p.oga', {'title': 'x'}),
                         ('image/png', self.read('cover.png')))

    # WAV

    def test_wav_lists(self):
        for words in (WORDS, PLAIN):
            words = {key: value for key, value in words.items() if key != 'disc'}
            for options in ([], ['-rf64', 'always'], ['-c:a', 'adpcm_ima_wav'], ['-ac', '6'],
                            ['-c:a', 'pcm_u8', '-t', '0.2501']):
                name = self.ffmpeg('w.wav', {**words, 'comment': 'Take 2'}, *options)
                self.assertEqual(self.ours(name)[0].get('comment'), 'Take 2')
                tags, _ = self.ours(name)
                tags.pop('comment')
                self.assertEqual(tags, self.ffprobe(name))
                self.assertEqual(tags['title'], words['title'])
                report = json.loads(run('exiftool', '-j', '-charset', 'RIFF=UTF8', '-RIFF:all',
                                        self.path(name)))[0]
                for key, theirs in (('title', 'Title'), ('artist', 'Artist'), ('album', 'Product'),
                                    ('genre', 'Genre')):
                    self.assertEqual(tags[key], str(report.get(theirs, tags[key])))

    def test_wav_lists_behind_the_sound(self):
        texts = b''
        for name, text in ((b'INAM', 'Ágætis'), (b'IART', 'Björk'), (b'IPRD', 'Homogenic'),
                           (b'ICRD', '1997-09-22'), (b'IGNR', 'Pop'), (b'ITRK', '7')):
            data = text.encode() + b'\0'
            texts += name + len(data).to_bytes(4, 'little') + data + bytes(len(data) % 2)
        body = b'INFO' + texts
        sound = self.read('tone.wav')
        sound += b'LIST' + len(body).to_bytes(4, 'little') + body
        self.write('b.wav', sound[:4] + (len(sound) - 8).to_bytes(4, 'little') + sound[8:])
        self.same_as_ffprobe('b.wav', {'title': 'Ágætis', 'artist': 'Björk', 'album': 'Homogenic',
                                       'date': '1997-09-22', 'genre': 'Pop', 'track': '7'})

    # Pictures

    def exif_date(self, name):
        out = run('exiftool', '-s3', '-d', '%Y-%m-%dT%H:%M:%S', '-DateTimeOriginal', '-CreateDate',
                  '-ModifyDate', self.path(name)).decode().split()
        return out[0] if out else None

    def test_exif_dates(self):
        for order in ('II', 'MM'):
            for tags in (['-DateTimeOriginal=2015:06:30 18:00:00', '-CreateDate=2016:01:01 00:00:00',
                          '-ModifyDate=2017:01:01 00:00:00'],
                         ['-CreateDate=2016:01:01 00:00:00', '-ModifyDate=2017:01:01 00:00:00'],
                         ['-ModifyDate=2017:12:31 23:59:59']):
                for cover in ('cover.jpg', 'cover.png'):
                    name = 'e' + cover[-4:]
                    shutil.copy(self.path(cover), self.path(name))
                    run('exiftool', '-q', '-overwrite_original', '-exif:ExifByteOrder=' + order,
                        '-exif:Artist=a', *['-exif:' + tag[1:] for tag in tags], self.path(name))
                    date = self.exif_date(name)
                    self.assertIsNotNone(date)
                    self.assertEqual(self.ours(name)[0], {'date': date})
        self.assertEqual(self.ours('cover.jpg')[0], {})

    def test_png_texts(self):
        run('exiftool', '-q', '-o', self.path('t.png'), '-PNG:Title=Un été',
            '-PNG:Author=vxmedia', '-PNG:CreationTime=2015:06:30 18:00:00', self.path('cover.png'))
        report = json.loads(run('exiftool', '-j', '-PNG:Title', '-PNG:Author', '-PNG:CreationTime',
                                self.path('t.png')))[0]
        tags, _ = self.ours('t.png')
        self.assertEqual(tags['title'], report['Title'])
        self.assertEqual(tags['artist'], report['Author'])
        self.assertIn('date', tags)
        run('exiftool', '-q', '-o', self.path('i.png'),
            '-PNG:Title-de=月光 𝄞', self.path('cover.png'))
        self.assertEqual(self.ours('i.png')[0], {'title': '月光 𝄞'})
        run('convert', self.path('cover.png'), '-set', 'Title', 'Drawn', self.path('m.png'))
        self.assertEqual(self.ours('m.png')[0].get('title'), 'Drawn')

    def test_gif_comments(self):
        for text in ('Drawn', 'Für Elise — 月光', 'long ' * 300):
            text = text.strip()
            run('convert', self.path('cover.png'), '-set', 'comment', text, self.path('c.gif'))
            report = json.loads(run('exiftool', '-j', '-Comment', self.path('c.gif')))[0]
            self.assertEqual(report['Comment'], text)
            self.assertEqual(self.ours('c.gif')[0], {'comment': text})
        run('exiftool', '-q', '-overwrite_original', '-Comment=Written anew', self.path('c.gif'))
        self.assertEqual(self.ours('c.gif')[0], {'comment': 'Written anew'})
        run('convert', self.path('cover.png'), '+set', 'comment', self.path('n.gif'))
        self.assertEqual(self.ours('n.gif')[0], {})

    def test_png_compressed_texts_are_left_out(self):
        run('exiftool', '-q', '-o', self.path('z.png'), '-z',
            '-PNG:Title=' + 'compressed ' * 50, '-PNG:Author=short', self.path('cover.png'))
        self.assertIn(b'zTXt', self.read('z.png'))
        self.assertNotIn('title', self.ours('z.png')[0])


if __name__ == '__main__':
    unittest.main()
