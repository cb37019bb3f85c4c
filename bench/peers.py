"""The peers of the benchmarks that live in Python; started by BenchPython, which documents the protocol.

    open NAME KIND ARGUMENT...   loads the data of one operation
    run NAME                     answers with the time of one run in ms
    save NAME FILE               writes the result of the last run as plain bytes
    close NAME
    atlas SOURCE FILE            repeats the labels of a NIfTI file until they fill the cube
    slice SOURCE Z FILE          scales a slice of a NIfTI file until it fills a square
"""

import gzip
import struct
import sys
import time

import numpy as np


def load_bits(path):
    packed = np.fromfile(path, np.uint8)
    return np.unpackbits(packed, bitorder="little").view(bool)


class Add:
    """labels[mask] = value, sparing locked labels where there are any."""

    def __init__(self, bits, labels, value, *locked):
        self.mask = load_bits(bits)
        self.original = np.fromfile(labels, np.uint8)
        self.labels = self.original.copy()
        self.value = int(value)
        self.unlocked = np.ones(256, bool)
        self.unlocked[[int(label) for label in locked]] = False

    def prepare(self):
        self.labels[:] = self.original

    def run(self):
        if self.unlocked.all():
            self.labels[self.mask] = self.value
        else:
            self.labels[self.mask & self.unlocked[self.labels]] = self.value

    def result(self):
        return self.labels


class Select:
    """The voxels of one label, as booleans: NumPy's own form of a selection."""

    def __init__(self, labels, value):
        self.labels = np.fromfile(labels, np.uint8)
        self.value = np.uint8(value)
        self.mask = np.zeros(self.labels.size, bool)

    def prepare(self):
        self.mask[:] = False

    def run(self):
        np.equal(self.labels, self.value, out=self.mask)

    def result(self):
        return np.packbits(self.mask, bitorder="little")


class Invert:
    def __init__(self, bits):
        self.mask = load_bits(bits)
        self.inverted = self.mask.copy()

    def prepare(self):
        self.inverted[:] = self.mask

    def run(self):
        np.logical_not(self.inverted, out=self.inverted)

    def result(self):
        return np.packbits(self.inverted, bitorder="little")


class Flood:
    """scikit-image, 6-connected, values within a tolerance of the seed's."""

    def __init__(self, image, x, y, z, tolerance):
        from skimage.segmentation import flood

        self.flood = flood
        self.image = np.fromfile(image, np.uint16).reshape(size, size, size)
        self.seed = (int(z), int(y), int(x))
        self.tolerance = int(tolerance)

    def prepare(self):
        self.mask = None

    def run(self):
        self.mask = self.flood(self.image, self.seed, connectivity=1, tolerance=self.tolerance)

    def result(self):
        return np.packbits(self.mask.ravel(), bitorder="little")


class FillHoles:
    """SciPy's own, 6-connected."""

    def __init__(self, bits):
        from scipy import ndimage

        self.ndimage = ndimage
        self.mask = load_bits(bits).reshape(size, size, size)

    def prepare(self):
        self.filled = None

    def run(self):
        self.filled = self.ndimage.binary_fill_holes(self.mask)

    def result(self):
        return np.packbits(self.filled.ravel(), bitorder="little")


class FillOutside(FillHoles):
    """Pieces of the background are numbered, and what the corner's piece does not hold is filled."""

    def run(self):
        pieces, _ = self.ndimage.label(~self.mask)
        self.filled = pieces != pieces[0, 0, 0]


class Label:
    """SciPy: all 6-connected components of a window of values, and the one that holds the seed."""

    def __init__(self, image, x, y, z, low, high):
        from scipy import ndimage

        self.label = ndimage.label
        self.image = np.fromfile(image, np.uint8).reshape(size, size, size)
        self.seed = (int(z), int(y), int(x))
        self.low, self.high = int(low), int(high)

    def prepare(self):
        self.mask = None

    def run(self):
        pieces, _ = self.label((self.image >= self.low) & (self.image <= self.high))
        self.mask = pieces == pieces[self.seed]

    def result(self):
        return np.packbits(self.mask.ravel(), bitorder="little")


class Lookup:
    """Slices through the window of a grey display, one pixel of 32 bits each; the walk is that of SliceWalk.

    zoom  each pixel is repeated as often along both axes
    """

    STEP = 101

    def __init__(self, image, kind, orientation, zoom, low, high):
        volume = np.fromfile(image, kind).reshape(size, size, size)
        # Slices, rows and columns of the planes YZ, XZ and XY.
        self.slices = volume.transpose(((2, 0, 1), (1, 0, 2), (0, 1, 2))[int(orientation)])
        self.number = 0
        self.zoom = int(zoom)
        self.scale = 255 / (float(high) - float(low))
        self.bias = 0.5 - self.scale * float(low)  # the nearest grey value, once cut to a whole number
        self.table = np.arange(256, dtype=np.uint32) * np.uint32(0x01010101)
        self.bytes_table = self.table[self.grey(np.arange(256, dtype=np.uint8))]

    def grey(self, values):
        return np.clip(self.scale * values + self.bias, 0, 255).astype(np.uint8)

    def prepare(self):
        self.number = (self.number + self.STEP) % size
        self.picture = None

    def run(self):
        values = self.slices[self.number]
        if values.dtype == np.uint8:
            self.picture = self.bytes_table[values]
        else:
            self.picture = self.table[self.grey(values)]
        if self.zoom > 1:
            self.picture = np.repeat(np.repeat(self.picture, self.zoom, axis=1), self.zoom, axis=0)

    def result(self):
        return np.ascontiguousarray(self.picture)


class Route:
    """scikit-image's cheapest path between two pixels of a square image, dear where that is dark."""

    def __init__(self, image, side, x0, y0, x1, y1):
        from skimage.graph import route_through_array

        self.route = route_through_array
        side = int(side)
        self.costs = 256.0 - np.fromfile(image, np.uint8).reshape(side, side)
        self.start = (int(y0), int(x0))
        self.end = (int(y1), int(x1))

    def prepare(self):
        self.path = None

    def run(self):
        self.path, _ = self.route(self.costs, self.start, self.end)

    def result(self):
        return np.array(self.path, np.int32)


def read_bytes_of_nifti(source):
    with gzip.open(source) as file:
        data = file.read()
    dims = struct.unpack_from("<3h", data, 42)
    (kind,) = struct.unpack_from("<h", data, 70)
    start = int(struct.unpack_from("<f", data, 108)[0])
    if kind != 2:
        raise ValueError(f"{source}: bytes were expected, not element type {kind}")
    return np.frombuffer(data, np.uint8, dims[0] * dims[1] * dims[2], start).reshape(dims[::-1])


def write_slice(source, z, target):
    from skimage.transform import resize

    image = read_bytes_of_nifti(source)[int(z)]
    scaled = resize(image, (size, size), order=1, preserve_range=True)
    np.rint(scaled).astype(np.uint8).tofile(target)


def write_atlas(source, target):
    labels = read_bytes_of_nifti(source)
    times = [-(-size // side) for side in labels.shape]
    np.ascontiguousarray(np.tile(labels, times)[:size, :size, :size]).tofile(target)


KINDS = {
    "add": Add,
    "select": Select,
    "invert": Invert,
    "flood": Flood,
    "fill": FillHoles,
    "outside": FillOutside,
    "label": Label,
    "lookup": Lookup,
    "route": Route,
}
operations = {}


def answer(words):
    command, *rest = words
    if command == "open":
        operations[rest[0]] = KINDS[rest[1]](*rest[2:])
    elif command == "run":
        operation = operations[rest[0]]
        operation.prepare()
        start = time.perf_counter()
        operation.run()
        return str((time.perf_counter() - start) * 1000)
    elif command == "save":
        operations[rest[0]].result().tofile(rest[1])
    elif command == "close":
        del operations[rest[0]]
    elif command == "atlas":
        write_atlas(*rest)
    elif command == "slice":
        write_slice(*rest)
    else:
        raise ValueError(f"no such command: {command}")
    return "done"


size = int(sys.argv[1])
for line in sys.stdin:
    try:
        print(answer(line.split()), flush=True)
    except Exception as e:  # the other side prints it and ends
        print("error", type(e).__name__, str(e).replace("\n", " "), flush=True)
