"""What a joined file's objects hold, token by token, against the inputs' objects.

Readers draw pages; what no page shows (links, attachments, metadata, structure) is compared here. The tokens are
those of any PDF reader, tabs included, and not those of the program under test.
"""

import re

import rules_model

TOKEN = re.compile(
    rb"(?P<blank>[\0\t\n\f\r ]+|%[^\r\n]*)|(?P<mark><<|>>|[\[\]{}])|(?P<hex><[^>]*>)|(?P<string>\()"
    rb"|(?P<word>/?[^\0\t\n\f\r ()<>\[\]{}/%]*)",
)
ESCAPE = re.compile(rb"\\([0-7]{1,3}|\r\n|[\s\S])|\r\n|\r")
SHORT_ESCAPES = {b"n": b"\n", b"r": b"\r", b"t": b"\t", b"b": b"\b", b"f": b"\f", b"\r\n": b"", b"\r": b"", b"\n": b""}


def string_value(text):
    def plain(match):
        escape = match[1]
        if escape is None:
            return b"\n"
        if escape[:1].isdigit() and escape[:1] < b"8":
            return bytes([int(escape, 8) & 255])
        return SHORT_ESCAPES.get(escape, escape)

    return ESCAPE.sub(plain, text)


def tokens(text):
    found, at = [], 0
    while at < len(text):
        match = TOKEN.match(text, at)
        at = match.end()
        if match["string"]:
            end = rules_model.skip_string(text, match.start())
            found.append(("string", string_value(text[match.start() + 1 : end - 1])))
            at = end
        elif match["hex"]:
            found.append(("string", match["hex"]))
        elif not match["blank"]:
            if match.end() == match.start():
                raise ValueError(f"no token at {text[at : at + 20]!r}")
            found.append(("mark" if match["mark"] else "word", match[0]))
    return found


def shifted(found, by):
    """The tokens with the object number of every reference raised."""
    result = list(found)
    for i in range(len(found) - 2):
        number, generation, letter = found[i : i + 3]
        if letter == ("word", b"R") and number[1].isdigit() and generation[1].isdigit():
            result[i] = ("word", str(int(number[1]) + by).encode())
    return result


def without_entry(found, key):
    """The dictionary's tokens without the outermost entries of that key."""
    result, depth, skipping = [], 0, False
    for token in found:
        opens, closes = token[1] in (b"<<", b"["), token[1] in (b">>", b"]")
        depth -= closes and token[0] == "mark"
        if depth == 1 and token[0] == "word" and token[1].startswith(b"/"):
            skipping = token[1] == key
        if depth == 0:
            skipping = False
        if not skipping:
            result.append(token)
        depth += opens and token[0] == "mark"
    return result


def stream_data(data, obj):
    return data[obj.stream_start : obj.stream_start + obj.length] if obj.stream else None


def differences(output_path, input_paths):
    """Messages about objects of the inputs that are not in the joined file as they were."""
    with open(output_path, "rb") as file:
        joined = rules_model.Document(file.read())
    inputs = []
    for path in input_paths:
        with open(path, "rb") as file:
            inputs.append(rules_model.Document(file.read()))
    if joined.size != sum(document.size for document in inputs):
        yield f"/Size is {joined.size} instead of {sum(document.size for document in inputs)}"
    yield from layout_mistakes(joined)
    yield from parent_mistakes(joined, joined.pages)
    base = 0
    for position, document in enumerate(inputs):
        for number, was in document.objects.items():
            now = joined.objects.get(base + number)
            for how in object_differences(joined, document, position, was, now, base):
                yield f"object {number} of input {position + 1}: {how}"
        base += document.size


def layout_mistakes(joined):
    """Objects that are not where the table says, or not closed right after their data; readers would put up with
    much of that."""
    for number, obj in joined.objects.items():
        if not joined.data.startswith(b"%d %d obj\r" % (number, obj.generation), joined.offsets[number]):
            yield f"object {number} does not begin at its offset {joined.offsets[number]}"
        if obj.stream and not joined.data.startswith(
            b"endstream\r\nendobj\r\n", obj.stream_start + obj.length
        ):
            yield f"object {number}: endstream does not stand right after the stream's {obj.length} bytes"


def parent_mistakes(joined, node):
    """Nodes of the page tree that do not lead back to the node whose kids they are."""
    for number, _ in references(dict(joined.objects[node].rows).get(b"/Kids", b"")):
        rows = dict(joined.objects[number].rows)
        if references(rows.get(b"/Parent", b""))[:1] != [(node, joined.objects[node].generation)]:
            yield f"object {number}: /Parent is {rows.get(b'/Parent')} and not the node {node} that lists it"
        yield from parent_mistakes(joined, number)


def references(value):
    return [(int(n), int(g)) for n, g in re.findall(rb"(\d+)\s+(\d+)\s+R", value)]


def object_differences(joined, document, position, was, now, base):
    replaced = was.number == document.info or (position > 0 and was.number == document.root)
    if replaced:
        return
    if now is None:
        yield "is not there"
        return
    if stream_data(document.data, was) != stream_data(joined.data, now):
        yield "has other stream data"
    old, new = shifted(tokens(was.body), base), tokens(now.body)
    # The page tree's roots get a parent, the first catalog another page tree.
    rearranged = {document.pages: b"/Parent", document.root: b"/Pages"}.get(was.number)
    if rearranged:
        old, new = without_entry(old, rearranged), without_entry(new, rearranged)
    if old != new:
        at = next((i for i, (a, b) in enumerate(zip(old, new)) if a != b), min(len(old), len(new)))
        yield f"token {at + 1}: {old[at : at + 3]} became {new[at : at + 3]}"
