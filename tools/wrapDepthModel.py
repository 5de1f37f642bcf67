#!/usr/bin/env python3
"""Wraps a relative-depth network so that it can serve as the depth model.

What the network expects (channel order, mean, deviation, size) goes into the graph in front of it; behind it
the depth is turned so that larger is nearer, and spread over 0 to 1. docs/depth-models.md is the guide.
"""

import argparse
import sys
import tempfile

import numpy as np
import onnx
from onnx import TensorProto, helper, numpy_helper

PICTURE = 384  # side of the input and of the map of a wrapped network
PREFIX = "wrap_"


class Problem(Exception):
    """Something about the model or the options, told in one line."""


class Shell:
    """The nodes and constants around a network."""

    def __init__(self):
        self.nodes, self.constants = [], []

    def constant(self, name, values):
        self.constants.append(numpy_helper.from_array(np.asarray(values), PREFIX + name))
        return PREFIX + name

    def add(self, kind, inputs, output, **attributes):
        node = helper.make_node(kind, inputs, [output], name=PREFIX + output, **attributes)
        self.nodes.append(node)
        return output

    def resize(self, source, output, channels, side, mode="linear"):
        sizes = self.constant(output + "_sizes", np.array([1, channels, side, side], np.int64))
        nothing = self.constant(output + "_nothing", np.array([], np.float32))
        rule = "half_pixel" if mode == "linear" else "asymmetric"
        more = {} if mode == "linear" else {"nearest_mode": "floor"}
        return self.add("Resize", [source, nothing, nothing, sizes], output, mode=mode,
                        coordinate_transformation_mode=rule, **more)


def shape_of(value):
    return [d.dim_value if d.HasField("dim_value") else 0 for d in value.type.tensor_type.shape.dim]


def the_input(model):
    constants = {t.name for t in model.graph.initializer}
    inputs = [v for v in model.graph.input if v.name not in constants]
    if len(inputs) != 1:
        raise Problem(f"the model has {len(inputs)} inputs, not 1")
    value = inputs[0]
    shape = shape_of(value)
    if value.type.tensor_type.elem_type != TensorProto.FLOAT or len(shape) != 4 or shape[1] not in (0, 3):
        raise Problem("the model's input is not planar float of N, 3, height, width")
    return value


def the_output(model, name):
    named = [v for v in model.graph.output if not name or v.name == name]
    if not named:
        known = ", ".join(v.name for v in model.graph.output)
        raise Problem(f"the model has no output '{name}', only {known}")
    return named[0]


def fix_side(model, value, side):
    """Gives the input its size, and every later shape that of the size."""
    shape = shape_of(value)
    if shape[2] != shape[3] or (side and shape[2] and shape[2] != side) or not (side or shape[2]):
        raise Problem(f"the model's input is {shape[2]} by {shape[3]}: state its side with --side")
    side = side or shape[2]
    for dim, size in zip(value.type.tensor_type.shape.dim, (1, 3, side, side)):
        dim.dim_value = size
    return side


def front(shell, options, side, target):
    """From a picture in blue, green, red of 0 to 1 to what the network expects."""
    source = "input"
    if side != PICTURE:
        source = shell.resize(source, PREFIX + "sized", 3, side)
    # A convolution of one pixel swaps the channels and scales them: it has no border to spoil.
    weight = np.zeros((3, 3, 1, 1), np.float32)
    bias = np.zeros(3, np.float32)
    for c in range(3):
        taken = 2 - c if options.order == "rgb" else c
        weight[c, taken] = options.range / options.deviation[c]
        bias[c] = -options.mean[c] / options.deviation[c]
    inputs = [source, shell.constant("weight", weight), shell.constant("bias", bias)]
    shell.add("Conv", inputs, target, kernel_shape=[1, 1])


def back(shell, options, source, shape):
    """From the network's map to one of 0 to 1 in which larger is nearer."""
    side = shape[-1]
    if len(shape) == 3 or shape[1] != 1:
        source = shell.add("Reshape", [source, shell.constant("shape", np.array([1, 1, side, side]))],
                           PREFIX + "map")
    if options.metres:
        source = shell.add("Mul", [source, shell.constant("turned", np.float32([-1]))], PREFIX + "nearer")
    high = shell.add("GlobalMaxPool", [source], PREFIX + "high")
    turned = shell.add("Mul", [source, shell.constant("minus", np.float32([-1]))], PREFIX + "under")
    low = shell.add("GlobalMaxPool", [turned], PREFIX + "low")  # the smallest value with its sign turned
    span = shell.add("Add", [high, low], PREFIX + "span")
    span = shell.add("Add", [span, shell.constant("least", np.float32([1e-6]))], PREFIX + "span_above_0")
    # The library's reader wants both sides of a sum equally large.
    low = shell.resize(low, PREFIX + "low_map", 1, side, "nearest")
    span = shell.resize(span, PREFIX + "span_map", 1, side, "nearest")
    source = shell.add("Add", [source, low], PREFIX + "from_0")
    last = "depth" if side == PICTURE else PREFIX + "spread"
    source = shell.add("Div", [source, span], last)
    if side != PICTURE:
        shell.resize(source, "depth", 1, PICTURE)


def wrap(model, options):
    value = the_input(model)
    side = fix_side(model, value, options.side)
    if model.opset_import[0].version < 11:
        raise Problem(f"the model has operator set {model.opset_import[0].version}; 11 or later is needed")
    model = onnx.shape_inference.infer_shapes(model)
    output = the_output(model, options.output)
    shape = shape_of(output)
    if len(shape) not in (3, 4) or shape[-1] != shape[-2] or not shape[-1]:
        shape = [1, 1, side, side]  # not told: as large as the input
    before, behind = Shell(), Shell()
    front(before, options, side, value.name)
    back(behind, options, output.name, shape)
    graph = helper.make_graph(
        before.nodes + list(model.graph.node) + behind.nodes,
        "wrapped",
        [helper.make_tensor_value_info("input", TensorProto.FLOAT, [1, 3, PICTURE, PICTURE])],
        [helper.make_tensor_value_info("depth", TensorProto.FLOAT, [1, 1, PICTURE, PICTURE])],
        list(model.graph.initializer) + before.constants + behind.constants,
    )
    wrapped = helper.make_model(graph, opset_imports=model.opset_import)
    wrapped.ir_version = model.ir_version
    onnx.checker.check_model(wrapped)
    return wrapped


def tiny_model(side, weight, bias):
    """One convolution of one pixel: small enough to know its map by hand."""
    weight = np.float32(weight).reshape(1, 3, 1, 1)
    graph = helper.make_graph(
        [helper.make_node("Conv", ["picture", "w", "b"], ["map"], kernel_shape=[1, 1])],
        "tiny",
        [helper.make_tensor_value_info("picture", TensorProto.FLOAT, [1, 3, side, side])],
        [helper.make_tensor_value_info("map", TensorProto.FLOAT, [1, 1, side, side])],
        [numpy_helper.from_array(weight, "w"), numpy_helper.from_array(np.float32([bias]), "b")],
    )
    model = helper.make_model(graph, opset_imports=[helper.make_opsetid("", 11)])
    model.ir_version = 7
    return model


def run_wrapped(model, blob):
    import cv2

    with tempfile.NamedTemporaryFile(suffix=".onnx") as file:
        onnx.save(model, file.name)
        net = cv2.dnn.readNetFromONNX(file.name)
    net.setInput(blob, "input")
    return net.forward("depth")[0, 0]


def resized(planes, side):
    """Bilinear, about pixel centres, without smoothing: what the graph's Resize does."""
    for axis in (1, 2):
        old = planes.shape[axis]
        at = np.clip((np.arange(side) + 0.5) * old / side - 0.5, 0, old - 1)
        low = np.floor(at).astype(int)
        share = (at - low).reshape([-1 if a == axis else 1 for a in range(3)])
        high = np.minimum(low + 1, old - 1)
        planes = planes.take(low, axis) * (1 - share) + planes.take(high, axis) * share
    return planes


def expected(blob, weight, side, options):
    """What a wrapped tiny network must give, in numpy."""
    planes = resized(blob[0, ::-1] if options.order == "rgb" else blob[0], side)
    mean, deviation = (np.reshape(v, (3, 1, 1)) for v in (options.mean, options.deviation))
    depth = np.tensordot(weight, (planes * options.range - mean) / deviation, 1)
    depth = -depth if options.metres else depth
    depth = (depth - depth.min()) / (depth.max() - depth.min())
    return resized(depth[None], PICTURE)[0]


def self_check():
    """Wraps tiny networks and holds what comes out against the same sums in numpy."""
    blob = np.random.default_rng(1).random((1, 3, PICTURE, PICTURE), np.float32)
    weight = [0.9, -0.5, 0.3]
    usual = ["in", "out", "--mean", "0.4", "0.5", "0.6", "--deviation", "0.2", "0.25", "0.3"]
    for side in (256, PICTURE, 518):
        for more in ([], ["--order", "bgr"], ["--metres"], ["--range", "255"]):
            options = parsed(usual + more)
            seen = run_wrapped(wrap(tiny_model(side, weight, 20), options), blob)
            worst = float(np.abs(seen - expected(blob, weight, side, options)).max())
            print(f"side {side} {' '.join(more) or 'as usual'}: difference {worst:.1e}")
            if not worst < 1e-4:
                raise Problem("the wrapped network does not compute what it should")


def parsed(words):
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("model", nargs="?", help="the network as ONNX")
    parser.add_argument("wrapped", nargs="?", help="the file to write")
    parser.add_argument("--order", choices=("rgb", "bgr"), default="rgb", help="channels that it takes (rgb)")
    parser.add_argument("--mean", type=float, nargs=3, default=[0, 0, 0], metavar="M",
                        help="taken from its channels, in its order and range (0 0 0)")
    parser.add_argument("--deviation", type=float, nargs=3, default=[1, 1, 1], metavar="D",
                        help="that its channels are divided by afterwards (1 1 1)")
    parser.add_argument("--range", type=float, default=1, help="its value for white before that: 1 or 255 (1)")
    parser.add_argument("--side", type=int, help="pixels of its input where the file does not fix them")
    parser.add_argument("--output", help="which of its outputs is the depth (the first)")
    parser.add_argument("--metres", action="store_true", help="its larger values are further away")
    parser.add_argument("--self-check", action="store_true", help="only try the script itself (needs cv2)")
    options = parser.parse_args(words)
    if not options.self_check and not options.wrapped:
        parser.error("the model and the file to write are needed")
    if any(not d > 0 for d in options.deviation):
        parser.error("deviations are above 0")
    return options


def main():
    options = parsed(None)
    try:
        if options.self_check:
            self_check()
        else:
            onnx.save(wrap(onnx.load(options.model), options), options.wrapped)
    except (Problem, OSError, onnx.checker.ValidationError) as problem:
        print(f"wrapDepthModel: {problem}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
