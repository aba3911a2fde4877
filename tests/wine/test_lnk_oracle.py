#!/usr/bin/env python3
"""Wine's own IShellLinkA as an oracle for our shell link objects.

lnk_tool.cpp is built twice: on Linux over our objects (--host-tool) and for Windows (--win-tool), run under Wine with a
prefix of its own. For each case below both tools write a shortcut as the engine's writer does; then both tools read
all of them. A shortcut that Wine wrote must read the same with ours, and one that we wrote the same with Wine's,
field by field, except for the differences listed in KNOWN, each with the reason why we keep it.

Not compared: the find record's attributes and size, which Wine's GetPath leaves 0 and its writer does not record
(Windows fills them from the header, and so do we; the unit tests check ours).

Exit status: 0 pass, 1 fail, 77 skipped (Wine or the Windows tool is missing), as CTest expects.
"""
import argparse
import os
import shutil
import subprocess
import sys

# Fields that both readers give and that must agree.
COMPARED = ['load', 'pathhr', 'path', 'name', 'args', 'workdir', 'desc', 'icon', 'index', 'show', 'hotkey']

# Differences that we keep, each a test of (case, writer, Wine's value, our value) and the reason; writer is 'wine'
# or 'ours'. Where the two disagree, Windows decides.
KNOWN = {
    'path': [(lambda case, writer, a, b: case == 'unc' and writer == 'ours' and a == b'',
              'Wine takes no target from the network part of LinkInfo, which is all that Windows writes for a UNC '
              'target; Windows reads it, and so do we')],
    'pathhr': [(lambda case, writer, a, b: case == 'unc' and writer == 'ours' and (a, b) == (b'1', b'0'),
                'see path: Wine finds no target, S_FALSE')],
    'name': [(lambda case, writer, a, b: case == 'unc' and writer == 'ours' and a == b'',
              'see path: no target, no file name')],
    'icon': [(lambda case, writer, a, b: case == 'environment' and writer == 'ours' and b'%' in a and b'%' not in b,
              'Wine gives the icon text as stored; Windows, and we, expand the icon environment block when every '
              'name in it is set')],
    'show': [(lambda case, writer, a, b: a == b'1' and b in (b'3', b'7'),
              'Wine stores the show command but reads every one back as SW_SHOWNORMAL; Windows gives the stored '
              'value, which is what its properties dialog shows')],
}


def escape(data):
    out = bytearray()
    for b in data:
        if b < 0x20 or b == 0x5E:
            out += b'^%02X' % b
        else:
            out.append(b)
    return bytes(out)


def cp932(text):
    return text.encode('cp932')


def drive_path(linux_path):
    """Z: is / for both Wine and our backend (KELMARO_DRIVES unset)."""
    return 'Z:' + linux_path.replace('/', '\\')


def parse_lines(output):
    records = {}
    for line in output.replace(b'\r\n', b'\n').split(b'\n'):
        if not line:
            continue
        parts = line.split(b'\t')
        fields = {}
        for part in parts[1:]:
            key, _, value = part.partition(b'=')
            fields[key.decode()] = value
        records[os.path.basename(parts[0].replace(b'\\', b'/')).decode('cp932')] = fields
    return records


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument('--host-tool', required=True)
    parser.add_argument('--win-tool', required=True)
    parser.add_argument('--wine-run', required=True, help='cmake/wine-run, which makes and uses the prefix')
    parser.add_argument('--work', required=True, help='a scratch folder (ASCII path) under the build folder')
    args = parser.parse_args()

    if not os.path.exists(args.win_tool):
        print('lnk oracle: the Windows tool was not built (MinGW-w64 missing); skipping')
        return 77
    work = os.path.abspath(args.work)
    shutil.rmtree(work, ignore_errors=True)
    tree = os.path.join(work, 'tree')
    os.makedirs(os.path.join(tree, 'Folder'))
    os.makedirs(os.path.join(tree, '日本語'))
    with open(os.path.join(tree, 'app.exe'), 'wb') as f:
        f.write(b'MZ' + b'\0' * 1000)
    with open(os.path.join(tree, '日本語', '表.txt'), 'wb') as f:
        f.write(b'x' * 77)
    env = dict(os.environ)
    env['KELMARO_ORACLE_TREE'] = drive_path(tree)
    env.pop('KELMARO_DRIVES', None)
    env['WINEPREFIX'] = os.path.join(os.path.dirname(work), 'wineprefix')

    t = drive_path(tree)
    cases = {
        'file': dict(target=t + '\\app.exe', args='-x "a b"', workdir=t, icon=t + '\\app.exe', index='3',
                     desc='A program', show='3'),
        'folder': dict(target=t + '\\Folder', args='', workdir='', icon='', index='0', desc='', show='0'),
        'japanese': dict(target=t + '\\日本語\\表.txt', args='表 /予定', workdir=t + '\\日本語', icon='', index='0',
                         desc='説明の表', show='7'),
        'missing': dict(target=t + '\\missing.exe', args='', workdir=t, icon='', index='1', desc='gone', show='1'),
        'unc': dict(target='\\\\server\\share\\dir\\file.txt', args='', workdir='\\\\server\\share', icon='',
                    index='0', desc='', show='1'),
        'environment': dict(target='%KELMARO_ORACLE_TREE%\\app.exe', args='', workdir=t, icon='%KELMARO_ORACLE_TREE%\\app.exe',
                            index='2', desc='', show='1'),
        'longargs': dict(target=t + '\\app.exe', args='-' + 'a' * 400, workdir=t, icon='', index='0', desc='',
                         show='1'),
    }

    orders = []
    for writer in ('wine', 'ours'):
        for name, case in cases.items():
            fields_file = os.path.join(work, '%s_%s.fields' % (writer, name))
            lines = [b'file=' + escape(cp932(drive_path(os.path.join(work, '%s_%s.lnk' % (writer, name)))))]
            for key, value in case.items():
                lines.append(key.encode() + b'=' + escape(cp932(value)))
            with open(fields_file, 'wb') as f:
                f.write(b'\n'.join(lines) + b'\n')
            orders.append((writer, fields_file))

    def run(writer, command, files):
        if writer == 'wine':
            line = [args.wine_run, args.win_tool, command] + files
        else:
            line = [args.host_tool, command] + files
        result = subprocess.run(line, env=env, capture_output=True)
        if writer == 'wine' and result.returncode == 77:
            print('lnk oracle: Wine is not installed; skipping')
            sys.exit(77)
        if result.returncode != 0:
            print('lnk oracle: %s %s failed (%d): %s' % (writer, command, result.returncode, result.stderr[-2000:]))
            sys.exit(1)
        return result.stdout

    for writer in ('wine', 'ours'):
        run(writer, 'write', [f for w, f in orders if w == writer])
    links = [drive_path(os.path.join(work, '%s_%s.lnk' % (w, n))) for w in ('wine', 'ours') for n in cases]
    read_by = {reader: parse_lines(run(reader, 'read', links)) for reader in ('wine', 'ours')}

    failures = 0
    for writer in ('wine', 'ours'):
        for name in cases:
            link = '%s_%s.lnk' % (writer, name)
            wine_view, our_view = read_by['wine'].get(link), read_by['ours'].get(link)
            if wine_view is None or our_view is None:
                print('FAIL %s: not read by both (%s, %s)' % (link, wine_view is not None, our_view is not None))
                failures += 1
                continue
            for field in COMPARED:
                a, b = wine_view.get(field), our_view.get(field)
                if a == b:
                    continue
                reason = next((why for test, why in KNOWN.get(field, []) if test(name, writer, a, b)), None)
                if reason:
                    print('known %s %s: Wine %r, ours %r (%s)' % (link, field, a, b, reason))
                    continue
                print('FAIL %s %s: Wine %r, ours %r' % (link, field, a, b))
                failures += 1
    print('lnk oracle: %d cases, %d failures' % (len(cases) * 2, failures))
    return 1 if failures else 0


if __name__ == '__main__':
    sys.exit(main())
