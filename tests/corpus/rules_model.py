"""A second, independent statement of what the program accepts.

The model reads a document from memory and says whether it can be joined and, if not, where and why. It shares
no code with the engine, so a document on which the two disagree points at a mistake in one of them.
"""

import re

BLANKS = b" \r\n"
LINE_ENDS = b"\r\n"
DELIMITERS = b" ()<>[]{}/%\r\n"
KEYWORD_ENDS = DELIMITERS + b"\\"
LONGEST_LINE = 100_000
MOST_OBJECTS = 350_000
FREE_GENERATION = 65535


class Refused(Exception):
    """A broken rule. `stage` is "acceptance" (the cheap test of a file's outline) or "reading" (a pass)."""

    def __init__(self, stage, rule, obj=None):
        super().__init__(rule)
        self.stage, self.rule, self.obj = stage, rule, obj


# ---------------------------------------------------------------------------------------------- words and lines


def decimal_token(text):
    """The first word that spaces separate, as an unsigned number, and its length; (0, 0) when it is none."""
    word = text.strip(b" ").split(b" ", 1)[0]
    if not re.fullmatch(rb"[0-9]{1,10}", word) or int(word) > 2147483646:
        return 0, 0
    return int(word), len(word)


def leading_number(text):
    rest = text.lstrip(BLANKS)
    return decimal_token(re.split(rb"[ \r\n]", rest, maxsplit=1)[0])


def read_line(data, offset):
    """(offset of the line's first byte, line), or None at the end of the file and for a line never ended."""
    if offset < 0:
        return None
    start = offset
    while start < len(data) and data[start] in LINE_ENDS:
        start += 1
    ends = [e for e in (data.find(b"\r", start), data.find(b"\n", start)) if e >= 0]
    if start >= len(data) or not ends or min(ends) - start > LONGEST_LINE:
        return None
    return start, data[start : min(ends)]


def read_short_line(data, offset):
    """What one look at 16 bytes shows of a line; None when nothing is there."""
    chunk = data[offset : offset + 16].lstrip(LINE_ENDS)
    return re.split(rb"[\r\n]", chunk, maxsplit=1)[0] or None


def number_pair(text, start, keywords):
    """(first, second, keyword index, position of the first token, resume) for "12 0 obj" at start, else None."""
    token = re.compile(rb"[ \r\n]*([^ \r\n]+)[ \r\n]+([^ \r\n]+)[ \r\n]+").match(text, start)
    if not token:
        return None
    numbers = []
    for word in token.groups():
        value, digits = decimal_token(word)
        if digits != len(word):
            return None
        numbers.append(value)
    end = token.end()
    while end < len(text) and text[end] not in KEYWORD_ENDS:
        end += 1
    if text[token.end() : end] not in keywords:
        return None
    return numbers[0], numbers[1], keywords.index(text[token.end() : end]), token.start(1), end


# -------------------------------------------------------------------------------------------------- dictionaries


def skip_string(text, at):
    """The position after the literal string that opens at `at`, brackets nested and escapes counted."""
    depth = 0
    while at < len(text):
        c = text[at]
        if c == 0x5C:
            at += 1
        elif c == 0x28:
            depth += 1
        elif c == 0x29:
            depth -= 1
            if depth == 0:
                return at + 1
        at += 1
    return len(text)


def comment_end(text, at):
    """The position of the line end that closes the comment at `at`; -1 when there is none, so it is plain text."""
    found = re.compile(rb"[\r\n]").search(text, at)
    return found.start() if found else -1


def dictionary_rows(text):
    """The (key, value) rows of a dictionary's text in the order written; None when it is no dictionary."""
    text = text.lstrip(BLANKS).rstrip(b" ")
    if len(text) < 4 or not text.startswith(b"<<") or not text.endswith(b">>"):
        return None
    inner, rows, at = text[2:-2], [], 0
    while at < len(inner):
        c = inner[at : at + 1]
        if c == b"%" and comment_end(inner, at) >= 0:
            at = comment_end(inner, at)
        elif c != b"/":
            at += 1
        else:
            key_end = at + 1
            while key_end < len(inner) and inner[key_end] not in DELIMITERS:
                key_end += 1
            value, behind = dictionary_value(inner, key_end)
            rows.append((inner[at:key_end], value))
            at = behind
    return rows


def dictionary_value(inner, at):
    while at < len(inner):
        if inner[at] in BLANKS:
            at += 1
        elif inner[at : at + 1] == b"%" and comment_end(inner, at) >= 0:
            at = comment_end(inner, at)
        else:
            break
    value, depth, first = b"", 0, True
    while at < len(inner):
        c = inner[at : at + 1]
        if c == b"/" and depth == 0 and not first:
            break
        first = False
        if c == b"(":
            end = skip_string(inner, at)
        elif inner.startswith((b"<<", b">>"), at):
            depth += 1 if c == b"<" else -1
            end = at + 2
        elif c == b"<":
            end = (inner.find(b">", at) + 1) or len(inner)
        elif c == b"%" and comment_end(inner, at) >= 0:
            at = comment_end(inner, at)
            continue
        else:
            depth += {b"[": 1, b"]": -1}.get(c, 0)
            end = at + 1
        value += inner[at:end]
        at = end
    return value.strip(BLANKS), at


def named_object(value):
    """The object number of "3 0 R"; -1 when the value is no reference."""
    value = value.strip(b" ")
    if len(value) <= 2 or not value.endswith(b"R"):
        return -1
    number, digits = decimal_token(value[:-1].strip(b" "))
    return number if digits else -1


# --------------------------------------------------------------------------------------------------- the outline


def check_outline(data):
    """The offset of the newest cross-reference section, after its keyword."""

    def refuse(rule):
        raise Refused("acceptance", rule)

    header = read_short_line(data, 0)
    if header is None or not header.startswith(b"%PDF-") or len(header) < 8:
        refuse("header not at the start")
    second = read_short_line(data, len(header))
    if second is None or not second.startswith(b"%"):
        refuse("second line no comment")
    if len(second) < 5:
        refuse("second line short")
    if len(data) < 40:
        refuse("shorter than 40 bytes")
    tail = data[-40:]
    end_mark, start_mark = tail.find(b"%%EOF"), tail.find(b"startxref")
    if end_mark < 0:
        refuse("%%EOF not in the last 40 bytes")
    if start_mark < 0 or start_mark + 9 > end_mark:
        refuse("startxref not in the last 40 bytes")
    number, digits = leading_number(tail[start_mark + 9 : end_mark])
    if digits == 0:
        refuse("startxref without a number")
    keyword = data[number : number + 6]
    if not keyword.startswith(b"xref"):
        refuse("startxref not at xref" if b"xref" in data[number : number + 40] else "no xref table")
    return number + 4 + sum(keyword[i : i + 1] == end for i in (4, 5) for end in (b"\r", b"\n"))


# ------------------------------------------------------------------------------------- cross-reference sections


class Section:
    def __init__(self):
        self.size = self.prev = self.root = self.info = -1
        self.encrypted = False


def read_section(data, offset, objects):
    def refuse(rule, obj=None):
        raise Refused("reading", rule, obj)

    line = read_line(data, offset)
    while line and (not line[1].strip(BLANKS) or re.split(rb"[ \r\n]", line[1].lstrip(BLANKS))[0] == b"xref"):
        line = read_line(data, line[0] + len(line[1]) + 1)
    if not line:
        refuse("no subsection header")
    header = line[1]
    first, digits = decimal_token(header)
    rest = header[digits:].strip(b" ")
    if len(header) < 3 or not header[:1].isdigit() or not digits or not re.fullmatch(rb"[0-9]+", rest):
        refuse("no subsection header")
    count, _ = decimal_token(rest)
    if first + count > MOST_OBJECTS:
        refuse("too many objects")
    for number in range(first, first + count):
        line = read_line(data, line[0] + len(line[1]) + 1)
        if not line or not read_entry(line[1], number, objects):
            refuse("cross-reference entry", number)
    return read_trailer(data, line, refuse)


def read_entry(text, number, objects):
    offset, digits = decimal_token(text)
    rest = text[10:].strip(b" ")
    generation, generation_digits = decimal_token(rest)
    keyword = rest[5:].strip(b" ")
    if len(text) < 18 or not text[:1].isdigit() or digits != 10:
        return False
    if len(rest) < 7 or generation_digits != 5 or not keyword:
        return False
    objects.setdefault(number, (offset, generation))
    return True


def read_trailer(data, line, refuse):
    lines = []
    while True:
        line = read_line(data, line[0] + len(line[1]) + 1)
        if not line:
            refuse("no startxref after the trailer")
        if line[1].startswith(b"startxref"):
            break
        if not line[1].startswith(b"trailer"):
            lines.append(line[1])
    if not lines:
        refuse("trailer dictionary on the keyword's line")
    section = Section()
    if re.fullmatch(rb"[0-9]+ +[0-9]+ *", lines[0]):
        section.note = "second subsection"
    elif not b"".join(lines).strip(BLANKS).startswith(b"<<"):
        section.note = "trailer dictionary on the keyword's line"
    else:
        section.note = "trailer without a usable /Size"
    for key, value in dictionary_rows(b"".join(lines).strip(BLANKS)) or []:
        number, digits = decimal_token(value)
        if key.startswith(b"/Size"):
            section.size = number if digits else section.size
        elif key.startswith(b"/Root"):
            section.root = named_object(value)
        elif key.startswith(b"/Info"):
            section.info = named_object(value)
        elif key.startswith(b"/Prev"):
            section.prev = number if digits else section.prev
        elif key.startswith(b"/Encrypt"):
            section.encrypted = True
    return section


def read_chain(data, offset):
    """The sections, newest first, and the objects {number: (offset, generation)}."""
    sections, objects, seen = [], {}, set()
    while offset >= 1:
        if offset in seen:
            raise Refused("reading", "/Prev leads in a circle")
        seen.add(offset)
        section = read_section(data, offset, objects)
        if not sections and section.size <= 0:
            raise Refused("reading", section.note)
        if section.size > max([s.size for s in sections] or [MOST_OBJECTS]):
            raise Refused("reading", "/Size of an older section is larger")
        sections.append(section)
        offset = section.prev
    if max(objects, default=-1) >= sections[0].size:
        raise Refused("reading", "more objects than /Size")
    return sections, objects


# ------------------------------------------------------------------------------------------------------- objects


class Object:
    def __init__(self, number, generation, body, stream):
        self.number, self.generation, self.body, self.stream = number, generation, body, stream
        self.value = None  # of a plain number
        self.length_reference = None
        self.length = self.stream_start = None

    @property
    def rows(self):
        return dictionary_rows(self.body) if self.body.startswith(b"<<") else None


def scan_object(data, number, offset, generation):
    def refuse(rule):
        raise Refused("reading", rule, number)

    text, keyword_at = b"", -1
    while not text.endswith((b"stream", b"endobj")):
        line = read_line(data, offset)
        if not line:
            refuse("object never ends")
        found = line[1].rfind(b"stream")
        keyword_at = line[0] + found if found >= 0 else -1
        text = (text + b"\r" + line[1]).strip(BLANKS)
        offset = line[0] + len(line[1]) + 1
    header = number_pair(text, 0, [b"obj"])
    if header is None or header[0] != number:
        refuse("object header")
    stream = text.endswith(b"stream")
    obj = Object(number, generation, text[header[4] : -6].strip(BLANKS), stream)
    if stream:
        check_stream(data, obj, keyword_at, refuse)
    elif not obj.body or obj.body[0] not in DELIMITERS:
        obj.value, digits = decimal_token(obj.body)
        if not digits:
            refuse("bare value is no plain number")
    return obj


def check_stream(data, obj, keyword_at, refuse):
    behind = data[keyword_at + 6 : keyword_at + 8]
    if keyword_at < 0 or not (behind.startswith(b"\n") or behind == b"\r\n"):
        refuse("stream keyword without a line feed")
    obj.stream_start = keyword_at + (7 if behind.startswith(b"\n") else 8)
    length = dict(reversed(obj.rows or [])).get(b"/Length")
    if length is None:
        refuse("stream without /Length")
    number, digits = decimal_token(length)
    if not digits:
        refuse("/Length is no plain number")
    if length.endswith(b"R"):
        obj.length_reference = (number, leading_number(length[digits:])[0])
    else:
        obj.length = number


def reference(text):
    """The first "n g R" of a value."""
    for token in re.finditer(rb"[0-9]+", text):
        found = number_pair(text, token.start(), [b"R"])
        if found:
            return found[0], found[1]
    return None


class Document:
    """An accepted document as the rules see it."""

    def __init__(self, data):
        sections, entries = read_chain(data, check_outline(data))
        self.size = sections[0].size
        self.encrypted = sections[0].encrypted
        self.root = next((s.root for s in sections if s.root >= 0), -1)
        self.info = next((s.info for s in sections if s.info >= 0), -1)
        self.data = data
        self.offsets = {number: offset for number, (offset, _) in entries.items()}
        self.objects = {}
        for number in range(self.size):
            if number not in entries:
                raise Refused("reading", "object number not listed", number)
            offset, generation = entries[number]
            if generation != FREE_GENERATION:
                self.objects[number] = scan_object(data, number, offset, generation)
        self.resolve_lengths()
        self.check_pages()

    @property
    def catalog_range(self):
        """Where the catalog stands in the file."""
        start = self.offsets[self.root]
        return start, self.data.index(b"endobj", start)

    def in_catalog(self, key):
        return key in dict(self.objects[self.root].rows)

    def resolve_lengths(self):
        for obj in self.objects.values():
            if obj.length_reference:
                target = self.objects.get(obj.length_reference[0])
                if not target or target.value is None or target.generation != obj.length_reference[1]:
                    raise Refused("reading", "/Length leads to no number", obj.number)
                obj.length = target.value

    def check_pages(self):
        def refuse(rule):
            raise Refused("reading", rule)

        catalog = self.objects.get(self.root)
        pages = reference(dict(reversed((catalog and catalog.rows) or [])).get(b"/Pages", b""))
        if pages is None:
            refuse("catalog without /Pages")
        self.pages = pages[0]
        root = self.objects.get(self.pages)
        count = dict(reversed((root and root.rows) or [])).get(b"/Count")
        if count is None:
            refuse("page tree without /Count")
        if not re.fullmatch(rb"[0-9]+", count):
            target = reference(count)
            obj = target and self.objects.get(target[0])
            if not obj or obj.value is None:
                refuse("page tree without /Count")


def verdict(data):
    """(Document, None) for a document that can be joined, (None, Refused) for one that cannot."""
    try:
        return Document(data), None
    except Refused as refusal:
        return None, refusal
