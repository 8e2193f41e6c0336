"""What a document's catalog holds for its reader: outline, form, destinations, labels, layers, attachments, links.

Everything is read from qpdf's listing of the objects; pages count from 0.
"""

import hashlib
import subprocess

from object_graph import Graph, Stream

NOWHERE = None
FIELD_KEYS = ("/FT", "/V", "/DV", "/Ff", "/Opt", "/MaxLen")


class Contents:
    """`pages`: the references to the pages; everything else as the names say."""

    def __init__(self, path):
        self.path = path
        self.graph = Graph(path)
        self.catalog = self.graph.catalog()
        self.pages = self.graph.pages()
        self._place = {reference: number for number, reference in enumerate(self.pages)}
        self.destinations = self._destinations()
        self.outline = self._outline()
        self.fields = self._fields()
        self.labels = self._labels()
        self.layers = self._layers()
        self.attachments = self._attachments()
        self.links = [self._links_of(page) for page in self.pages]
        self.tags = self._count_tags()

    def get(self, value, *keys):
        """The value under the keys, one after the other; None where one is missing."""
        value = self.graph.resolve(value)
        for key in keys:
            if isinstance(value, Stream):
                value = value.dictionary
            value = self.graph.resolve(value.get(key)) if isinstance(value, dict) else None
        return value

    def raw(self, value, key):
        found = self.graph.resolve(value)
        return found.get(key) if isinstance(found, dict) else None

    def tree(self, root, leaves):
        """The pairs of a name or number tree."""
        found, todo, seen = [], [root], set()
        while todo:
            node = todo.pop()
            if isinstance(node, str):
                if node in seen:
                    continue
                seen.add(node)
            pairs = self.get(node, leaves) or []
            found.extend(zip(pairs[::2], pairs[1::2]))
            todo.extend(reversed(self.get(node, "/Kids") or []))
        return found

    def _names(self, kind):
        return [(self.graph.resolve(name), value) for name, value in self.tree(self.get(self.catalog, "/Names", kind), "/Names")]

    def _destinations(self):
        """By name: a string for the tree's, a name for the old dictionary's."""
        found = {}
        for name, value in self._names("/Dests"):
            found.setdefault(name, self._place_of_array(value))
        for name, value in (self.get(self.catalog, "/Dests") or {}).items():
            found.setdefault(name, self._place_of_array(value))
        return found

    def _place_of_array(self, value):
        array = self.graph.resolve(value)
        if isinstance(array, dict):
            array = self.graph.resolve(array.get("/D"))
        if not isinstance(array, list) or not array:
            return NOWHERE
        page = array[0] if isinstance(array[0], int) else self._place.get(array[0], NOWHERE)
        # The page, and where on it.
        return NOWHERE if page is NOWHERE else (page, tuple(map(str, array[1:])))

    def _target(self, holder):
        """Where an outline item or a link leads: ("page", ...), or another action as it is; None for nowhere."""
        action = self.get(holder, "/A")
        if isinstance(action, dict) and action.get("/S") != "/GoTo":
            shown = {key: self.graph.resolve(value) for key, value in action.items() if key in ("/S", "/URI", "/F", "/N")}
            return ("action", str(sorted(shown.items(), key=str)))
        destination = self.get(action, "/D") if isinstance(action, dict) else self.get(holder, "/Dest")
        if isinstance(destination, str):
            destination = self.destinations.get(destination, NOWHERE)
        else:
            destination = self._place_of_array(destination)
        return NOWHERE if destination is NOWHERE else ("page", *destination)

    def _outline(self):
        """(depth, title, target) of each item, as they are shown."""
        found, seen = [], set()
        todo = [(0, self.raw(self.get(self.catalog, "/Outlines"), "/First"))]
        while todo:
            depth, item = todo.pop()
            if item is None or item in seen or not isinstance(self.graph.resolve(item), dict):
                continue
            seen.add(item)
            found.append((depth, self.get(item, "/Title"), self._target(item)))
            todo.append((depth, self.raw(item, "/Next")))
            todo.append((depth + 1, self.raw(item, "/First")))
        return found

    def title(self):
        """Of the information dictionary; None where there is none."""
        return self.get(self.graph.objects["trailer"]["value"].get("/Info"), "/Title")

    def _fields(self):
        """(full name, what is inherited, pages of its widgets) of each field that ends a branch."""
        place = {}
        for number, page in enumerate(self.pages):
            for annotation in self.get(page, "/Annots") or []:
                place.setdefault(annotation if isinstance(annotation, str) else id(annotation), number)
        found, seen = [], set()
        todo = [(field, (), {}) for field in reversed(self.get(self.catalog, "/AcroForm", "/Fields") or [])]
        form = {key: self.get(self.catalog, "/AcroForm", key) for key in ("/DA", "/Q")}
        while todo:
            field, names, inherited = todo.pop()
            if field in seen or not isinstance(self.graph.resolve(field), dict):
                continue
            seen.add(field)
            own = {key: self.get(field, key) for key in (*FIELD_KEYS, "/DA", "/Q")}
            values = {**inherited, **{key: shown(value) for key, value in own.items() if value is not None}}
            name = self.get(field, "/T")
            names = names if name is None else (*names, name)
            kids = self.get(field, "/Kids") or []
            below = [kid for kid in kids if self.get(kid, "/T") is not None]
            if below:
                todo.extend((kid, names, values) for kid in reversed(below))
                continue
            widgets = [place.get(widget) for widget in (kids or [field])]
            # Which letter stands for which font is compared by how the field looks.
            values.pop("/DA", None)
            quadding = values.pop("/Q", None) or shown(form["/Q"] or 0)
            found.append((names, tuple(sorted(values.items())), quadding, tuple(widgets)))
        return found

    def _labels(self):
        """Of each page as a reader shows it; None where the document has none."""
        if self.get(self.catalog, "/PageLabels") is None:
            return None
        ranges = sorted((first, self.graph.resolve(label)) for first, label in self.tree(self.catalog["/PageLabels"], "/Nums"))
        labels = []
        for page in range(len(self.pages)):
            start, label = max(((f, l) for f, l in ranges if f <= page), key=lambda pair: pair[0], default=(0, {"/S": "/D"}))
            number = (self.graph.resolve(label.get("/St")) or 1) + page - start
            labels.append((text(self.graph.resolve(label.get("/P")) or "u:"), label.get("/S"), number if label.get("/S") else None))
        return labels

    def _layers(self):
        """(name, whether it is hidden, locked) of each group."""
        properties = self.get(self.catalog, "/OCProperties")
        if not isinstance(properties, dict):
            return []
        default = self.get(properties, "/D") or {}
        off = self.get(default, "/BaseState") == "/OFF"
        hidden = set(self.get(default, "/OFF") or [])
        shown_ones = set(self.get(default, "/ON") or [])
        locked = set(self.get(default, "/Locked") or [])
        groups = self.get(properties, "/OCGs") or []
        return [
            (text(self.get(g, "/Name") or "u:"), (g in hidden or off) and g not in shown_ones, g in locked) for g in groups
        ]

    def order_of_layers(self):
        """How many groups are listed for the reader."""
        found, todo = 0, list(self.get(self.catalog, "/OCProperties", "/D", "/Order") or [])
        while todo:
            item = todo.pop()
            item = self.graph.resolve(item) if not isinstance(self.graph.resolve(item), dict) else item
            todo.extend(item if isinstance(item, list) else [])
            found += not isinstance(item, list) and isinstance(self.graph.resolve(item), dict)
        return found

    def _attachments(self):
        """The bytes' digests, by name."""
        found = {}
        for name, value in self._names("/EmbeddedFiles"):
            files = self.get(value, "/EF") or {}
            data = [self.graph.resolve(file).data for file in files.values() if isinstance(self.graph.resolve(file), Stream)]
            found[name] = sorted({hashlib.sha256(part.encode()).hexdigest() for part in data})
        return found

    def _links_of(self, page):
        annotations = self.get(page, "/Annots") or []
        return [self._target(link) for link in annotations if self.get(link, "/Subtype") == "/Link"]

    def _count_tags(self):
        """How many structure elements the tree leads to, and how many marks and objects lead back to one."""
        elements, seen = 0, set()
        todo = [self.raw(self.get(self.catalog, "/StructTreeRoot"), "/K")]
        while todo:
            item = todo.pop()
            if isinstance(item, str):
                if item in seen:
                    continue
                seen.add(item)
            value = self.graph.resolve(item)
            if isinstance(value, list):
                todo.extend(value)
            elif isinstance(value, dict) and value.get("/Type") not in ("/MCR", "/OBJR") and "/S" in value:
                elements += 1
                todo.append(value.get("/K"))
        parents = dict(self.tree(self.get(self.catalog, "/StructTreeRoot", "/ParentTree"), "/Nums"))
        back = sum(1 for page in self.pages if self._is_parent(parents.get(self.get(page, "/StructParents"))))
        return elements, back

    def _is_parent(self, value):
        value = self.graph.resolve(value)
        return isinstance(value, (list, dict)) and bool(value)


def text(value):
    """A string without qpdf's mark of how it is written."""
    return value[2:] if isinstance(value, str) and value[:2] in ("u:", "b:") else value


def shown(value):
    return "a stream" if isinstance(value, Stream) else str(value)


def named_destinations(path):
    """How many a third program finds."""
    said = subprocess.run(["pdfinfo", "-dests", path], stdin=subprocess.DEVNULL, capture_output=True, timeout=120)
    return sum(1 for line in said.stdout.splitlines() if line.split()[:1] and line.split()[0].isdigit())
