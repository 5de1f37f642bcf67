"""Runs a TFLite network in numpy, as the format describes each operator: slow, in double precision, rows first."""

import numpy

SAME = 0


def windows(picture, kernel, stride, out, outside):
    """For each place of a window its pixels: yields (row, column, picture of the output's size)."""
    sizes = picture.shape[1:3]
    missing = [max((o - 1) * s + k - size, 0) for o, s, k, size in zip(out, stride, kernel, sizes)]
    ends = [(0, 0)] + [(m // 2, m - m // 2) for m in missing] + [(0, 0)]
    wide = numpy.pad(picture, ends, constant_values=outside)
    for y in range(kernel[0]):
        for x in range(kernel[1]):
            yield y, x, wide[:, y:y + (out[0] - 1) * stride[0] + 1:stride[0],
                             x:x + (out[1] - 1) * stride[1] + 1:stride[1]]


def plane_of(shape, about, kernel, stride):
    """Rows and columns of what slides over a picture."""
    return [-(-size // s) if about["padding"] == SAME else (size - k) // s + 1
            for size, k, s in zip(shape[1:3], kernel, stride)]


def convolution(about, picture, weights, bias):
    stride = about["stride_y"], about["stride_x"]
    out = plane_of(picture.shape, about, weights.shape[1:3], stride)
    total = bias + numpy.zeros((1, *out, weights.shape[0]))
    for y, x, seen in windows(picture, weights.shape[1:3], stride, out, 0):
        total = total + seen @ weights[:, y, x].T
    return total


def depthwise(about, picture, weights, bias):
    stride = about["stride_y"], about["stride_x"]
    out = plane_of(picture.shape, about, weights.shape[1:3], stride)
    total = bias + numpy.zeros((1, *out, weights.shape[3]))
    for y, x, seen in windows(picture, weights.shape[1:3], stride, out, 0):
        total = total + seen * weights[0, y, x]
    return total


def transposed(about, picture, weights, bias):
    stride = numpy.frombuffer(about["custom"], "<i4")[1]
    rows, columns = (size * stride for size in picture.shape[1:3])
    total = bias + numpy.zeros((1, rows, columns, weights.shape[0]))
    for y in range(picture.shape[1]):
        for x in range(picture.shape[2]):
            block = numpy.tensordot(weights, picture[0, y, x], (3, 0))  # channel, row, column
            total[0, y * stride:(y + 1) * stride, x * stride:(x + 1) * stride] += block.transpose(1, 2, 0)
    return total


def pool(reduce, outside):
    def run(about, picture):
        kernel, stride = (about["height"], about["width"]), (about["stride_y"], about["stride_x"])
        out = plane_of(picture.shape, about, kernel, stride)
        return reduce([seen for _, _, seen in windows(picture, kernel, stride, out, outside)], axis=0)
    return run


def resize(about, picture, size):
    for axis, new in zip((1, 2), size):
        old = picture.shape[axis]
        at = (numpy.arange(new) + 0.5) * old / new - 0.5
        low = numpy.floor(at).astype(int)
        share = (at - low).reshape([-1 if a == axis else 1 for a in range(4)])
        near, far = (picture.take(numpy.clip(i, 0, old - 1), axis) for i in (low, low + 1))
        picture = near * (1 - share) + far * share
    return picture


# Each takes what is told about the operator, and the values of its inputs.
OPERATORS = {
    "ADD": lambda about, a, b: a + b,
    "AVERAGE_POOL": pool(numpy.mean, numpy.nan),
    "CONCATENATION": lambda about, *parts: numpy.concatenate(parts, about["axis"]),
    "CONVOLUTION": convolution,
    "Convolution2DTransposeBias": transposed,
    "DEPTHWISE": depthwise,
    "DEQUANTIZE": lambda about, values: values,
    "HARD_SWISH": lambda about, values: values * numpy.clip(values + 3, 0, 6) / 6,
    "MAX_POOL": pool(numpy.max, -numpy.inf),
    "MULTIPLY": lambda about, a, b: a * b,
    "PAD": lambda about, values, counts: numpy.pad(values, counts),
    "PRELU": lambda about, values, slopes: numpy.where(values < 0, values * slopes, values),
    "RELU": lambda about, values: numpy.maximum(values, 0),
    "RESHAPE": lambda about, values: values.reshape(about["told"]),
    "RESIZE": resize,
    "SIGMOID": lambda about, values: 0.5 + 0.5 * numpy.tanh(values / 2),  # which does not overflow
}


def run(network, given, outputs):
    """The outputs, by number, of a network whose inputs are given, by number."""
    values = dict(given)
    for i, tensor in enumerate(network.tensors):
        if tensor.constant is not None:
            wide = numpy.float64 if tensor.constant.dtype.kind == "f" else tensor.constant.dtype
            values[i] = tensor.constant.astype(wide)
    for operator in network.between(list(given), outputs):
        told = network.tensors[operator.outputs[0]].shape
        about = {**operator.options, "custom": operator.custom, "told": told}
        result = OPERATORS[operator.kind](about, *(values[i] for i in operator.inputs))
        if result.shape != told:
            raise ValueError(f"{operator.kind} gives {result.shape} where the network says {told}")
        values[operator.outputs[0]] = result
    return [values[i] for i in outputs]
