"""Generates the mutants of a source file: each is one small edit that a test should detect."""

import collections
import hashlib
import itertools
import re

Mutant = collections.namedtuple('Mutant', 'identity file line kind before after content')

LEXEMES = re.compile(r'''
    //[^\n]* | /\*.*?\*/ | ^[ \t]*\#[^\n]*  # hidden from the operators: comments, directives
    | "(?:\\.|[^"\\])*"                     # a text
    | '(?:\\.|[^'\\])*'                     # a character
    ''', re.VERBOSE | re.DOTALL | re.MULTILINE)

SWAPPED = {
    ' == ': ' != ', ' != ': ' == ', ' < ': ' <= ', ' <= ': ' < ', ' > ': ' >= ', ' >= ': ' > ',
    ' && ': ' || ', ' || ': ' && ', ' + ': ' - ', ' - ': ' + ', ' += ': ' -= ', ' -= ': ' += ',
    ' * ': ' / ', ' / ': ' * ', ' % ': ' * ', ' & ': ' | ', ' | ': ' & ', ' ^ ': ' & ',
    ' << ': ' >> ', ' >> ': ' << ',
}
OPERATOR = re.compile(r'(?<=[\w)\]\'"}])\s(?:==|!=|<=|>=|<<|>>|<|>|&&|\|\||\+=|-=|[-+*/%&|^])'
                      r'\s(?=[\w(!"\'&*~{-])')
# Leaves out the index in "name[0]": in sizeof expressions, its mutants would be equivalent.
NUMBER = re.compile(r'(?<![\w.])(?<!\w\[(?=0\]))(?:0[xX][0-9a-fA-F]+|\d+)(?![\w.])')
# Beginnings of statements other than declarations and control flow.
CALL_STATEMENT = re.compile(r'(?<=[;{}:\n])(?P<blank>\s*\n[ ]+)(?P<call>(?!(?:return|if|else|for|while|'
                            r'switch|case|default|const|auto|static|using|delete|public|private|'
                            r'struct|class|namespace|do|throw)\b)[A-Za-z_*][^;{}]*;)')
DECLARATION = re.compile(r'[\w:<>*&, ]*[\w>]\s+[*&]?\w+\s*(?:[=;(\[]|$)')
PLAIN_ASSIGNMENT = re.compile(r'(\w+) = ([^()]+);')
SCOPED_NAME = re.compile(r'\b(Error|KyTcpIpState|JoinStep|StorageEvent|KyLED)::([A-Z]\w*)\b(?!\s*\()')


def masked(text):
    """Returns the text with blanks for comments and directives, and with question marks for the content
    of literals. The length stays the same."""
    def blot(match):
        lexeme = match.group()
        if lexeme[0] in '"\'':
            return lexeme[0] + '?' * (len(lexeme) - 2) + lexeme[0]
        return re.sub(r'[^\n]', ' ', lexeme)
    return LEXEMES.sub(blot, text)


def texts(text):
    """Yields start and end of each string literal, without its quotation marks."""
    for match in LEXEMES.finditer(text):
        if match.group()[0] == '"':
            yield match.start() + 1, match.end() - 1


def closing(code, opening):
    """Returns the position of the bracket that closes the one at the given position."""
    depth = 0
    for position in range(opening, len(code)):
        if code[position] == '(':
            depth += 1
        elif code[position] == ')':
            depth -= 1
            if depth == 0:
                return position
    return None


def call_statements(code):
    """Yields start and end of each statement that is a call, an assignment, a break or a continue,
    and not a declaration."""
    for match in CALL_STATEMENT.finditer(code):
        call = match.group('call')
        if code[:match.start()].count('(') - code[:match.start()].count(')') != 0:
            continue
        if DECLARATION.match(call) or call.startswith(('Q_DISABLE', 'Q_UNUSED', 'static_')):
            continue
        if call in ('break;', 'continue;') or '(' in call or '=' in call or '++' in call:
            yield match.start('call'), match.end('call')


def are_independent(first, second):
    """Returns whether both statements are assignments without a call, and neither uses the variable that
    the other one sets. Their order has no effect."""
    one, other = PLAIN_ASSIGNMENT.fullmatch(first), PLAIN_ASSIGNMENT.fullmatch(second)
    return bool(one and other) and not re.search(rf'\b{one[1]}\b', second) \
        and not re.search(rf'\b{other[1]}\b', first)


def other_numbers(digits):
    """Returns the replacements of a number: its neighbours or, for a large number such as a time or a
    size, half and double."""
    value = int(digits, 8 if re.fullmatch('0[0-7]+', digits) else 0)
    if value >= 1000 and digits.isdecimal():
        return [value // 2, value * 2]
    return [value + 1, value - 1] if value > 0 else [value + 1]


def edits(text, names):
    """Yields kind, start, end and replacement of every edit."""
    code = masked(text)
    for match in OPERATOR.finditer(code):
        operator = ' ' + match.group().strip() + ' '
        yield 'operator', match.start(), match.end(), \
            match.group().replace(operator.strip(), SWAPPED[operator].strip())
    for match in re.finditer(r'\+\+|--(?=\w)', code):
        yield 'operator', match.start(), match.end(), '--' if match.group() == '++' else '++'
    for match in re.finditer(r'\b(true|false)\b', code):
        yield 'truth', match.start(), match.end(), 'false' if match.group() == 'true' else 'true'
    for match in re.finditer(r'(?<![\w)\]])!(?=[A-Za-z_(])', code):
        yield 'truth', match.start(), match.end(), ''
    for match in re.finditer(r'\b(?:if|while) \(', code):
        end = closing(code, match.end() - 1)
        condition = text[match.end():end]
        # Leave out the negation of a single negated term: the removal of its exclamation mark above is
        # the same mutant.
        if not condition.startswith('!') or '&&' in condition or '||' in condition:
            yield 'condition', match.end(), end, '!(' + condition + ')'
    for match in NUMBER.finditer(code):
        for number in other_numbers(match.group()):
            yield 'number', match.start(), match.end(), str(number)
    for start, end in texts(text):
        yield 'text', start, end, text[start:end] + '~'
    for match in SCOPED_NAME.finditer(code):
        scope, name = match.groups()
        known = names[scope]
        other = known[(known.index(name) + 1) % len(known)]
        if other != name:
            yield 'name', match.start(2), match.end(2), other
    statements = list(call_statements(code))
    for start, end in statements:
        yield 'removed', start, end, ';'
    for (start, end), (next_start, next_end) in itertools.pairwise(statements):
        between = text[end:next_start]
        first, second = text[start:end], text[next_start:next_end]
        if not between.strip() and first != second and not are_independent(first, second):
            yield 'swapped', start, next_end, second + between + first


def scoped_names(contents):
    """Returns the names that the files use from each scope of SCOPED_NAME: they can replace each
    other."""
    names = collections.defaultdict(set)
    for text in contents:
        for scope, name in SCOPED_NAME.findall(masked(text)):
            names[scope].add(name)
    return {scope: sorted(found) for scope, found in names.items()}


def mutants(files, read):
    """Returns all mutants of the files, in the files' order."""
    contents = {file: read(file) for file in files}
    names = scoped_names(contents.values())
    found = []
    for file, text in contents.items():
        for kind, start, end, replacement in edits(text, names):
            content = text[:start] + replacement + text[end:]
            identity = hashlib.sha256((file + '\0' + content).encode()).hexdigest()[:12]
            found.append(Mutant(identity, file, text.count('\n', 0, start) + 1, kind,
                                ' '.join(text[start:end].split()), ' '.join(replacement.split()),
                                content))
    return found
