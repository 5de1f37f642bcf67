"""Writes the operators of a TFLite network as an ONNX graph.

Pictures turn from rows, columns, channels to channels, rows, columns; weights of 16 bits become 32 wide. A tensor
keeps its name, with its number behind it, since two may share a name.
"""

import re

import numpy
import onnx
from onnx import TensorProto, helper, numpy_helper

from tfliteNetwork import LINEAR, SAME, VALID

OPSET = 14  # the first with HardSwish
IR_VERSION = 7

PLANES_FIRST = (0, 3, 1, 2)
PLANES_LAST = (0, 2, 3, 1)

WRITERS = {}


class Unknown(Exception):
    """The network asks for something that the converter does not know."""


def writes(*kinds):
    """Marks the method that writes operators of these kinds."""
    def mark(method):
        WRITERS.update(dict.fromkeys(kinds, method))
        return method
    return mark


def demand(holds, what):
    if not holds:
        raise Unknown(what)


class OnnxGraph:
    def __init__(self, network, inputs, outputs):
        self._network, self._inputs, self._outputs = network, inputs, outputs
        self._nodes, self._constants = [], {}
        self._values = {i: t.constant for i, t in enumerate(network.tensors) if t.constant is not None}
        operators = network.between(inputs, outputs)
        for operator in operators:
            demand(operator.kind in WRITERS, f"the operator '{operator.kind}' is not known")
        for operator in operators:
            demand(operator.options.get("activation", LINEAR) == LINEAR, "activations inside of operators are not known")
            WRITERS[operator.kind](self, operator)

    def model(self):
        graph = helper.make_graph(self._nodes, "network", [self._info(i) for i in self._inputs],
                                  [self._info(i) for i in self._outputs], list(self._constants.values()))
        model = helper.make_model(graph, opset_imports=[helper.make_opsetid("", OPSET)], producer_name="zel_effects")
        model.ir_version = IR_VERSION
        onnx.checker.check_model(model)
        return model

    # What is said about tensors.

    def _name(self, tensor):
        return re.sub(r"\W", "_", self._network.tensors[tensor].name, flags=re.ASCII) + f"_{tensor}"

    def _shape(self, tensor):
        """As ONNX has it."""
        shape = self._network.tensors[tensor].shape
        return [shape[axis] for axis in PLANES_FIRST] if len(shape) == 4 else list(shape)

    def _plane(self, tensor):
        """Rows and columns of a picture."""
        demand(len(self._network.tensors[tensor].shape) == 4, "a picture of other than four dimensions is not known")
        return self._network.tensors[tensor].shape[1:3]

    def _info(self, tensor):
        return helper.make_tensor_value_info(self._name(tensor), TensorProto.FLOAT, self._shape(tensor))

    # What is written.

    def _constant(self, name, values):
        self._constants[name] = numpy_helper.from_array(numpy.ascontiguousarray(values), name)
        return name

    def _weights(self, tensor, axes):
        """The constant with its axes in another order."""
        demand(tensor in self._values, f"'{self._network.tensors[tensor].name}' is no constant")
        values = self._values[tensor]
        demand(values.ndim == len(axes), f"'{self._network.tensors[tensor].name}' has {values.ndim} dimensions")
        return self._constant(self._name(tensor), values.astype(numpy.float32).transpose(axes))

    def _node(self, kind, inputs, output, **attributes):
        self._nodes.append(helper.make_node(kind, inputs, [output], output, **attributes))
        return output

    def _pads(self, operator, kernel, stride):
        """Rows and columns of zeros before and behind; an odd one stands behind."""
        padding, plane = operator.options["padding"], self._plane(operator.inputs[0])
        demand(padding in (SAME, VALID) and min(stride) > 0, "a way of padding is not known")
        if padding == VALID:
            return [0, 0, 0, 0]
        both = [max((-(-size // step) - 1) * step + side - size, 0) for size, side, step in zip(plane, kernel, stride)]
        return [b // 2 for b in both] + [b - b // 2 for b in both]

    @writes("DEQUANTIZE")
    def _widen(self, operator):
        demand(operator.inputs[0] in self._values, "only constants can be widened")
        self._values[operator.outputs[0]] = self._values[operator.inputs[0]]

    @writes("ADD", "MULTIPLY", "SIGMOID", "RELU", "HARD_SWISH")
    def _pointwise(self, operator):
        kinds = {"ADD": "Add", "MULTIPLY": "Mul", "SIGMOID": "Sigmoid", "RELU": "Relu", "HARD_SWISH": "HardSwish"}
        demand(not any(i in self._values for i in operator.inputs), "sums and products with constants are not known")
        self._node(kinds[operator.kind], [self._name(i) for i in operator.inputs], self._name(operator.outputs[0]))

    @writes("PRELU")
    def _leak(self, operator):
        values, slopes = operator.inputs
        self._node("PRelu", [self._name(values), self._weights(slopes, (2, 0, 1))], self._name(operator.outputs[0]))

    @writes("CONVOLUTION", "DEPTHWISE")
    def _convolve(self, operator):
        picture, weights, bias = operator.inputs
        options = operator.options
        demand(options["dilation_x"] == 1 and options["dilation_y"] == 1, "dilated convolutions are not known")
        demand(options.get("multiplier", 1) == 1, "depthwise convolutions that multiply channels are not known")
        kernel, stride = self._plane(weights), (options["stride_y"], options["stride_x"])
        depthwise = operator.kind == "DEPTHWISE"
        inputs = [self._name(picture), self._weights(weights, (3, 0, 1, 2) if depthwise else PLANES_FIRST),
                  self._weights(bias, (0,))]
        self._node("Conv", inputs, self._name(operator.outputs[0]), kernel_shape=kernel, strides=stride,
                   pads=self._pads(operator, kernel, stride), group=self._shape(picture)[1] if depthwise else 1)

    @writes("Convolution2DTransposeBias")
    def _deconvolve(self, operator):
        """Each value of the input becomes a block of the output; blocks that overlap are not known."""
        picture, weights, bias = operator.inputs
        demand(len(operator.custom) == 12, "the options of a transposed convolution are not known")
        _, stride_x, stride_y = numpy.frombuffer(operator.custom, "<i4").tolist()
        block = self._plane(weights)
        demand(block == (stride_y, stride_x), "transposed convolutions whose blocks overlap are not known")
        inputs = [self._name(picture), self._weights(weights, (3, 0, 1, 2)), self._weights(bias, (0,))]
        self._node("ConvTranspose", inputs, self._name(operator.outputs[0]), kernel_shape=block, strides=block)

    @writes("MAX_POOL")
    def _largest(self, operator):
        options = operator.options
        kernel, stride = (options["height"], options["width"]), (options["stride_y"], options["stride_x"])
        self._node("MaxPool", [self._name(operator.inputs[0])], self._name(operator.outputs[0]), kernel_shape=kernel,
                   strides=stride, pads=self._pads(operator, kernel, stride))

    @writes("AVERAGE_POOL")
    def _mean(self, operator):
        kernel = operator.options["height"], operator.options["width"]
        demand(kernel == self._plane(operator.inputs[0]) and operator.options["padding"] == VALID,
               "means of less than the whole plane are not known")
        self._node("GlobalAveragePool", [self._name(operator.inputs[0])], self._name(operator.outputs[0]))

    @writes("PAD")
    def _surround(self, operator):
        picture, counts = operator.inputs
        demand(counts in self._values and self._values[counts].shape == (4, 2), "a kind of padding is not known")
        output = self._name(operator.outputs[0])
        counts = self._values[counts][list(PLANES_FIRST)].T.reshape(-1).astype(numpy.int64)
        self._node("Pad", [self._name(picture), self._constant(output + "_counts", counts)], output, mode="constant")

    @writes("RESIZE")
    def _resize(self, operator):
        demand(operator.options["half_pixel"] and not operator.options["align_corners"],
               "resizing about other than pixel centres is not known")
        old, new = self._plane(operator.inputs[0]), self._plane(operator.outputs[0])
        output = self._name(operator.outputs[0])
        scales = numpy.array([1, 1, new[0] / old[0], new[1] / old[1]], numpy.float32)
        self._node("Resize", [self._name(operator.inputs[0]), "", self._constant(output + "_scales", scales)], output,
                   mode="linear", coordinate_transformation_mode="half_pixel")

    @writes("CONCATENATION")
    def _join(self, operator):
        demand(len(self._shape(operator.outputs[0])) == 3, "joining pictures is not known")
        self._node("Concat", [self._name(i) for i in operator.inputs], self._name(operator.outputs[0]),
                   axis=operator.options["axis"])

    @writes("RESHAPE")
    def _list(self, operator):
        """A picture becomes a list; all values of a pixel stay together."""
        picture, output = operator.inputs[0], self._name(operator.outputs[0])
        shape = self._shape(operator.outputs[0])
        demand(len(self._shape(picture)) == 4 and len(shape) == 3, "only pictures become lists")
        turned = self._node("Transpose", [self._name(picture)], output + "_turned", perm=PLANES_LAST)
        self._node("Reshape", [turned, self._constant(output + "_shape", numpy.array(shape, numpy.int64))], output)
