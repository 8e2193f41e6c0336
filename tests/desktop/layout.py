"""Whether every control has its place to itself."""

CONTROLS = ("push button", "panel", "radio button", "label")


def faults(node):
    """What sticks out of what holds it, and what covers a neighbour, among the controls below a window."""
    found = []
    inside = [child for child in node.children if "showing" in child.states]
    places = {child: child.extents for child in inside}
    edge = node.extents
    for child in inside:
        if child.role in CONTROLS and _common(places[child], edge) != places[child]:
            found.append(f"{child} at {places[child]} sticks out of {node} at {edge}")
    controls = [child for child in inside if child.role in CONTROLS]
    for number, one in enumerate(controls):
        for other in controls[number + 1:]:
            _, _, width, height = _common(places[one], places[other])
            if width > 0 and height > 0:
                found.append(f"{one} at {places[one]} covers {other} at {places[other]}")
    for child in inside:
        if child.role in ("filler", "panel", "split pane"):
            found += faults(child)
    return found


def _common(one, other):
    left, top = max(one[0], other[0]), max(one[1], other[1])
    right = min(one[0] + one[2], other[0] + other[2])
    bottom = min(one[1] + one[3], other[1] + other[3])
    return left, top, right - left, bottom - top
