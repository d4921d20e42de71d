"""gdb printers for the module's texts and lists.

    (gdb) source tools/gdb_printers.py
    (gdb) print text        ->  "C:\\lumen"  (a null text prints as null)
    (gdb) print *list       ->  MStringList of 2 = {["a.ocx"] = "a.ocx", ...}

Works for native builds and, through Wine's or a remote gdb, for the product: units are read as 16 bits from memory.
"""
import gdb
import gdb.printing

# A damaged block or list must not make the debugger read for ever.
LONGEST_TEXT = 4096
LONGEST_LIST = 10000


def text_of(value):
    """The characters of an MString, or None for the null one."""
    block = value["block_"]
    start = int(value["start_"])
    if int(block) == 0:
        return None
    units = int(block["length"]) - start
    if units < 0 or start < 0:
        return "<damaged: length %d, start %d>" % (int(block["length"]), start)
    shown = min(units, LONGEST_TEXT)
    first = int(block) + block.dereference().type.sizeof + 2 * start
    if shown == 0:
        return ""
    raw = gdb.selected_inferior().read_memory(first, 2 * shown)
    text = bytes(raw).decode("utf-16-le", errors="replace")
    return text + ("..." if shown < units else "")


class MStringPrinter:
    """Prints the view, not the whole block."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        try:
            text = text_of(self.value)
        except gdb.MemoryError:
            return "<unreadable text>"
        return "null" if text is None else '"%s"' % text


class MStringListPrinter:
    """Prints the pairs from the head."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        return "MStringList of %d" % int(self.value["count_"])

    def display_hint(self):
        return "map"

    def children(self):
        node = self.value["head_"]
        index = 0
        while int(node) != 0 and index < LONGEST_LIST:
            yield "key%d" % index, node["key"]
            yield "value%d" % index, node["value"]
            node = node["next"]
            index += 1


def build():
    printers = gdb.printing.RegexpCollectionPrettyPrinter("lumen")
    printers.add_printer("MString", "^MString$", MStringPrinter)
    printers.add_printer("MStringList", "^MStringList$", MStringListPrinter)
    return printers


gdb.printing.register_pretty_printer(gdb.current_objfile(), build(), replace=True)
