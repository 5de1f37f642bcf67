"""A TFLite file as tensors and operators, with the options of the operators that our networks are made of."""

import dataclasses

import numpy

from flatBuffer import Damaged, root

# The tables of the format, their fields in its order.
MODEL = ("version", "operator_codes", "subgraphs", "description", "buffers")
OPERATOR_CODE = ("old_code", "custom_code", "version", "code")
GRAPH = ("tensors", "inputs", "outputs", "operators")
TENSOR = ("shape", "type", "buffer", "name")
BUFFER = ("data",)
OPERATOR = ("opcode", "inputs", "outputs", "options_type", "options", "custom_options")
CONVOLUTION = ("padding", "stride_x", "stride_y", "activation", "dilation_x", "dilation_y")
DEPTHWISE = ("padding", "stride_x", "stride_y", "multiplier", "activation", "dilation_x", "dilation_y")
POOL = ("padding", "stride_x", "stride_y", "width", "height", "activation")
RESIZE = ("old_height", "old_width", "align_corners", "half_pixel")

# Operators by their number: name, and the layout of their options.
OPERATORS = {
    0: ("ADD", ("activation",)),
    1: ("AVERAGE_POOL", POOL),
    2: ("CONCATENATION", ("axis", "activation")),
    3: ("CONVOLUTION", CONVOLUTION),
    4: ("DEPTHWISE", DEPTHWISE),
    6: ("DEQUANTIZE", ()),
    14: ("SIGMOID", ()),
    17: ("MAX_POOL", POOL),
    18: ("MULTIPLY", ("activation",)),
    19: ("RELU", ()),
    22: ("RESHAPE", ("shape",)),
    23: ("RESIZE", RESIZE),
    34: ("PAD", ()),
    54: ("PRELU", ()),
    117: ("HARD_SWISH", ()),
}
BYTE_WIDE = ("padding", "activation", "align_corners", "half_pixel")
ONE_BY_DEFAULT = ("dilation_x", "dilation_y")

# Numbers by their kind.
NUMBERS = {0: "<f4", 1: "<f2", 2: "<i4"}

SAME, VALID = 0, 1  # paddings
LINEAR = 0  # the activation that is none


@dataclasses.dataclass
class Tensor:
    name: str
    shape: tuple
    constant: numpy.ndarray | None  # None: computed


@dataclasses.dataclass
class Operator:
    kind: str
    inputs: list  # numbers of tensors
    outputs: list
    options: dict
    custom: bytes


class Network:
    def __init__(self, data):
        if data[4:8] != b"TFL3":
            raise Damaged("it does not begin as a TFLite network")
        model = root(data, MODEL)
        graphs = model.tables("subgraphs", GRAPH)
        if len(graphs) != 1:
            raise Damaged(f"{len(graphs)} graphs, not 1")
        buffers = model.tables("buffers", BUFFER)
        codes = model.tables("operator_codes", OPERATOR_CODE)
        self.tensors = [_tensor(t, buffers) for t in graphs[0].tables("tensors", TENSOR)]
        self.inputs = graphs[0].array("inputs").tolist()
        self.outputs = graphs[0].array("outputs").tolist()
        self.operators = [_operator(o, codes) for o in graphs[0].tables("operators", OPERATOR)]
        numbers = self.inputs + self.outputs + [i for o in self.operators for i in o.inputs + o.outputs]
        if any(not 0 <= i < len(self.tensors) for i in numbers):
            raise Damaged("it names a tensor that it does not have")

    def numbers(self, names):
        """The numbers of the tensors of these names."""
        known = {tensor.name: i for i, tensor in enumerate(self.tensors)}
        missing = [name for name in names if name not in known]
        if missing:
            raise Damaged(f"it has no tensor '{missing[0]}'")
        return [known[name] for name in names]

    def between(self, inputs, outputs):
        """The operators that lead from the inputs to the outputs, in the order of the file."""
        wanted, chosen = set(outputs) - set(inputs), []
        for operator in reversed(self.operators):
            if wanted.intersection(operator.outputs):
                wanted.update(set(operator.inputs) - set(inputs))
                chosen.append(operator)
        return chosen[::-1]


def _tensor(table, buffers):
    name, shape = table.text("name"), tuple(table.array("shape").tolist())
    number, kind = table.number("buffer", "<I"), table.number("type", "<b")
    if number >= len(buffers):
        raise Damaged(f"'{name}' has no buffer")
    content = buffers[number].array("data", "u1")
    if content.size == 0:
        return Tensor(name, shape, None)
    if kind not in NUMBERS:
        raise Damaged(f"'{name}' holds numbers of kind {kind}, which is not known")
    kind = numpy.dtype(NUMBERS[kind])
    if min(shape, default=1) < 1 or content.size != int(numpy.prod(shape, dtype=object)) * kind.itemsize:
        raise Damaged(f"'{name}' has {content.size} bytes for the shape {shape}")
    return Tensor(name, shape, content.view(kind).reshape(shape))


def _operator(table, codes):
    number = table.number("opcode", "<I")
    if number >= len(codes):
        raise Damaged("an operator has no code")
    code, custom = codes[number], codes[number].text("custom_code")
    # Files from before the format outgrew a byte have their code in the old place alone.
    code = max(code.number("code"), code.number("old_code", "<b"))
    kind, fields = (custom, ()) if custom else OPERATORS.get(code, (f"number {code}", ()))
    options = table.table("options", fields)
    read = {name: options.number(name, "<b" if name in BYTE_WIDE else "<i", int(name in ONE_BY_DEFAULT))
            for name in fields if name != "shape"}
    return Operator(kind, table.array("inputs").tolist(), table.array("outputs").tolist(), read,
                    table.array("custom_options", "u1").tobytes())
