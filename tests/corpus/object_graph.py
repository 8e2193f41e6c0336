"""Whether two documents hold the same objects, whatever their numbers are and wherever they are written.

Objects are read by qpdf. Both documents are walked side by side from a pair of objects on; a reference and the value
itself are the same, an entry that is null is none, and of a stream only its bytes count, not how their length is given.
"""

import json
import re

import readers

REFERENCE = re.compile(r"\d+ \d+ R$")
# What joining and preparing set right in a node of the page tree.
OF_PAGE_TREE = {"/Count", "/Parent"}


class Graph:
    def __init__(self, path):
        listing = readers.run(["qpdf", "--json-output", "--json-stream-data=inline", "--decode-level=none", path, "-"])
        self.objects = json.loads(listing.stdout)["qpdf"][1]
        self.root = self.objects["trailer"]["value"]["/Root"]

    def resolve(self, value):
        """The value, or the stream, that a reference leads to; None where it leads nowhere."""
        for _ in range(100):
            if not isinstance(value, str) or not REFERENCE.match(value):
                return value
            found = self.objects.get("obj:" + value, {})
            if "stream" in found:
                return Stream(found["stream"])
            value = found.get("value")
        return None

    def catalog(self):
        return self.resolve(self.root)

    def pages(self):
        """The references to the pages, in order; a page that is no object of its own stands for itself."""
        found, open_kids = [], [self.catalog()["/Pages"]]
        while open_kids:
            reference = open_kids.pop()
            node = self.resolve(reference)
            kids = self.resolve(node.get("/Kids")) if isinstance(node, dict) else []
            if kids is None:
                found.append(reference)
            elif kids:
                open_kids.extend(reversed(kids))
        return found


class Stream:
    def __init__(self, stream):
        self.data = stream["data"]
        self.dictionary = {key: value for key, value in stream["dict"].items() if key != "/Length"}


class Comparison:
    def __init__(self, a, b):
        self.a, self.b = a, b
        self._there, self._back = {}, {}  # which object of one document is which one of the other

    def differences(self, a, b, name):
        """One message for the first place where the objects that both lead to are not the same."""
        todo = [(a, b, name)]
        while todo:
            a, b, name = todo.pop()
            if is_reference(a) and is_reference(b):
                if self._there.get(a) == b and self._back.get(b) == a:
                    continue
                both_new = a not in self._there and b not in self._back
                self._there[a], self._back[b] = b, a
                # Numbers, names and the like are often shared and may be written in place.
                if not both_new and isinstance(self.a.resolve(a), (dict, list, Stream)):
                    yield f"{name}: {a} and {b} are other objects elsewhere"
                    return
            a, b = self.a.resolve(a), self.b.resolve(b)
            problem = self._compare(a, b, name, todo)
            if problem:
                yield problem
                return

    def _compare(self, a, b, name, todo):
        if type(a) is not type(b):
            return f"{name}: {a!r:.60} became {b!r:.60}"
        if isinstance(a, Stream):
            todo.append((a.dictionary, b.dictionary, name))
            return None if a.data == b.data else f"{name}: the bytes of the stream differ"
        if isinstance(a, list):
            todo.extend((x, y, f"{name}[{i}]") for i, (x, y) in enumerate(zip(a, b)))
            return None if len(a) == len(b) else f"{name}: {len(a)} items became {len(b)}"
        if isinstance(a, dict):
            a, b = self._entries(self.a, a), self._entries(self.b, b)
            todo.extend((value, b.get(key), name + key) for key, value in a.items())
            return None if a.keys() == b.keys() else f"{name}: only one has {sorted(a.keys() ^ b.keys())}"
        return None if a == b else f"{name}: {a!r:.60} became {b!r:.60}"

    @staticmethod
    def _entries(graph, dictionary):
        left_out = OF_PAGE_TREE if "/Kids" in dictionary and dictionary.get("/Type") == "/Pages" else ()
        kept = {key: value for key, value in dictionary.items() if key not in left_out}
        return {key: value for key, value in kept.items() if graph.resolve(value) is not None}


def is_reference(value):
    return isinstance(value, str) and REFERENCE.match(value) is not None


def catalog_differences(a, b):
    """Everything that the catalogs lead to, but for the page tree itself and for pages that `b` has after those of `a`."""
    walk = Comparison(a, b)
    first, second = ({k: v for k, v in graph.catalog().items() if k != "/Pages"} for graph in (a, b))
    yield from walk.differences(first, second, "catalog")
    yield from page_differences(walk, a.pages(), b.pages()[: len(a.pages())])


def page_differences(walk, pages, others):
    if len(pages) != len(others):
        yield f"{len(pages)} pages became {len(others)}"
    for number, (page, other) in enumerate(zip(pages, others), 1):
        yield from walk.differences(page, other, f"page {number}")
