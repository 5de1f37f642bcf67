"""Reads flat buffers: files of tables that point at one another by distances.

A table is asked for its fields by name; its layout is the list of the names, in the order of the format's schema.
Every position is checked, so that a damaged file ends in Damaged and never in a read elsewhere.
"""

import struct

import numpy


class Damaged(Exception):
    """The bytes are no flat buffer, or not all of one."""


class Bytes:
    """The file, behind checks."""

    def __init__(self, data):
        self._data = data

    def number(self, layout, at):
        if not 0 <= at <= len(self._data) - struct.calcsize(layout):
            raise Damaged(f"a number at byte {at} of {len(self._data)}")
        return struct.unpack_from(layout, self._data, at)[0]

    def follow(self, at):
        """Where the distance at this place leads."""
        return at + self.number("<I", at)

    def array(self, kind, at):
        """Numbers in a row, behind their count."""
        count = self.number("<I", at)
        if at + 4 + count * numpy.dtype(kind).itemsize > len(self._data):
            raise Damaged(f"{count} numbers at byte {at} of {len(self._data)}")
        return numpy.frombuffer(self._data, kind, count, at + 4)


class Table:
    def __init__(self, data, at, names):
        self._data, self._at, self._names = data, at, names
        self._places = at - data.number("<i", at)
        self._end = data.number("<H", self._places)

    def _place(self, name):
        """Where the field lies, or None where it has its default."""
        entry = 4 + 2 * self._names.index(name)
        distance = self._data.number("<H", self._places + entry) if entry < self._end else 0
        return self._at + distance if distance else None

    def number(self, name, layout="<i", default=0):
        place = self._place(name)
        return default if place is None else self._data.number(layout, place)

    def array(self, name, kind="<i4"):
        place = self._place(name)
        return numpy.empty(0, kind) if place is None else self._data.array(kind, self._data.follow(place))

    def text(self, name):
        return self.array(name, "u1").tobytes().decode(errors="replace")

    def table(self, name, names):
        """The table that the field points at; where it points at none, one with nothing but defaults."""
        place = self._place(name)
        if place is None:
            return Table(Bytes(struct.pack("<iHH", -4, 4, 0)), 0, names)
        return Table(self._data, self._data.follow(place), names)

    def tables(self, name, names):
        place = self._place(name)
        if place is None:
            return []
        start = self._data.follow(place)
        count = len(self._data.array("<u4", start))
        return [Table(self._data, self._data.follow(start + 4 + 4 * i), names) for i in range(count)]


def root(data, names):
    """The table that holds the rest."""
    whole = Bytes(data)
    return Table(whole, whole.follow(0), names)
