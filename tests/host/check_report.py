#!/usr/bin/python3
"""check_report.py CLIPINFO MAKE-CLIP: the page that clipinfo report writes: well-formed, whole in itself, one mark for
each edit unit or group of them, hostile text escaped; and in a headless browser where one is installed."""
import html.parser
import os
import re
import shutil
import subprocess
import sys
import tempfile

CLIPINFO, MAKE_CLIP = (os.path.abspath(path) for path in sys.argv[1:3])
VOID = {'meta', 'link', 'br', 'img', 'input', 'hr'}
HOSTILE = '"\'><b id=x>'
failed = False


def fail(text):
    global failed
    failed = True
    print('failed:', text)


class Page(html.parser.HTMLParser):
    """The elements of a page; tells what is not well-formed."""

    def __init__(self, text, name):
        super().__init__(convert_charrefs=True)
        self.name, self.open, self.elements, self.text = name, [], [], ''
        self.feed(text)
        self.close()
        if self.open:
            fail(f'{name}: not closed: {self.open}')

    def handle_starttag(self, tag, attributes):
        self.elements.append((tag, dict(attributes)))
        if tag not in VOID:
            self.open.append(tag)

    def handle_startendtag(self, tag, attributes):
        self.elements.append((tag, dict(attributes)))

    def handle_endtag(self, tag):
        if not self.open or self.open.pop() != tag:
            fail(f'{self.name}: </{tag}> closes what is not open')

    def handle_data(self, data):
        self.text += data

    def all(self, tag):
        return [attributes for name, attributes in self.elements if name == tag]

    def marks(self):
        return [each for each in self.all('g') if 'mark' in (each.get('class') or '').split()]


def report(clip, name):
    output = name + '.html'
    result = subprocess.run([CLIPINFO, 'report', clip, '-o', output], capture_output=True, text=True, timeout=60)
    if result.returncode != 0 or result.stderr:
        fail(f'{name}: {result.returncode} {result.stderr}')
        return None, ''
    with open(output, encoding='utf-8') as file:
        text = file.read()
    return Page(text, name), text


def check_page(page, text, name, marks, key_frames):
    if len(page.marks()) != marks:
        fail(f'{name}: {len(page.marks())} marks instead of {marks}')
    if sum('key' in each['class'].split() for each in page.marks()) != key_frames:
        fail(f'{name}: not {key_frames} key frames')
    # Whole in itself: nothing is fetched, nothing runs.
    for tag, attributes in page.elements:
        for attribute in ('src', 'href', 'action', 'data', 'srcset'):
            value = attributes.get(attribute)
            if value is not None and not value.startswith(('#', 'data:,')):
                fail(f'{name}: {tag} {attribute}={value}')
        if tag in ('script', 'iframe', 'object', 'embed', 'base') or any(each.startswith('on') for each in attributes):
            fail(f'{name}: {tag} {attributes}')
    if re.search(r'https?:|url\(|@import', text):
        fail(f'{name}: refers to another place')
    # For those who listen to it or use a keyboard.
    ids = [attributes['id'] for _, attributes in page.elements if 'id' in attributes]
    named = [word for _, attributes in page.elements for word in (attributes.get('aria-labelledby') or '').split()]
    links = [each['href'][1:] for each in page.all('a')]
    if len(ids) != len(set(ids)) or not set(named + links) <= set(ids):
        fail(f'{name}: identifiers {sorted(set(named + links) - set(ids))}')
    drawings = page.all('svg')
    if len(drawings) != 2 or any(each.get('role') != 'img' or not each.get('aria-labelledby') for each in drawings):
        fail(f'{name}: drawings without a name')
    headings = [int(tag[1]) for tag, _ in page.elements if re.fullmatch('h[1-6]', tag)]
    if headings[:1] != [1] or set(headings[1:]) != {2} or page.all('html')[0].get('lang') != 'en':
        fail(f'{name}: headings {headings}')
    if not page.all('details') or not page.all('caption') or not all(each.get('scope') for each in page.all('th')):
        fail(f'{name}: tables that cannot be followed')


def check_hostile(clip):
    """Text of the file and its name go into the page as text."""
    with open(clip, 'rb') as file:
        data = bytearray(file.read())
    product = data.index('Camera One'.encode('utf-16-be'))
    data[product:product + 20] = HOSTILE[:10].encode('utf-16-be')
    name = 'a&<script>alert(1)<!--"\'.mxf'.replace('/', '')
    with open(name, 'wb') as file:
        file.write(data)
    page, text = report(name, 'hostile')
    check_page(page, text, 'hostile', 25, 3)
    if HOSTILE[:10] not in page.text or name not in page.text or '<script' in text or '<b id' in text:
        fail('hostile text is not told as text')


def check_browser(name, marks):
    """The page opens without an error of the console, and its marks are drawn."""
    browser = shutil.which('chromium') or shutil.which('chromium-browser')
    if browser is None:
        print('no browser: not looked at there')
        return
    with tempfile.TemporaryDirectory() as profile:
        result = subprocess.run(
            [browser, '--headless', '--no-sandbox', '--disable-gpu', '--disable-background-networking',
             '--disable-dev-shm-usage', '--user-data-dir=' + profile, '--enable-logging=stderr', '--dump-dom',
             'file://' + os.path.abspath(name + '.html')], capture_output=True, text=True, timeout=120)
    errors = [line for line in result.stderr.splitlines() if ':CONSOLE' in line]
    if result.returncode != 0 or errors or len(Page(result.stdout, 'browser ' + name).marks()) != marks:
        fail(f'browser: {name}: {result.returncode} {errors[:3]}')


def check_command(clip):
    """Where the page goes, and what is refused."""
    def status(*arguments):
        return subprocess.run([CLIPINFO, 'report', *arguments], capture_output=True, timeout=60)
    with open('plain.html', 'rb') as file:
        if status(clip, '-o', '-').stdout != file.read():
            fail('the standard output is not the page')
    if status(clip).returncode != 2 or status(clip, '-o', clip).returncode != 1:
        fail('an output that is none was taken')
    if status('nowhere.mxf', '-o', 'nowhere.html').returncode != 1 or os.path.exists('nowhere.html'):
        fail('a page about nothing')


with tempfile.TemporaryDirectory() as scratch:
    os.chdir(scratch)
    cases = {'plain': ([], 25, 3), 'buckets': (['--units', '1500', '--picture-bytes', '2000'], 375, 0),
             'most': (['--units', '600', '--picture-bytes', '2000'], 600, 50),
             'header-index': (['--header-index', '--no-rip', '--units', '40'], 40, 4)}
    for case, (options, count, keys) in cases.items():
        subprocess.run([MAKE_CLIP, *options, case + '.mxf'], check=True)
        found, content = report(case + '.mxf', case)
        if found:
            check_page(found, content, case, count, keys)
            if case in ('plain', 'buckets'):
                check_browser(case, count)
    check_hostile('plain.mxf')
    check_browser('hostile', 25)
    check_command('plain.mxf')
sys.exit(failed)
