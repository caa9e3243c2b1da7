#!/usr/bin/env python3
"""Writes the examples that are built by hand, and shows how to write project files from a script.

    make_examples.py            writes them beside this script
    make_examples.py --check    writes nothing; fails if a file differs from what would be written

README.md lists the known answers; Tests/Verification compares the solver with them.
"""
import json
import math
import pathlib
import sys


def number(value):
    """The program's own form: shortest digits that read back to the same double, whole numbers without a fraction."""
    whole = abs(value) <= 2**53 and value == int(value)
    return str(int(value)) if whole else repr(value)


def word(value):
    """One value of an element record."""
    if isinstance(value, bool):
        return "true" if value else "false"
    return str(value) if isinstance(value, int) else number(value)


class Model:
    """Nodes, bars, beams, loads and restraints. Nodes are numbered from 0 in the order in which they are added."""

    def __init__(self, name):
        self.name = name
        self.bars, self.beams = [], []
        self.X, self.F, self.D = [], [], []

    def node(self, x, y, z, hold=""):
        """Adds a node; `hold` names the directions held, x y z for translations and X Y Z for rotations."""
        self.X.append((float(x), float(y), float(z)))
        self.F.append([0.0] * 6)
        self.D.append([direction in hold for direction in "xyzXYZ"])
        return len(self.X) - 1

    def nodes(self, *points, hold=""):
        return [self.node(*point, hold=hold) for point in points]

    def load(self, node, x, y, z):
        self.F[node][:3] = float(x), float(y), float(z)

    def difference(self, start, end):
        """Start minus end, as element records keep it, and the length."""
        dX = [a - b for a, b in zip(self.X[start], self.X[end])]
        return dX, math.sqrt(dX[0] * dX[0] + dX[1] * dX[1] + dX[2] * dX[2])

    def bar(self, start, end, area, young, compression_only=False, non_linear=False):
        dX, L = self.difference(start, end)
        self.bars.append({
            "id": len(self.bars), "startNodeId": start, "endNodeId": end, "materialID": 0, "area": float(area),
            "dXx": dX[0], "dXy": dX[1], "dXz": dX[2], "EAL3": area * young / math.pow(L, 3.0),
            "dUx": 0.0, "dUy": 0.0, "dUz": 0.0, "currentStrain": 0.0,
            "isCompressionOnly": compression_only, "isNonLinear": non_linear})

    def beam(self, start, end, area, inertia_y, inertia_z, young, shear):
        """A beam runs along x; its start has the larger x and the smaller number of its two nodes."""
        dX, L = self.difference(start, end)
        self.beams.append({
            "id": len(self.beams), "startNodeId": start, "endNodeId": end, "materialID": 0, "area": float(area),
            "inertiaY": float(inertia_y), "inertiaZ": float(inertia_z), "youngModulus": float(young),
            "shearModulus": float(shear), "dXx": dX[0], "dXy": dX[1], "dXz": dX[2], "EA": area * young / L,
            "EIz": inertia_z * young / L, "EIy": inertia_y * young / L, "GJ": inertia_y * shear / L,
            "isNonLinear": False, "dUx": 0.0, "dUy": 0.0, "dUz": 0.0, "dθx": 0.0, "dθy": 0.0, "dθz": 0.0})

    def text(self):
        """The project file: keys in the order that the program writes."""
        def records(elements):
            fields = [",\n".join(f'      "{key}": {word(value)}' for key, value in e.items()) for e in elements]
            return "[" + ",".join("\n    {\n" + body + "\n    }" for body in fields) + ("\n  ]" if fields else "]")

        def table(rows, form):
            return "[\n" + ",\n".join("    " + ", ".join(form(entry) for entry in row) for row in rows) + "\n  ]"

        values = {"name": json.dumps(self.name, ensure_ascii=False), "trussElements": records(self.bars),
                  "beamElements": records(self.beams), "X_I": table(self.X, number), "F_I": table(self.F, number),
                  "D_I": table(self.D, word)}
        return "{\n" + ",\n".join(f'  "{key}": {value}' for key, value in values.items()) + "\n}\n"


STEEL, STEEL_SHEAR = 210e9, 81e9  # Pa


def single_bar():
    m = Model("Single bar")
    m.nodes((0, 0, 0), hold="xyz")
    m.nodes((2, 0, 0), hold="yz")
    m.bar(0, 1, 1e-3, STEEL)
    m.load(1, 50e3, 0, 0)
    return m


def warren_truss():
    m = Model("Warren truss")
    lower = [m.node(6 * i, 0, 0, {0: "xyz", 4: "yz"}.get(i, "z")) for i in range(5)]
    upper = [m.node(6 * i + 3, 4, 0, "z") for i in range(4)]
    for a, b in [*zip(lower, lower[1:]), *zip(upper, upper[1:])]:
        m.bar(a, b, 2e-3, STEEL)
    for i, top in enumerate(upper):
        m.bar(lower[i], top, 2e-3, STEEL)
        m.bar(top, lower[i + 1], 2e-3, STEEL)
    for node in lower[1:4]:
        m.load(node, 0, -60e3, 0)
    return m


def braced_panel():
    """Node 0 is a corner that keeps stiffness along x when a diagonal drops out: the solver puts the first stored
    stiffness in the place of missing ones, so that one must not vanish."""
    m = Model("Braced panel")
    m.nodes((0, 3, 0), (4, 3, 0), hold="z")
    m.nodes((0, 0, 0), (4, 0, 0), hold="xyz")
    for a, b in [(2, 0), (3, 1), (0, 1)]:
        m.bar(a, b, 1e-3, STEEL)
    for a, b in [(2, 1), (3, 0)]:
        m.bar(a, b, 5e-4, STEEL, compression_only=True)
    m.load(0, 24e3, 0, 0)
    return m


def snap_through(drop=0.28):
    """`drop`: lowering of the apex as a share of its rise; the limit point is at 1 - 1/sqrt(3) = 0.4226.

    The bars lie over the diagonal x = y, so that they stiffen their supports along x, y and z; what they take from the
    apex's lateral stiffness when compressed a linear stay replaces, which carries no force."""
    m = Model("Snap-through")
    h, area = 0.6, 1e-3
    m.nodes((-3, -3, 0), (3, 3, 0), hold="xyz")
    apex = m.node(0, 0, h)
    side = m.node(2, -2, h, "xyz")
    m.bar(0, apex, area, STEEL, non_linear=True)
    m.bar(1, apex, area, STEEL, non_linear=True)
    m.bar(side, apex, area, STEEL)
    w = drop * h
    m.load(apex, 0, 0, -2 * area * STEEL / math.sqrt(18 + h * h) ** 3 * (h * w - w * w / 2) * (h - w))
    return m


def ten_bar_truss():
    m = Model("Ten-bar truss")
    m.nodes((720, 360, 0), (720, 0, 0), (360, 360, 0), (360, 0, 0), hold="z")
    m.nodes((0, 360, 0), (0, 0, 0), hold="xyz")
    joints = [(5, 3), (3, 1), (6, 4), (4, 2), (3, 4), (1, 2), (5, 4), (6, 3), (3, 2), (4, 1)]
    areas = [30.5218, 0.1, 23.1999, 15.2229, 0.1, 0.5514, 7.4572, 21.0364, 21.5284, 0.1]
    for (a, b), area in zip(joints, areas):
        m.bar(a - 1, b - 1, area, 1e7)
    m.load(1, 0, -100e3, 0)
    m.load(3, 0, -100e3, 0)
    return m


def twenty_five_bar_truss(name, loads):
    m = Model(name)
    m.nodes((-37.5, 0, 200), (37.5, 0, 200))
    m.nodes((-37.5, 37.5, 100), (37.5, 37.5, 100), (37.5, -37.5, 100), (-37.5, -37.5, 100))
    m.nodes((-100, 100, 0), (100, 100, 0), (100, -100, 0), (-100, -100, 0), hold="xyz")
    groups = [(0.010, "1-2"), (1.985, "1-4 2-3 1-5 2-6"), (2.996, "2-5 2-4 1-3 1-6"), (0.010, "3-6 4-5"),
              (0.010, "3-4 5-6"), (0.684, "3-10 6-7 4-9 5-8"), (1.677, "3-8 4-7 6-9 5-10"),
              (2.662, "3-7 4-8 5-9 6-10")]
    for area, joints in groups:
        for joint in joints.split():
            a, b = map(int, joint.split("-"))
            m.bar(a - 1, b - 1, area, 1e7)
    for node, load in loads.items():
        m.load(node - 1, *load)
    return m


def dome(name, rise, non_linear=False):
    """24 bars: six ribs from the apex to a ring of radius 12, the ring, and two legs from each of its nodes to the
    supports at radius 24. `rise`: height of the ring over the supports and of the apex over the ring."""
    m = Model(name)
    s = math.sqrt(3) / 2
    m.node(0, 0, sum(rise))
    ring = [(1, 0), (0.5, s), (-0.5, s), (-1, 0), (-0.5, -s), (0.5, -s)]
    feet = [(s, 0.5), (0, 1), (-s, 0.5), (-s, -0.5), (0, -1), (s, -0.5)]
    m.nodes(*[(12 * x, 12 * y, rise[0]) for x, y in ring])
    m.nodes(*[(24 * x, 24 * y, 0) for x, y in feet], hold="xyz")
    for i in range(6):
        for a, b in [(0, 1 + i), (1 + i, 1 + (i + 1) % 6), (1 + i, 7 + i), (1 + i, 7 + (i + 5) % 6)]:
            m.bar(a, b, 1e-3, STEEL, non_linear=non_linear)
    return m


def space_dome():
    m = dome("Space dome", (9, 3.5))
    m.load(0, 0, 0, -84e3)
    return m


def shallow_dome(apex=0.2, ring=0.03, outwards=0.002):
    """The loads are those that hold the apex and the ring lowered by `apex` and `ring` and the ring moved outwards."""
    m = dome("Shallow dome", (1.5, 0.75), non_linear=True)
    x = [list(point) for point in m.X]
    x[0][2] -= apex
    for node in range(1, 7):
        x[node] = [x[node][0] * (1 + outwards / 12), x[node][1] * (1 + outwards / 12), x[node][2] - ring]
    for bar in m.bars:
        s, e = bar["startNodeId"], bar["endNodeId"]
        chord = [a - b for a, b in zip(x[s], x[e])]
        lengthening = (sum(c * c for c in chord) - sum(bar[d] ** 2 for d in ("dXx", "dXy", "dXz"))) / 2
        for node, sign in ((s, 1), (e, -1)):
            for k in range(3):
                m.F[node][k] += sign * bar["EAL3"] * lengthening * chord[k] * (not m.D[node][k])
    m.F[0][:2] = [0.0, 0.0]  # by symmetry; the sums leave round-off
    return m


def cantilever():
    """Square tube 100 x 100 x 5 mm in three elements of 1 m."""
    m = Model("Cantilever")
    area, inertia = 0.1**2 - 0.09**2, (0.1**4 - 0.09**4) / 12
    m.nodes((3, 0, 0), (2, 0, 0), (1, 0, 0))
    m.nodes((0, 0, 0), hold="xyzXYZ")
    for i in range(3):
        m.beam(i, i + 1, area, inertia, inertia, STEEL, STEEL_SHEAR)
    m.load(0, 0, 0, -100)
    return m


def hung_girder():
    m = Model("Hung girder")
    right, middle, left = (m.node(2 - i, 0, 0, hold) for i, hold in enumerate(("xyzXYZ", "", "xyzXYZ")))
    top = m.node(1, 2, 0, "xyz")
    m.bar(top, middle, 1.92e-4, STEEL)
    for start, end in [(right, middle), (middle, left)]:
        m.beam(start, end, 3.5e-3, 1e-6, 1e-6, STEEL, STEEL_SHEAR)
    m.load(middle, 0, -20e3, 0)
    return m


def mixed_frame():
    """Columns and guy are bars, the girder is four beams of 1 m between the column heads, nodes 0 and 4."""
    m = Model("Mixed frame")
    girder = [m.node(4 - i, 4, 0, {0: "zX", 4: "z"}.get(i, "")) for i in range(5)]
    right, left, anchor = (m.node(x, 0, 0, "xyz") for x in (4, 0, 7))
    for start, end, area in [(girder[0], right, 2e-3), (girder[4], left, 2e-3), (girder[0], anchor, 5e-4)]:
        m.bar(start, end, area, STEEL)
    for start, end in zip(girder, girder[1:]):
        m.beam(start, end, 3.5e-3, 1e-6, 1e-6, STEEL, STEEL_SHEAR)
    m.load(girder[0], -15e3, -100e3, 0)
    m.load(girder[4], 0, -60e3, 0)
    return m


EXAMPLES = {
    "single-bar": single_bar(), "warren-truss": warren_truss(), "braced-panel": braced_panel(),
    "snap-through": snap_through(), "ten-bar-truss": ten_bar_truss(),
    "twenty-five-bar-truss": twenty_five_bar_truss(
        "Twenty-five-bar truss", {1: (0, 20e3, -5e3), 2: (0, -20e3, -5e3)}),
    "twenty-five-bar-truss-case-2": twenty_five_bar_truss(
        "Twenty-five-bar truss, load case 2",
        {1: (1e3, 10e3, -5e3), 2: (0, 10e3, -5e3), 3: (500, 0, 0), 6: (500, 0, 0)}),
    "space-dome": space_dome(), "shallow-dome": shallow_dome(), "cantilever": cantilever(),
    "hung-girder": hung_girder(), "mixed-frame": mixed_frame()}

if __name__ == "__main__":
    different = []
    for name, model in EXAMPLES.items():
        path = pathlib.Path(__file__).resolve().parent / f"{name}.json"
        if "--check" not in sys.argv[1:]:
            path.write_text(model.text(), encoding="utf-8")
        elif not path.exists() or path.read_bytes() != model.text().encode():
            different.append(path.name)
    if different:
        sys.exit("not as make_examples.py writes them: " + ", ".join(different))
