#!/usr/bin/env python3
"""Writes lnkinfo_fields.tsv: what lnkinfo (package liblnk-utils) reads from each shortcut of lnk-samples, for
lnk_samples_test.cpp to compare our reader with. Run again only when the samples change:

    tests/unit/posix/lnk/data/make_lnkinfo_table.py ../shared/lnk-samples > tests/unit/posix/lnk/data/lnkinfo_fields.tsv

ANSI text is read as Shift-JIS (-c windows-932), the code page of our reader. lnkinfo prints the show command and the
hotkey from the wrong offsets, so those two columns are taken from the header bytes (0x3C, 0x40) here. One line per
file that lnkinfo reads, tab-separated; in values, control characters and '^' are written as ^XX.
"""
import os
import struct
import subprocess
import sys

COLUMNS = ['local', 'network', 'env', 'desc', 'rel', 'workdir', 'args', 'icon']
LABELS = {'Local path': 'local', 'Network path': 'network', 'Environment variables location': 'env',
          'Description': 'desc', 'Relative path': 'rel', 'Working directory': 'workdir',
          'Command line arguments': 'args', 'Icon location': 'icon'}
SKIPPED = {'LICENSE', 'README.md', 'metadata.txt'}


def escape(text):
    return ''.join('^%02X' % ord(c) if ord(c) < 0x20 or c == '^' else c for c in text)


def fields(path):
    result = subprocess.run(['lnkinfo', '-c', 'windows-932', path], capture_output=True)
    if result.returncode != 0:
        return None
    values, section = {}, None
    for line in result.stdout.decode('utf-8', 'replace').split('\n'):
        if line and not line.startswith('\t'):
            section = line
        if section != 'Link information:' or not line.startswith('\t') or line.startswith('\t\t'):
            continue
        label, _, value = line[1:].partition(':')
        if label.strip() in LABELS:
            values[LABELS[label.strip()]] = value[1:] if value.startswith(' ') else value
    return values


def main():
    root = sys.argv[1]
    print('# file\tshow\thotkey\t' + '\t'.join(COLUMNS))
    for folder, subfolders, files in os.walk(root):
        subfolders.sort()
        for name in sorted(files):
            if name in SKIPPED:
                continue
            path = os.path.join(folder, name)
            values = fields(path)
            if values is None:
                continue
            with open(path, 'rb') as f:
                header = f.read(0x42)
            show, = struct.unpack_from('<I', header, 0x3C)
            hotkey, = struct.unpack_from('<H', header, 0x40)
            row = [os.path.relpath(path, root), str(show), str(hotkey)] + [escape(values.get(c, '')) for c in COLUMNS]
            print('\t'.join(row))


if __name__ == '__main__':
    main()
