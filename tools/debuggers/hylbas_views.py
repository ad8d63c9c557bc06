"""How gdb and lldb show the library's containers: their sizes, and their elements in order.

gdb loads this file by itself where the library is installed under the prefix of the system's gdb;
elsewhere, and in lldb, one command loads it (docs/debugging.md). Everything is read from the fields
of the objects and from memory, nothing in the program is called. What is damaged is shown as such:
a walk over links ends at the first one that does not fit.
"""

import itertools
import re
import struct

try:
    import gdb
except ImportError:
    gdb = None
    import lldb

RED = 0


# --- What a container looks like. An `obj` is one of the two adapters below; a child is a name and
# either (address, type) of its value or a text.


def count_between(obj, last, size):
    first = obj.member("m_first").unsigned()
    return (obj.member(last).unsigned() - first) // size if size > 0 else 0


class Vector:
    """Elements of a known type, or runs of bytes as long as an element."""

    def __init__(self, obj):
        core = obj.member("m_data") if obj.has("m_data") else obj
        self.first = core.member("m_first").unsigned()
        self.memory = obj.memory()
        self.step = core.member("m_replicator").member("m_size").signed()
        self.type = obj.template_type(0) if obj.has("m_data") else None
        self.size = count_between(core, "m_last", self.step)
        self.capacity = count_between(core, "m_endOfStorage", self.step)
        self.is_sound = self.step > 0 and 0 <= self.size <= self.capacity

    def summary(self):
        if not self.is_sound:
            return "damaged or not yet constructed"
        of = "" if self.type else f", elements of {self.step} bytes"
        return f"size {self.size}, capacity {self.capacity}{of}"

    def children(self):
        for i in range(self.size if self.is_sound else 0):
            at = self.first + i * self.step
            yield f"[{i}]", (at, self.type) if self.type else self.memory.text(at, self.step)


class Tree:
    """The values of a type-erased tree as runs of bytes, in order."""

    def __init__(self, obj):
        self.memory = obj.memory()
        self.header = obj.member("m_header").unsigned()
        self.size = obj.member("m_nodeCount").unsigned()
        self.value_offset = obj.member("m_offsets").member("m_valueOffset").signed()
        self.value_size = obj.member("m_replicator").member("m_size").signed()

    def summary(self):
        return f"size {self.size}"

    def children(self):
        index = itertools.count()
        try:
            for node in self.nodes():
                yield self.child(next(index), node + self.value_offset)
        except ValueError as error:
            yield "broken", str(error)

    def child(self, index, value):
        return f"[{index}]", self.memory.text(value, self.value_size)

    def nodes(self):
        """Addresses in order, up to the first link that does not fit its neighbours."""
        pending, seen = [], 0
        parent, node = self.header, self.memory.link(self.header, "parent")
        while node or pending:
            while node:
                seen += 1
                if seen > self.size:
                    raise ValueError(f"more nodes than the size says, at {node:#x}")
                if self.memory.link(node, "parent") != parent:
                    raise ValueError(f"{parent:#x} links to {node:#x}, which has another parent")
                pending.append(node)
                parent, node = node, self.memory.link(node, "left")
            parent = pending.pop()
            yield parent
            node = self.memory.link(parent, "right")
        if seen != self.size:
            raise ValueError(f"{seen} nodes, but the size says {self.size}")


class Map(Tree):
    """Values by their keys, in order of keys."""

    def __init__(self, obj):
        super().__init__(obj.member("m_tree"))
        self.value_type = obj.template_type(1)
        self.second = max(4, self.value_type.sizeof)

    def child(self, index, value):
        return f"[{self.memory.read(value, 'i')}]", (value + self.second, self.value_type)


class TreePosition:
    """A map's iterator: the element that it stands on."""

    def __init__(self, obj):
        self.memory = obj.memory()
        self.node = obj.member("m_node").unsigned()
        self.type = obj.template_type(0)

    def is_end(self):
        """A header is red and its root's parent, or without a root its own left."""
        if self.memory.read(self.node, "i") != RED:
            return False
        root = self.memory.link(self.node, "parent")
        return self.memory.link(root or self.node, "parent" if root else "left") == self.node

    def summary(self):
        try:
            return "end" if self.is_end() else f"at node {self.node:#x}"
        except ValueError:
            return f"nowhere ({self.node:#x})"

    def children(self):
        if self.summary().startswith("at"):
            offset = self.memory.read(self.node + 4, "i")
            yield "value", (self.node + offset, self.type)


class Array2D:
    MEMORY = {0: "owned", 1: "adopted", 2: "borrowed"}

    def __init__(self, obj):
        self.rows = obj.member("m_m").signed()
        self.columns = obj.member("m_n").signed()
        self.data = obj.member("m_data").unsigned()
        self.type = obj.template_type(0)
        self.memory_type = obj.member("m_memType").unsigned()
        self.is_row_major = re.search(r",\s*(\d)>$", obj.type_name()).group(1) == "0"

    def summary(self):
        order = "row" if self.is_row_major else "column"
        owner = self.MEMORY.get(self.memory_type, "of no known owner") if self.data else "empty"
        return f"{self.rows} x {self.columns}, {order}-major, {owner}"

    def children(self):
        if not self.data:
            return
        for i in range(self.rows):
            for j in range(self.columns):
                index = i * self.columns + j if self.is_row_major else j * self.rows + i
                yield f"({i}, {j})", (self.data + index * self.type.sizeof, self.type)


class MicroList:
    def __init__(self, obj):
        self.items = obj.member("m_items").unsigned()
        self.count = obj.member("m_count").signed()
        self.type = obj.template_type(0)

    def summary(self):
        return f"size {self.count}"

    def children(self):
        for i in range(self.count if self.items else 0):
            yield f"[{i}]", (self.items + i * self.type.sizeof, self.type)


class Leaf:
    """What needs no children."""

    def children(self):
        return iter(())


class Pair(Leaf):
    def __init__(self, obj):
        self.obj = obj

    def summary(self):
        return f"({self.obj.member('first').shown()}, {self.obj.member('second').shown()})"


class Pool(Leaf):
    def __init__(self, obj):
        self.name = obj.member("m_poolName").text()
        self.current = obj.member("m_memoryCurrent").unsigned()
        self.peak = obj.member("m_memoryPeak").unsigned()
        self.is_active = obj.member("m_active").unsigned()

    def summary(self):
        state = "active" if self.is_active else "not active"
        return f"{self.name}, {self.current} bytes in use, {self.peak} at most, {state}"


class RegionPool(Leaf):
    def __init__(self, obj):
        self.name = obj.member("m_poolName").text()
        self.blocks = obj.member("m_blockCount").unsigned()
        self.used = obj.member("m_used").unsigned()

    def summary(self):
        return f"{self.name}, {self.blocks} blocks, {self.used} bytes used of the last"


VIEWS = {
    r"HYLBasVector<.+>": Vector,
    r"HYLBasVectorGeneric": Vector,
    r"HYLBasVectorStruct<.+>": Vector,
    r"HYLBasMap<.+>": Map,
    r"HYLBasTreeGeneric<.+>": Tree,
    r"HYLBasTreeIterator<.+>": TreePosition,
    r"HYLBasArray2D<.+>": Array2D,
    r"HYLBasMicroList<.+>": MicroList,
    r"HYLBasPair<.+>": Pair,
    r"HYLBasMemPool(Map|Vector)?": Pool,
    r"HYLBasMemTruePool": RegionPool,
}


def view_of(obj):
    name = obj.type_name() or ""
    for pattern, view in VIEWS.items():
        if re.fullmatch(pattern, name):
            return view(obj)
    return None


class Memory:
    """The program's memory; a node is its colour and its value offset, then three links."""

    LINKS = {"parent": 0, "left": 1, "right": 2}

    def __init__(self, pointer_size, read_bytes):
        self.pointer = {4: "I", 8: "Q"}[pointer_size]
        self.read_bytes = read_bytes

    def read(self, address, code):
        raw = self.read_bytes(address, struct.calcsize(code))
        if raw is None:
            raise ValueError(f"nothing can be read at {address:#x}")
        return struct.unpack("=" + code, raw)[0]

    def text(self, address, count):
        """Bytes of which no type is known."""
        raw = self.read_bytes(address, min(count, 32))
        return "not readable" if raw is None else raw.hex(" ") + (" ..." if count > 32 else "")

    def link(self, node, name):
        size = struct.calcsize(self.pointer)
        return self.read(node + 8 + self.LINKS[name] * size, self.pointer)


# --- gdb


class GdbObject:
    def __init__(self, value):
        self.value = value

    def has(self, name):
        return any(field.name == name for field in self.value.type.strip_typedefs().fields())

    def member(self, name):
        return GdbObject(self.value[name])

    def unsigned(self):
        return int(self.value) % (1 << (8 * self.value.type.sizeof))

    def signed(self):
        return int(self.value)

    def text(self):
        return f'"{self.value.string()}"' if self.value else "without a name"

    def shown(self):
        return self.value.format_string()

    def type_name(self):
        return self.value.type.strip_typedefs().unqualified().name

    def template_type(self, i):
        return self.value.type.strip_typedefs().template_argument(i)

    def memory(self):
        return Memory(gdb.lookup_type("void").pointer().sizeof, self.read_bytes)

    @staticmethod
    def read_bytes(address, count):
        try:
            return gdb.selected_inferior().read_memory(address, count).tobytes()
        except gdb.error:
            return None


class GdbPrinter:
    def __init__(self, view):
        self.view = view

    def to_string(self):
        return self.view.summary()

    def children(self):
        for name, child in self.view.children():
            yield name, child if isinstance(child, str) else self.value_at(*child)

    @staticmethod
    def value_at(address, kind):
        return gdb.Value(address).cast(kind.pointer()).dereference()


def gdb_register():
    import gdb.printing

    class Printers(gdb.printing.PrettyPrinter):
        def __call__(self, value):
            if value.type.code in (gdb.TYPE_CODE_REF, gdb.TYPE_CODE_RVALUE_REF):
                value = value.referenced_value()
            try:
                view = view_of(GdbObject(value))
            except gdb.error:  # optimised out, in whole or in part
                return None
            return GdbPrinter(view) if view else None

    printers = Printers("TARNHYLBasGenericsLib")
    gdb.printing.register_pretty_printer(gdb.current_objfile(), printers, replace=True)


# --- lldb


class LldbObject:
    def __init__(self, value):
        value = value.GetNonSyntheticValue()
        self.value = value.Dereference() if value.GetType().IsReferenceType() else value

    def has(self, name):
        return self.value.GetChildMemberWithName(name).IsValid()

    def member(self, name):
        return LldbObject(self.value.GetChildMemberWithName(name))

    def unsigned(self):
        return self.value.GetValueAsUnsigned()

    def signed(self):
        return self.value.GetValueAsSigned()

    def text(self):
        return self.value.GetSummary() or "without a name"

    def shown(self):
        return self.value.GetSummary() or self.value.GetValue()

    def type_name(self):
        return self.value.GetType().GetCanonicalType().GetUnqualifiedType().GetName()

    def template_type(self, i):
        return LldbType(self.value.GetType().GetCanonicalType().GetTemplateArgumentType(i))

    def memory(self):
        return Memory(self.value.GetTarget().GetAddressByteSize(), self.read_bytes)

    def read_bytes(self, address, count):
        error = lldb.SBError()
        raw = self.value.GetProcess().ReadMemory(address, count, error)
        return raw if error.Success() else None


class LldbType:
    def __init__(self, sbtype):
        self.sbtype = sbtype
        self.sizeof = sbtype.GetByteSize()


class LldbView:
    """The children that lldb asks for by number; it shows no more than its own limit."""

    LIMIT = 1024

    def __init__(self, value, _):
        self.value = value
        self.update()

    def update(self):
        view = view_of(LldbObject(self.value))
        self.shown = list(itertools.islice(view.children(), self.LIMIT)) if view else []
        return False

    def num_children(self):
        return len(self.shown)

    def get_child_index(self, name):
        return [child[0] for child in self.shown].index(name)

    def get_child_at_index(self, index):
        name, child = self.shown[index]
        if isinstance(child, str):
            return self.text_child(name, child)
        address, kind = child
        return self.value.CreateValueFromAddress(name, address, kind.sbtype)

    def text_child(self, name, text):
        target = self.value.GetTarget()
        order, size = target.GetByteOrder(), target.GetAddressByteSize()
        data = lldb.SBData.CreateDataFromCString(order, size, text)
        kind = target.GetBasicType(lldb.eBasicTypeChar).GetArrayType(len(text))
        return self.value.CreateValueFromData(name, data, kind)


def lldb_summary(value, _):
    return view_of(LldbObject(value)).summary()


def __lldb_init_module(debugger, _):
    for pattern, view in VIEWS.items():
        where = f'-w hylbas -x "^{pattern}$"'
        debugger.HandleCommand(f"type summary add --expand {where} -F {__name__}.lldb_summary")
        if not issubclass(view, Leaf):
            debugger.HandleCommand(f"type synthetic add {where} -l {__name__}.LldbView")
    debugger.HandleCommand("type category enable hylbas")


if gdb:
    gdb_register()
