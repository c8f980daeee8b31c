"""The mistakes that no test has to notice, each with the reason: explained.txt."""

import collections
import os
import re
import sys

LIST = os.path.join(os.path.dirname(os.path.abspath(__file__)), 'explained.txt')

Explanation = collections.namedtuple('Explanation', 'file kind before after reason')


def collapsed(text):
    return ' '.join(text.split())


def explanations(text):
    """The entries of the list: paragraphs of where, what, instead of what, and why."""
    lines = [line for line in text.splitlines() if not line.startswith('#')]
    for paragraph in re.findall(r'\S.*?(?=\n\s*\n|\s*$)', '\n'.join(lines), re.DOTALL):
        head, *rest = paragraph.splitlines()
        before = [line[2:] for line in rest if line.startswith('- ')]
        after = [line[2:] for line in rest if line.startswith('+ ')]
        reason = [line for line in rest if not line.startswith(('- ', '+ '))]
        where = re.fullmatch(r'(\S+): (\w+)', head)
        if not (where and before and after and reason):
            sys.exit('mutate: this entry of explained.txt is not complete:\n' + paragraph)
        yield Explanation(*where.groups(), *(collapsed(' '.join(part))
                                             for part in (before, after, reason)))


def explained(found, read):
    """The reasons, by the identities of the mutants among those found. Every entry has to name one:
    its text is in the file once, and with the other text in its place the file is that mutant."""
    with open(LIST, encoding='utf-8') as file:
        entries = list(explanations(file.read()))
    wanted = {entry.file for entry in entries}
    known = {(mutant.file, mutant.kind, collapsed(mutant.content)): mutant.identity
             for mutant in found if mutant.file in wanted}
    texts = {file: collapsed(read(file)) for file in wanted & {mutant.file for mutant in found}}
    reasons = {}
    for entry in entries:
        text = texts.get(entry.file, '')
        identity = None
        if text.count(entry.before) == 1:
            identity = known.get((entry.file, entry.kind, text.replace(entry.before, entry.after)))
        if not identity:
            sys.exit('mutate: no mistake, or not one only, is what explained.txt explains as\n'
                     f'{entry.file}: {entry.kind}\n- {entry.before}\n+ {entry.after}')
        reasons[identity] = entry.reason
    return reasons


def entry_for(mutant, text):
    """The entry that would explain the mutant, but for its reason: as many lines as name it."""
    old, new = text.splitlines(), mutant.content.splitlines()
    first = len(os.path.commonprefix([old, new]))
    last = len(os.path.commonprefix([old[first:][::-1], new[first:][::-1]]))
    while collapsed(text).count(collapsed(' '.join(old[first:len(old) - last]))) != 1:
        first -= 1
    return '\n'.join([f'{mutant.file}: {mutant.kind}',
                      *('- ' + line.strip() for line in old[first:len(old) - last]),
                      *('+ ' + line.strip() for line in new[first:len(new) - last])])
