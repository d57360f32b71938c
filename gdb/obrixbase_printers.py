# GDB pretty-printers for the numeric views (DoubleVec, IntVec, SCharVec), the general matrices
# (DoubleGenMat, IntGenMat), T4dDblMatrix and DS_Structure. Installed as the auto-load script
# of libObrixBase; from anywhere else: (gdb) source <this file>.
#
# They read memory only and never call into the program, so they work on core files too.
# The layouts they read:
#   NumVec<T>      block_ (shared RWBlock), data_ (element 0 of the view), length_, stride_:
#                  element i is data_[i * stride_].
#   NumGenMat<T>   vec_ (a NumVec over the column-major elements), ncols_, nrows_:
#                  element (i, j) is vec_.data_[(nrows_ * j + i) * vec_.stride_].
#   T4dDblMatrix   m_[4][4], row-major, rows are the printed rows (row vectors: p' = p M).
#   DS_Structure   methods->get_type names the kind; storage per kind:
#                  1 {first, last, count} over nodes {data, next, prev};
#                  2 the first node itself, nodes {data, next};
#                  3 {root, count} over nodes {data, left, right, parent, height}, in order;
#                  4 {items, count, capacity}, items[i] is member i.
import re

import gdb

# Members listed at most, whatever `set print elements` says: a corrupt count must not make
# the debugger read the whole address space.
MEMBER_LIMIT = 100000

_KIND_NAMES = {
    1: "doubly linked list",
    2: "singly linked list",
    3: "binary tree",
    4: "array",
}
_KIND_BY_FUNCTION = {
    "Ds_dlist_get_type": 1,
    "Ds_slist_get_type": 2,
    "Ds_bintree_get_type": 3,
    "Ds_array_get_type": 4,
}
_VEC_NAMES = {"double": "DoubleVec", "int": "IntVec", "signed char": "SCharVec"}
_MAT_NAMES = {"double": "DoubleGenMat", "int": "IntGenMat"}


def _element_limit():
    """How many elements a printed row may show: GDB's `print elements`, else MEMBER_LIMIT."""
    try:
        limit = gdb.parameter("print elements")
    except RuntimeError:
        limit = None
    return min(limit, MEMBER_LIMIT) if limit else MEMBER_LIMIT


def _void_pp():
    return gdb.lookup_type("void").pointer().pointer()


def _element_array(addresses, element_type):
    """A gdb array value holding copies of the elements at `addresses`."""
    size = element_type.sizeof
    inferior = gdb.selected_inferior()
    raw = b"".join(bytes(inferior.read_memory(a, size)) for a in addresses)
    return gdb.Value(raw, element_type.array(len(addresses) - 1))


class NumVecPrinter:
    """DoubleVec of length 3, stride 1 = {1, 2, 3}"""

    def __init__(self, value, element_type):
        self.value = value
        self.element_type = element_type

    def _shape(self):
        return int(self.value["length_"]), int(self.value["stride_"])

    def to_string(self):
        length, stride = self._shape()
        name = _VEC_NAMES.get(str(self.element_type), "NumVec")
        return "%s of length %d, stride %d" % (name, length, stride)

    def children(self):
        length, stride = self._shape()
        data = self.value["data_"]
        for i in range(min(length, MEMBER_LIMIT)):
            yield "[%d]" % i, (data + i * stride).dereference()

    def display_hint(self):
        return "array"


class NumGenMatPrinter:
    """DoubleGenMat 2 x 3 = {{row 0}, {row 1}}: rows as they read, whatever the storage.
    Rows longer than `print elements` are cut there; the shape in front says how long they are."""

    def __init__(self, value, element_type):
        self.value = value
        self.element_type = element_type

    def to_string(self):
        name = _MAT_NAMES.get(str(self.element_type), "NumGenMat")
        return "%s %d x %d" % (name, int(self.value["nrows_"]), int(self.value["ncols_"]))

    def children(self):
        rows, cols = int(self.value["nrows_"]), int(self.value["ncols_"])
        if cols == 0:
            return
        vec = self.value["vec_"]
        data, stride = vec["data_"], int(vec["stride_"])
        size = self.element_type.sizeof
        base = int(data.cast(gdb.lookup_type("unsigned long")))
        # A row holds at most what GDB would show of it, so that a wide matrix is not read whole.
        shown = min(cols, _element_limit())
        for i in range(min(rows, MEMBER_LIMIT)):
            addresses = [base + (rows * j + i) * stride * size for j in range(shown)]
            yield "[%d]" % i, _element_array(addresses, self.element_type)

    def display_hint(self):
        return "array"


class T4dDblMatrixPrinter:
    """T4dDblMatrix = {{row 0}, {row 1}, {row 2}, {row 3}}"""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        return "T4dDblMatrix"

    def children(self):
        for i in range(4):
            yield "[%d]" % i, self.value["m_"][i]

    def display_hint(self):
        return "array"


def _kind_of(structure):
    """The kind number of a structure from the function in its table's get_type slot."""
    methods = structure["methods"]
    if int(methods) == 0:
        return None
    address = int(methods["get_type"])
    if address == 0:
        return None
    block = None
    try:
        block = gdb.block_for_pc(address)
    except RuntimeError:
        pass
    name = block.function.name if block is not None and block.function is not None else None
    if name is not None:
        name = name.split("(")[0]  # C++ debug information writes "Ds_dlist_get_type()"
    else:
        # No debug information there: the symbol table still names it.
        text = gdb.execute("info symbol %#x" % address, to_string=True)
        match = re.match(r"(\w+)", text)
        name = match.group(1) if match else ""
    return _KIND_BY_FUNCTION.get(name)


def _members(kind, storage):
    """Item pointers of a structure of a built-in kind, in member order."""
    slot = _void_pp()
    void_p = gdb.lookup_type("void").pointer()
    if int(storage) == 0:
        return []
    words = storage.cast(slot)
    items = []
    if kind == 1:
        node = words[0].cast(slot)  # header.first
        while int(node) != 0 and len(items) < MEMBER_LIMIT:
            items.append(node[0].cast(void_p))
            node = node[1].cast(slot)
    elif kind == 2:
        node = words
        while int(node) != 0 and len(items) < MEMBER_LIMIT:
            items.append(node[0].cast(void_p))
            node = node[1].cast(slot)
    elif kind == 3:
        # In-order walk with an explicit stack; node words: data, left, right, parent.
        stack, node = [], words[0].cast(slot)
        while (stack or int(node) != 0) and len(items) < MEMBER_LIMIT:
            if int(node) != 0:
                stack.append(node)
                node = node[1].cast(slot)
            else:
                node = stack.pop()
                items.append(node[0].cast(void_p))
                node = node[2].cast(slot)
    elif kind == 4:
        array = words[0].cast(slot)
        # {void **items; int count; int capacity}: count is the int right after the pointer.
        ints = storage.cast(gdb.lookup_type("int").pointer())
        count = int(ints[void_p.sizeof // ints.type.target().sizeof])
        for i in range(min(max(count, 0), MEMBER_LIMIT)):
            items.append(array[i].cast(void_p))
    return items


class DSStructurePrinter:
    """DS_Structure (doubly linked list, 2 members, ordered) = {0x..., 0x...}"""

    def __init__(self, value):
        self.value = value
        self.kind = _kind_of(value)

    def to_string(self):
        if self.kind is None:
            return "DS_Structure (no known kind, methods %s)" % self.value["methods"]
        members = len(_members(self.kind, self.value["storage"]))
        notes = [_KIND_NAMES[self.kind], "%d member%s" % (members, "" if members == 1 else "s")]
        notes.append("ordered" if int(self.value["ordered"]) else "not ordered")
        if int(self.value["filter"]) != 0:
            notes.append("filtered: all members shown")
        return "DS_Structure (%s)" % ", ".join(notes)

    def children(self):
        if self.kind is None:
            return
        for i, item in enumerate(_members(self.kind, self.value["storage"])):
            yield "[%d]" % i, item

    def display_hint(self):
        return "array"


def _lookup(value):
    value_type = value.type
    if value_type.code == gdb.TYPE_CODE_REF:
        value_type = value_type.target()
    value_type = value_type.unqualified().strip_typedefs()
    name = value_type.tag or value_type.name
    if not name:
        return None
    if name.startswith("NumVec<"):
        return NumVecPrinter(value, value_type.template_argument(0))
    if name.startswith("NumGenMat<"):
        return NumGenMatPrinter(value, value_type.template_argument(0))
    if name == "T4dDblMatrix":
        return T4dDblMatrixPrinter(value)
    if name == "DS_Structure":
        return DSStructurePrinter(value)
    return None


def register(objfile=None):
    """Adds the printers to `objfile` (the library, when auto-loaded) or to every program."""
    holder = objfile if objfile is not None else gdb
    if _lookup not in holder.pretty_printers:
        holder.pretty_printers.append(_lookup)


register(gdb.current_objfile())
