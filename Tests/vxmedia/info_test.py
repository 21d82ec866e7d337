#!/usr/bin/env python3
"""What `lib info` of the program vxmedia shows, held against what ffprobe and exiftool say.

The files are made by the common encoders and taggers, in the forms that their users meet. Where the
tools disagree among themselves, the test says who is believed, and why.
"""
import json
import os
import re
import shutil
import subprocess
import tempfile
import unittest

from harness import ask, main

UTF8 = dict(os.environ, LC_ALL='C.UTF-8')
TAGS = {'title': 'Für Elise — 月光', 'artist': 'Björk & Sigur Rós', 'album': 'Ágætis = byrjun', 'genre': 'Jazz',
        'date': '2015', 'track': '3/12', 'disc': '2/2'}
PLAIN = {'title': 'Long chord', 'artist': 'vxmedia', 'album': 'Tests', 'genre': 'Rock', 'date': '1999',
         'track': '7'}
MEDIA_TYPES = {'mp3': 'audio/mpeg', 'flac': 'audio/flac', 'ogg': 'audio/ogg', 'oga': 'audio/ogg',
               'opus': 'audio/ogg', 'wav': 'audio/x-wav', 'png': 'image/png', 'jpg': 'image/jpeg',
               'jpeg': 'image/jpeg', 'gif': 'image/gif'}


def call(*command):
    done = subprocess.run([str(word) for word in command], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                          env=UTF8)
    if done.returncode != 0:
        raise AssertionError(f'{command}: {done.stderr.decode(errors="replace")}')
    return done.stdout


class Corpus:
    """Makes the files, each with a name that says how."""

    def __init__(self, folder):
        self.folder = folder
        for name, channels, rate, bits, length in (
                ('mono', 1, 44100, 16, 1.1), ('stereo', 2, 44100, 16, 0.7), ('dvd', 2, 48000, 24, 0.5),
                ('low', 1, 16000, 16, 1.3), ('mid', 2, 22050, 16, 0.9), ('phone', 1, 8000, 8, 0.8),
                ('surround', 6, 48000, 16, 0.4), ('hires', 2, 96000, 24, 0.3), ('deep', 2, 48000, 32, 0.2)):
            call('sox', '-R', '-n', '-r', rate, '-c', channels, '-b', bits, self.path(name + '.wav'), 'synth',
                 length, 'sine', 440, 'gain', -6)
        call('convert', '-size', '64x48', 'gradient:navy-gold', '-strip', self.path('cover.jpg'))
        self.make_sounds()
        self.make_pictures()

    def path(self, name):
        return os.path.join(self.folder, name)

    def ffmpeg(self, source, name, *options, tags=None):
        words = [word for key, value in (tags or {}).items() for word in ('-metadata', f'{key}={value}')]
        call('ffmpeg', '-v', 'error', '-y', '-i', self.path(source), *words, *options, self.path(name))

    def make_sounds(self):
        wav = self.path
        for source in ('mono', 'stereo', 'dvd', 'low', 'mid', 'phone'):
            for tags, how in ((TAGS, 'tagged'), (None, 'bare')):
                self.ffmpeg(source + '.wav', f'ffmpeg-{source}-{how}.mp3', tags=tags)
        for version in (3, 4):
            self.ffmpeg('stereo.wav', f'ffmpeg-v1-v2.{version}.mp3', '-id3v2_version', version, '-write_id3v1', 1,
                        tags=PLAIN)
        self.ffmpeg('stereo.wav', 'ffmpeg-no-index.mp3', '-write_xing', 0, '-b:a', '96k', tags=TAGS)
        for source in ('mono', 'stereo', 'dvd', 'hires', 'surround'):
            self.ffmpeg(source + '.wav', f'ffmpeg-{source}.flac', tags=TAGS)
            self.ffmpeg(source + '.wav', f'ffmpeg-{source}.ogg', '-c:a', 'libvorbis', tags=TAGS)
            self.ffmpeg(source + '.wav', f'ffmpeg-{source}.opus', '-c:a', 'libopus', tags=TAGS)
            self.ffmpeg(source + '.wav', f'ffmpeg-{source}.oga', '-c:a', 'flac', tags=TAGS)
        for codec in ('pcm_u8', 'pcm_s16le', 'pcm_s24le', 'pcm_s32le', 'pcm_f32le', 'pcm_f64le', 'pcm_alaw',
                      'pcm_mulaw', 'adpcm_ima_wav', 'adpcm_ms'):
            for source in ('mono', 'surround') if codec.startswith('pcm') else ('mono', 'stereo'):
                self.ffmpeg(source + '.wav', f'ffmpeg-{codec}-{source}.wav', '-c:a', codec)
        self.ffmpeg('stereo.wav', 'ffmpeg-rf64.wav', '-rf64', 'always')
        lame = ['lame', '--quiet', '--tt', 'Long chord', '--ta', 'vxmedia', '--tl', 'Tests', '--ty', '1999',
                '--tn', '7/9', '--tg', 'Rock']
        for how, options in (('cbr', ['-b', 96]), ('cbr-crc', ['-b', 128, '-p']), ('vbr', ['-V', 4]),
                             ('abr', ['--abr', 100]), ('v1', ['--id3v1-only']), ('v2', ['--id3v2-only']),
                             ('both', ['--add-id3v2']), ('utf16', ['--id3v2-utf16']), ('free', ['-b', 320]),
                             ('joint', ['-m', 'j']), ('notag', ['-t', '-b', 64])):
            call(*lame, *options, wav('stereo.wav'), wav(f'lame-{how}.mp3'))
        call(*lame, '--ti', wav('cover.jpg'), wav('low.wav'), wav('lame-cover.mp3'))
        for source in ('mono', 'stereo', 'dvd', 'low', 'hires', 'surround'):
            words = [word for key, value in (('TITLE', TAGS['title']), ('ARTIST', TAGS['artist']),
                                             ('ALBUM', TAGS['album']), ('GENRE', 'Jazz'), ('DATE', '2015-06-30'),
                                             ('TRACKNUMBER', '3/12'), ('DISCNUMBER', '2'))
                     for word in ('-T', f'{key}={value}')]
            call('flac', '-s', '-f', *words, '-o', wav(f'flac-{source}.flac'), wav(source + '.wav'))
            call('flac', '-s', '-f', '--ogg', *words, '-o', wav(f'flac-{source}.oga'), wav(source + '.wav'))
            call('oggenc', '-Q', '-t', TAGS['title'], '-a', TAGS['artist'], '-l', TAGS['album'], '-G', 'Jazz',
                 '-d', '2015', '-N', 3, '-o', wav(f'oggenc-{source}.ogg'), wav(source + '.wav'))
        for quality in (-1, 5, 10):
            call('oggenc', '-Q', '-q', quality, '-o', wav(f'oggenc-q{quality}.ogg'), wav('stereo.wav'))
        call('oggenc', '-Q', '-b', 96, '--managed', '-o', wav('oggenc-managed.ogg'), wav('stereo.wav'))
        shutil.copy(wav('flac-stereo.flac'), wav('metaflac-cover.flac'))
        call('metaflac', '--import-picture-from=' + wav('cover.jpg'), wav('metaflac-cover.flac'))

    def convert(self, name, *options):
        call('convert', *options, self.path(name))

    def make_pictures(self):
        size = ['-size', '61x47']
        for depth in (1, 2, 4, 8, 16):
            self.convert(f'gray{depth}.png', *size, 'gradient:', '-colorspace', 'gray', '-strip', '-define',
                         'png:color-type=0', '-define', f'png:bit-depth={depth}')
        for depth in (1, 2, 4, 8):
            self.convert(f'palette{depth}.png', *size, 'plasma:red-blue', '-colors', 2 ** depth, '-strip',
                         '-define', 'png:color-type=3', '-define', f'png:bit-depth={depth}')
        for kind, name in ((2, 'rgb'), (4, 'gray-alpha'), (6, 'rgba')):
            for depth in (8, 16):
                self.convert(f'{name}{depth}.png', *size, 'plasma:red-blue', '-alpha', 'set', '-strip', '-define',
                             f'png:color-type={kind}', '-define', f'png:bit-depth={depth}')
        self.convert('interlaced.png', *size, 'plasma:red-blue', '-interlace', 'PNG', '-strip')
        self.convert('text.png', *size, 'plasma:red-blue', '-set', 'Title', 'Drawn', '-set', 'Author', 'vxmedia')
        for how, options in (('color', []), ('gray', ['-colorspace', 'gray']), ('cmyk', ['-colorspace', 'CMYK']),
                             ('progressive', ['-interlace', 'JPEG']), ('444', ['-sampling-factor', '4:4:4'])):
            self.convert(how + '.jpg', *size, 'plasma:red-blue', *options, '-strip')
        for width, height in ((640, 480), (641, 480), (1024, 768), (1024, 769), (4096, 16), (4097, 16)):
            for ending in ('jpg', 'png', 'gif'):
                self.convert(f'size-{width}x{height}.{ending}', '-size', f'{width}x{height}', 'xc:teal', '-strip')
        for colors in (2, 3, 16, 17, 256):
            self.convert(f'colors{colors}.gif', *size, 'plasma:red-blue', '-colors', colors)
        self.convert('animated.gif', '-delay', '5', *size, 'xc:red', 'xc:blue', '-loop', '0')
        for ending in ('jpeg', 'png', 'gif'):
            self.ffmpeg('rgb8.png', f'ffmpeg.{ending}', *([] if ending == 'png' else ['-frames:v', 1]))
        for order in ('II', 'MM'):
            for ending in ('jpg', 'png'):
                call('exiftool', '-q', '-o', self.path(f'exif-{order}.{ending}'), '-exif:ExifByteOrder=' + order,
                     '-exif:DateTimeOriginal=2015:06:30 18:00:00', '-exif:Artist=a',
                     self.path('color.jpg' if ending == 'jpg' else 'rgb8.png'))
        call('exiftool', '-q', '-o', self.path('title.png'), '-PNG:Title=Un été', '-PNG:Author=vxmedia',
             self.path('rgb8.png'))


def milliseconds(text):
    hours, minutes, seconds = text.split(':')
    return (int(hours) * 60 + int(minutes)) * 60000 + round(float(seconds) * 1000)


class Info(unittest.TestCase):
    """Each test looks at one kind of fact of all files."""

    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.mkdtemp(prefix='vxmedia-info-')
        try:
            Corpus(cls.folder)
            cls.infos = cls.read_infos()
            cls.exiftool = cls.read_exiftool()
        except BaseException:
            shutil.rmtree(cls.folder)
            raise
        cls.sounds = {name: cls.read_ffprobe(name) for name in cls.infos
                      if cls.exiftool[name]['MIMEType'].startswith('audio/')}
        cls.pictures = {name: facts for name, facts in cls.exiftool.items() if name not in cls.sounds}

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.folder)

    @classmethod
    def read_infos(cls):
        """The infos of all files by name, as `lib info` shows them."""
        rows = ask('lib scan .\nlib find *\n', cls.folder).splitlines()[2:-1]
        numbers = {row.split(None, 7)[7][2:]: row.split()[0] for row in rows}
        answers = ask('lib scan .\n' + ''.join(f'lib info {number}\nsys json $ 0\n'
                                               for number in numbers.values()), cls.folder)
        parts = answers.split('\n', 1)[1].split('\n0\n')[:-1]
        return {name: cls.parse(part) for name, part in zip(numbers, parts)}

    @staticmethod
    def parse(text):
        return {match[1]: match[2] for match in (re.fullmatch(r'\S+ +(\S+) +(.*)', line)
                                                 for line in text.splitlines())}

    @classmethod
    def read_exiftool(cls):
        """What exiftool says about all files, by name; numbers are numbers."""
        names = sorted(os.listdir(cls.folder))
        facts = json.loads(call('exiftool', '-j', '-n', *[os.path.join(cls.folder, name) for name in names]))
        return {os.path.basename(file['SourceFile']): file for file in facts}

    @classmethod
    def read_ffprobe(cls, name):
        """The sound of a file, with its tags, as ffprobe has it."""
        report = json.loads(call('ffprobe', '-v', 'error', '-count_packets', '-show_format', '-show_streams', '-of',
                                 'json', os.path.join(cls.folder, name)))
        sound, = (stream for stream in report['streams'] if stream['codec_type'] == 'audio')
        tags = {**report['format'].get('tags', {}), **sound.get('tags', {})}
        sound['tags'] = {key.lower(): value for key, value in tags.items()}
        sound['milliseconds'] = float(report['format']['duration']) * 1000
        return sound

    def check(self, name, key, expected):
        """An expected None: the info must not have the key."""
        with self.subTest(file=name, key=key):
            self.assertEqual(self.infos[name].get(key), None if expected is None else str(expected))

    def test_no_file_is_left_out_and_every_key_is_checked(self):
        self.assertEqual(sorted(self.infos), sorted(os.listdir(self.folder)))
        self.assertGreater(len(self.sounds), 90)
        self.assertGreater(len(self.pictures), 50)
        keys = set().union(*self.infos.values())
        self.assertEqual(sorted(keys), [
            'album', 'audio-bits-per-sample', 'audio-channels', 'audio-sampling-rate', 'audio-tracks',
            'bit-rate', 'class', 'color-depth', 'cover', 'creator', 'date', 'disc', 'dlna-profile', 'duration',
            'file-extension', 'file-path', 'file-size', 'genre', 'height', 'mime-type', 'picture', 'title',
            'track', 'width'])

    def test_files(self):
        for name, info in self.infos.items():
            self.check(name, 'file-path', './' + name)
            self.check(name, 'file-extension', name.rsplit('.', 1)[1])
            self.check(name, 'file-size', self.exiftool[name]['FileSize'])
            self.check(name, 'mime-type', self.exiftool[name]['MIMEType'])
            self.check(name, 'class', 'object.item.audioItem.musicTrack' if name in self.sounds
                       else 'object.item.imageItem.photo')

    def test_sizes_of_pictures(self):
        for name, facts in self.pictures.items():
            self.check(name, 'width', facts['ImageWidth'])
            self.check(name, 'height', facts['ImageHeight'])
            for key in ('duration', 'bit-rate', 'audio-tracks', 'audio-channels', 'audio-sampling-rate',
                        'audio-bits-per-sample'):
                self.check(name, key, None)

    def test_depths_of_pictures(self):
        samples = {0: 1, 2: 3, 3: 1, 4: 2, 6: 4}  # of a pixel, by the color type of PNG
        for name, facts in self.pictures.items():
            if 'BitDepth' in facts:
                depth = facts['BitDepth'] * samples[facts['ColorType']]
            elif 'ColorComponents' in facts:
                depth = facts['BitsPerSample'] * facts['ColorComponents']
            else:
                depth = facts['BitsPerPixel']
            self.check(name, 'color-depth', depth)

    def test_words_of_pictures(self):
        for name, facts in self.pictures.items():
            date = facts.get('DateTimeOriginal')
            self.check(name, 'title', facts.get('Title', name.rsplit('.', 1)[0]))
            self.check(name, 'creator', facts.get('Author'))
            self.check(name, 'album', './')
            self.check(name, 'date', None if date is None else
                       re.sub(r'(\d+):(\d+):(\d+) ', r'\1-\2-\3T', date))
        self.assertEqual(self.infos['title.png']['title'], 'Un été')
        self.assertEqual(self.infos['text.png']['creator'], 'vxmedia')
        self.assertEqual(self.infos['exif-II.jpg']['date'], '2015-06-30T18:00:00')

    def test_profiles_of_pictures(self):
        for name in self.pictures:
            width, height = (int(self.infos[name][key]) for key in ('width', 'height'))
            kind = self.exiftool[name]['FileType']
            limits = {'JPEG': (('JPEG_SM', 640, 480), ('JPEG_MED', 1024, 768), ('JPEG_LRG', 4096, 4096)),
                      'PNG': (('PNG_LRG', 4096, 4096),), 'GIF': (('GIF_LRG', 1600, 1200),)}[kind]
            fitting = [profile for profile, most_x, most_y in limits if width <= most_x and height <= most_y]
            self.check(name, 'dlna-profile', fitting[0] if fitting else None)

    def test_channels_and_rates_of_sounds(self):
        for name, sound in self.sounds.items():
            self.check(name, 'audio-tracks', 1)
            self.check(name, 'audio-channels', sound['channels'])
            self.check(name, 'audio-sampling-rate', sound['sample_rate'])
            bits = int(sound.get('bits_per_raw_sample') or sound.get('bits_per_sample') or 0)
            self.check(name, 'audio-bits-per-sample', bits or None)
            for key in ('width', 'height', 'color-depth'):
                self.check(name, key, None)

    def test_bit_rates_of_sounds(self):
        for name, sound in self.sounds.items():
            rate = int(sound.get('bit_rate', 0))
            # Vorbis may leave its rate open, by a number below 0 that ffprobe takes for a large one.
            self.check(name, 'bit-rate', None if rate == 0 or rate >= 1 << 31 else rate)

    def test_durations_of_sounds(self):
        for name, sound in self.sounds.items():
            expected = sound['milliseconds']
            if sound['codec_name'] == 'opus':
                expected -= 6.5  # the lead-in, which is not played
            if name.startswith(('lame-notag', 'lame-cover', 'ffmpeg-no-index')):
                # Without an index ffprobe guesses from the size, tags at the end included.
                rate = int(sound['sample_rate'])
                expected = int(sound['nb_read_packets']) * (1152 if rate >= 32000 else 576) * 1000 / rate
            with self.subTest(file=name):
                self.assertAlmostEqual(milliseconds(self.infos[name]['duration']), expected, delta=0.6)

    def test_words_of_sounds(self):
        for name, sound in self.sounds.items():
            tags = sound['tags']
            self.check(name, 'title', tags.get('title', name.rsplit('.', 1)[0]))
            for key, tag in (('creator', 'artist'), ('album', 'album'), ('genre', 'genre'), ('date', 'date')):
                self.check(name, key, tags.get(tag))
            for key in ('track', 'disc'):
                self.check(name, key, tags[key].split('/')[0] if key in tags else None)
        # They say what was asked for, not only the same.
        tagged = {'title': TAGS['title'], 'creator': TAGS['artist'], 'album': TAGS['album'], 'genre': 'Jazz'}
        names = [name for name in self.sounds if re.match('ffmpeg-.*tagged|flac-|oggenc-(?!q|managed)', name)]
        self.assertGreater(len(names), 20)
        for name in names:
            for key, text in tagged.items():
                self.check(name, key, text)

    def test_profiles_of_sounds(self):
        for name, sound in self.sounds.items():
            rate = int(sound['sample_rate'])
            profile = None
            if sound['codec_name'] == 'mp3':
                profile = {32000: 'MP3', 44100: 'MP3', 48000: 'MP3', 16000: 'MP3X', 22050: 'MP3X',
                           24000: 'MP3X'}.get(rate)
            self.check(name, 'dlna-profile', profile)

    def test_covers(self):
        covers = [name for name, info in self.infos.items() if 'cover' in info]
        self.assertEqual(sorted(covers), ['lame-cover.mp3', 'metaflac-cover.flac'])
        with open(os.path.join(self.folder, 'cover.jpg'), 'rb') as file:
            cover = file.read()
        for name in covers:
            with self.subTest(file=name):
                self.assertEqual(call('exiftool', '-b', '-Picture', os.path.join(self.folder, name)), cover)
                place = re.fullmatch(r'image/jpeg, (\d+) bytes at (\d+)', self.infos[name]['cover'])
                size, start = int(place[1]), int(place[2])
                with open(os.path.join(self.folder, name), 'rb') as file:
                    self.assertEqual(file.read()[start:start + size], cover)
            self.check(name, 'picture', 'JPEG 64x48, %d bytes' % len(cover))


if __name__ == '__main__':
    main()
