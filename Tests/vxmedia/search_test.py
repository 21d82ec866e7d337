#!/usr/bin/env python3
"""What `lib find` and `lib first` of the program vxmedia answer."""
import re

from harness import GIF, PATHS, Scratch, ask, main, run

HEAD = 'ID  FORMAT  BYTES  PICTURE  CHANNELS  RATE  SECONDS  PATH\n'
ROWS = [' 1  GIF        13  5x4             -     -        -  m/a.gif\n',
        ' 2  GIF        13  5x4             -     -        -  m/b "x"; y.gif\n',
        ' 3  GIF        13  5x4             -     -        -  m/c.gif\n']


def found(*numbers, total=3):
    """The answer that lists these files."""
    width = 0 if numbers else 1
    return HEAD + ''.join(ROWS[i - 1][width:] for i in numbers) + '%d of %d media files\n' % (
        len(numbers), total)


class SearchScratch(Scratch):
    def setUp(self):
        super().setUp()
        for name in (b'm/a.gif', b'm/b "x"; y.gif', b'm/c.gif'):
            self.write(name)

    def ask(self, *lines):
        """Returns the answers to lines that follow a scan."""
        return ask(b'\n'.join([b'lib scan m', *(line if isinstance(line, bytes) else line.encode()
                                                for line in lines)]), self.folder).split('\n', 1)[1]


class Search(SearchScratch):
    """Criteria that are right."""

    def test_find_lists_what_matches_in_the_order_of_paths(self):
        self.assertEqual(self.ask('lib find *'), found(1, 2, 3))
        self.assertEqual(self.ask('lib find *'), self.ask('lib list'))
        self.assertEqual(self.ask('lib find @id >= "2"'), found(2, 3))
        self.assertEqual(self.ask('lib find dc:title = "A"'), found(1))
        self.assertEqual(self.ask('lib find wi > "5"'), found())

    def test_first_stops_after_as_many(self):
        self.assertEqual(self.ask('lib first 1 *'), found(1))
        self.assertEqual(self.ask('lib first 2 @id != "1"'), found(2, 3))
        self.assertEqual(self.ask('lib first 1000 *'), found(1, 2, 3))
        for count in ('0', '1001', '-1', 'x', ''):
            self.assertTrue(self.ask('lib first %s *' % count).startswith('ERROR: Invalid parameter'),
                            count)

    def test_criteria_take_the_rest_of_the_line_as_it_stands(self):
        self.assertEqual(self.ask('lib find fp contains "b \\"x\\"; y"'), found(2))
        self.assertEqual(self.ask("lib find fp doesNotContain \"'\""), found(1, 2, 3))
        self.assertEqual(self.ask('  lib   find \t ti   =  "a"  \t '), found(1))
        self.assertEqual(self.ask('lib first 1 (ti = "c" or ti = "a")'), found(1))
        self.assertEqual(self.ask('!lib', 'find fp contains "\\"x\\""', 'first 1 *'),
                         found(2) + found(1))

    def test_semicolons_in_values_stay_in_their_line(self):
        status, output = run(['-q', '-elib scan m;lib find fp contains "; y";lib first 1 *'],
                             cwd=self.folder)
        self.assertEqual((status, output.split('\n', 1)[1]), (0, found(2) + found(1)))
        status, output = run(['-q', '-elib scan m;lib find fp contains "b \\"x\\"; y";lib first 1 *'],
                             cwd=self.folder)
        self.assertEqual((status, output.split('\n', 1)[1]), (0, found(2) + found(1)))

    def test_timers_search_too(self):
        self.assertIn(found(1), ask('lib scan m\ntimer after 0 lib first 1 ti exists true\n' +
                                    'sys version\n' * 200, self.folder))

    def test_edits_are_found(self):
        self.assertEqual(self.ask('lib set 2 title Été', 'lib set 3 du 0:03:37', 'lib set 1 date 2015-06',
                                  'lib find dc:title = "Été"', 'lib find res@duration > "0:03:36.999"',
                                  'lib find dc:date = "2015"', 'lib find dc:date > "2015-06"',
                                  'lib set 2 title', 'lib find dc:title = "Été"'),
                         found(2) + found(3) + found(1) + found() + found())

    def test_every_name_of_the_readme_is_a_property(self):
        with open(PATHS['readme'], encoding='utf-8') as file:
            section = file.read().split('\n## Searching\n')[1].split('\n## ')[0]
        rows = [row.split('|')[1:3] for row in section.splitlines() if row.startswith('| ')]
        names = [name for row in rows for cell in row for name in re.findall(r'`([^`]*)`', cell)]
        operators = ['=', '!=', '<', '<=', '>', '>=', 'contains', 'doesNotContain', 'derivedfrom',
                     'like', 'exists']
        self.assertEqual([name for name in names if name in operators], operators)
        names = [name for name in names if name not in operators]
        self.assertGreater(len(names), 60)
        self.assertEqual(self.ask('lib find ' + ' and '.join(name + ' exists true' for name in names)),
                         found())

    def test_the_examples_of_the_readme_are_right(self):
        with open(PATHS['readme'], encoding='utf-8') as file:
            section = file.read().split('\n## Searching\n')[1].split('\n## ')[0]
        examples = re.findall(r'^    (lib find .*)$', section, re.M)
        self.assertEqual(len(examples), 3)
        for example in examples:
            self.assertNotIn('ERROR', self.ask(example))


class BadSearch(SearchScratch):
    """Criteria that are wrong, or larger than anybody writes."""

    def test_errors_name_the_byte_and_what_is_expected(self):
        for criteria, error in (
                ('', 'byte 1: expected a property or "("'),
                ('x = "1"', "byte 1: unknown property 'x'"),
                ('ti = "1" and (y = "1")', "byte 15: unknown property 'y'"),
                ('ti == "1"', 'byte 5: expected whitespace'),
                ('ti is "1"', 'byte 4: expected an operator'),
                ('ti = "1', 'byte 8: expected a closing quote'),
                ('ti < "1"', 'byte 4: expected an operator that the property supports'),
                ('wi = "1" or wi = "x"', 'byte 18: expected a number'),
                ('ti = "ä" or wi = "x"', 'byte 19: expected a number')):
            self.assertEqual(self.ask('lib find ' + criteria), 'ERROR: Criteria, ' + error + '\n')
            if criteria:
                self.assertEqual(self.ask('lib first 7 ' + criteria), 'ERROR: Criteria, ' + error + '\n')

    def test_wrong_criteria_fail_the_line(self):
        self.assertEqual(run(['-q', '-elib find x']),
                         (1, 'ERROR: Criteria, byte 2: expected whitespace\n'))
        self.assertEqual(run(['-q', '-elib first 1 %n = "%n"']),
                         (1, "ERROR: Criteria, byte 1: unknown property '%n'\n"))
        self.assertEqual(run(['-q', '-elib find *'])[0], 0)

    def test_bytes_that_steer_a_terminal_are_escaped(self):
        self.assertEqual(self.ask(b'lib find \x1b[2J\xff = "1"'),
                         "ERROR: Criteria, byte 1: unknown property '\\x1B[2J\\xFF'\n")

    def test_criteria_of_megabytes_are_answered_quickly(self):
        # Reading them is linear; what is not would outlast the patience for a single answer.
        count = 100000
        chain = ' or '.join(['wi > "5"'] * count)
        for criteria, answer in (
                (chain, found()),
                (chain + ' or ti = "c"', found(3)),
                (chain + ' or wi = "x"', 'ERROR: Criteria, byte %d: expected a number\n'
                 % (len(chain) + 10)),
                (chain + ' or', 'ERROR: Criteria, byte %d: expected whitespace\n' % (len(chain) + 4)),
                ('ti = "%s"' % ('x' * (8 << 20)), found()),
                ('ti like "%s"' % ('*x' * (1 << 20)), found()),
                ('%s = "1"' % ('x' * (8 << 20)),
                 "ERROR: Criteria, byte 1: unknown property '%s...'\n" % ('x' * 64)),
                ('(' * (8 << 20), 'ERROR: Criteria, byte 1001: expected at most 1000 groups, one in '
                                  'another\n'),
                (' or '.join(['(' * 1000 + 'ti = "b"' + ')' * 1000] * 500), found()),
                (' or '.join(['(' * 1000 + 'ti = "b"' + ')' * 999] * 500),
                 'ERROR: Criteria, byte 3011: expected at most 1000 groups, one in another\n'),
                ('(' * 1000 + 'x' * (1 << 20) + ' = "1"',
                 "ERROR: Criteria, byte 1001: unknown property '%s...'\n" % ('x' * 64))):
            self.assertEqual(self.ask('lib find ' + criteria), answer, criteria[:60])

    def test_random_criteria_are_survived(self):
        import random
        chance = random.Random(2015)
        words = [b'(', b')', b'and', b'or', b'ti', b'dc:date', b'res@size', b'exists', b'true', b'false',
                 b'=', b'!=', b'<=', b'like', b'contains', b'"2015"', b'"*"', b'"', b'\\', b'"\\""', b'*',
                 b'@id', b'"1"', b'\xff', b"'", b'%n']
        lines = [b'lib find ' + chance.choice((b' ', b' ', b'')).join(
            chance.choice(words) for _ in range(chance.randrange(12))) for _ in range(3000)]
        rights = [b'ti exists true', b'@id < "3"', b'dc:date > "2015"', b'fs != "13"', b'cn like "*"']
        for _ in range(1000):
            text = chance.choice(rights)
            for _ in range(chance.randrange(6)):
                link = chance.choice((b' and ', b' or '))
                text = chance.choice((text + link + chance.choice(rights), b'(' + text + b')',
                                      chance.choice(rights) + link + b'(' + text + b')'))
            lines.append(b'lib find ' + text)
        answers = self.ask(*lines, 'sys version')
        self.assertEqual(answers.splitlines()[-1], 'vxmedia 1.0.0')
        self.assertEqual(answers.count('ERROR: ') + answers.count(' media files\n'), 4000)
        right = self.ask(*lines[3000:])
        self.assertNotIn('ERROR', right)


if __name__ == '__main__':
    main()
