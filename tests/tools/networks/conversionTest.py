#!/usr/bin/env python3
"""Holds each converted network, run by the inference module, against its source, run in numpy.

    conversionTest.py TOOLS RUNNER NETWORKS SOURCES     folders of the converted files and of those they came from

Exit status 77 where a folder or a package is missing.
"""

import pathlib
import subprocess
import sys

from testSupport import skip_without

SEEDS = (5, 6, 7)  # of busts that the person mask takes for a person

# What sums in single precision may lose, as a share of an output's largest value. The mask ends in a sigmoid of values
# of up to 1000: at its slope, what they lose shows tenfold.
LOSS, MASK_LOSS = 1e-5, 1e-3

# The file: its source, the smallest and largest value of a random input, the tolerance.
NETWORKS = {
    "faceDetector": ("face_detection_short_range", -1, 1, LOSS),
    "faceMesh": ("face_landmark", 0, 1, LOSS),
    "refinedMesh": ("face_landmark_with_attention", 0, 1, LOSS),
    "refinedLips": ("face_landmark_with_attention", -4, 4, LOSS),
    "refinedLeftEye": ("face_landmark_with_attention", -4, 4, LOSS),
    "refinedRightEye": ("face_landmark_with_attention", -4, 4, LOSS),
    "personMask": ("selfie_segmentation", 0, 1, MASK_LOSS),
}


def bust(generator, shape, low, high):
    """Rows, columns, channels: head and body before a ground, in colours by chance, under noise."""
    _, rows, columns, channels = shape
    y, x = numpy.mgrid[0:rows, 0:columns] / rows - 0.5
    picture = generator.random(channels) + numpy.zeros(shape)
    picture[0, x ** 2 + (y - 0.45) ** 2 < 0.1] = generator.random(channels)
    picture[0, x ** 2 + (0.8 * y + 0.08) ** 2 < 0.02] = generator.random(channels)
    mixed = 0.7 * picture + 0.3 * generator.random(shape)
    return (low + (high - low) * mixed).astype(numpy.float32)


def number_of(name):
    """The tensor of an output's name in the ONNX file."""
    return int(name.rpartition("_")[2])


def through_module(runner, file, picture, names):
    planes = numpy.ascontiguousarray(picture.transpose(0, 3, 1, 2))
    told = [str(n) for n in planes.shape[1:]]
    ran = subprocess.run([runner, file, *told, *names], input=planes.tobytes(), capture_output=True, check=False)
    if ran.returncode != 0:
        raise SystemExit(f"{file}: {ran.stderr.decode()}")
    return numpy.frombuffer(ran.stdout, "<f4")


def largest_difference(runner, file, source, low, high, generator):
    """Of all outputs, as a share of the output's largest value."""
    network, model = Network(source.read_bytes()), onnx.load(file)
    entrance, names = number_of(model.graph.input[0].name), [v.name for v in model.graph.output]
    picture = bust(generator, network.tensors[entrance].shape, low, high)
    expected = tfliteInterpreter.run(network, {entrance: picture.astype(numpy.float64)}, [number_of(n) for n in names])
    seen, worst = through_module(runner, file, picture, names), 0.0
    if seen.size != sum(e.size for e in expected):
        raise SystemExit(f"{file}: {seen.size} values come out")
    for values in expected:
        # What is a picture has its planes first in ONNX.
        wanted = (values.transpose(0, 3, 1, 2) if values.ndim == 4 else values).reshape(-1)
        got, seen = seen[:wanted.size], seen[wanted.size:]
        worst = max(worst, float(numpy.abs(got - wanted).max() / numpy.abs(wanted).max()))
    return worst


def main():
    runner, (networks, sources) = sys.argv[2], map(pathlib.Path, sys.argv[3:5])
    failed = []
    for name, (source, low, high, tolerance) in NETWORKS.items():
        worst = max(largest_difference(runner, networks / f"{name}.onnx", sources / f"{source}.tflite", low, high,
                                       numpy.random.default_rng(seed)) for seed in SEEDS)
        print(f"{name:16} {worst:.1e}")
        if not worst < tolerance:
            failed.append(name)
    return f"too far from its source: {', '.join(failed)}" if failed else 0


if __name__ == "__main__":
    skip_without(sys.argv[3:5], ["numpy", "onnx"])
    sys.path.insert(0, sys.argv[1])
    import numpy
    import onnx

    import tfliteInterpreter
    from tfliteNetwork import Network

    sys.exit(main())
