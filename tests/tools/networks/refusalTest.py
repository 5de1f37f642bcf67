#!/usr/bin/env python3
"""Gives the converter what it must refuse: damaged networks, other networks, parts that are not there.

    refusalTest.py TOOLS SOURCES     the converter's folder, and that of the networks as they come

Each refusal is one line and status 1, and leaves an old file alone. A damaged network that still makes sense may be
converted. Exit status 77 where something is missing.
"""

import contextlib
import io
import pathlib
import random
import sys
import tempfile
from unittest import mock

from testSupport import skip_without

OLD = b"an old file"
FLIPS = 150


def outcome(data, options=()):
    """Status and message of the converter, and what lies at its output afterwards."""
    with tempfile.TemporaryDirectory() as folder:
        source, target = pathlib.Path(folder, "source.tflite"), pathlib.Path(folder, "target.onnx")
        if data is not None:
            source.write_bytes(data)
        target.write_bytes(OLD)
        said = io.StringIO()
        with contextlib.redirect_stderr(said), mock.patch.object(sys, "argv", ["", str(source), str(target), *options]):
            status = convertNetwork.main()
        left = sorted(p.name for p in pathlib.Path(folder).iterdir())
        assert "target.onnx" in left and len(left) == 1 + (data is not None), left
        return status, said.getvalue(), target.read_bytes()


def expect_refusal(data, options=(), saying=""):
    status, said, content = outcome(data, options)
    assert status == 1 and content == OLD, (status, said)
    assert said.count("\n") == 1 and saying in said, said


def refuses_what_is_no_network():
    for data in (None, b"", b"TFL3", bytes(5000), b"\xff" * 5000, b"\x08\0\0\0TFL3" + b"\xff" * 400):
        expect_refusal(data)


def refuses_other_networks(sources):
    mask, refined = (sources[name] for name in ("selfie_segmentation", "face_landmark_with_attention"))
    expect_refusal(mask, ["--sha256", "0" * 64], "not the network of this sum")
    expect_refusal(mask, ["--outputs", "output_mesh"], "no tensor 'output_mesh'")
    # The whole of it has operators of its own, which the parts leave out.
    expect_refusal(refined, [], "the operator 'Landmarks2TransformMatrix' is not known")


def refuses_cut_networks(sources):
    for data in sources.values():
        for share in (0.0001, 0.01, 0.1, 0.5, 0.9, 0.999):
            expect_refusal(data[:int(len(data) * share)])


def takes_or_refuses_flipped_bytes(sources):
    """The tables stand before and behind the weights: three flips in four go there."""
    generator, refused = random.Random(3), 0
    for data in (sources["face_detection_short_range"], sources["selfie_segmentation"]):
        for i in range(FLIPS):
            damaged = bytearray(data)
            for _ in range(generator.choice((1, 4, 40))):
                at = (generator.randrange(3000), -1 - generator.randrange(30000), generator.randrange(len(data)))[i % 3]
                damaged[at] = generator.randrange(256)
            status, said, content = outcome(bytes(damaged))
            assert (status, said.count("\n"), content == OLD) in ((0, 0, False), (1, 1, True)), (status, said)
            refused += status
    assert 0 < refused < 2 * FLIPS, refused
    print(f"{refused} of {2 * FLIPS} refused")


def main():
    sources = {path.stem: path.read_bytes() for path in pathlib.Path(sys.argv[2]).glob("*.tflite")}
    refuses_what_is_no_network()
    refuses_other_networks(sources)
    refuses_cut_networks(sources)
    takes_or_refuses_flipped_bytes(sources)


if __name__ == "__main__":
    skip_without(sys.argv[2:3], ["numpy", "onnx"])
    sys.path.insert(0, sys.argv[1])
    import convertNetwork

    main()
