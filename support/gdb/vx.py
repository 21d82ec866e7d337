"""Pretty-printers of libvx for gdb.

    (gdb) source support/gdb/vx.py

A vxCString shows its text and how its block is shared, a vxRef its object and how many handles hold it:

    theTitle = "The Long Way Home" (shared by 2)
    theCommand = (vxCLICommand *) 0x55555556b2c0 (held by 3)
"""
import json

import gdb
import gdb.printing


class StringPrinter:
    """The text, then the state of its block."""

    def __init__(self, value):
        self.text = value['mStringPtr']
        self.block = value['mCStringData'].dereference()

    def to_string(self):
        length = int(self.block['mStringLength'])
        text = self.text.string('utf-8', 'replace', length)
        return f'{json.dumps(text, ensure_ascii=False)} ({self.sharing()})'

    def sharing(self):
        count = int(self.block['mRefCount'])
        if count == -1:
            return 'empty'
        if count == 0:
            return 'being written'
        wrapped = self.wrapped()
        if not wrapped:
            return 'owned' if count == 1 else f'shared by {count}'
        # The count of a special block starts at 2.
        return f'wraps {wrapped} text' + (f', shared by {count - 1}' if count > 2 else '')

    def wrapped(self):
        """The kind of a special block, which stands in place of its capacity."""
        capacity = self.block['mAllocatedLength']
        largest = 2 ** (8 * capacity.type.sizeof) - 1
        return {largest: 'allocated', largest - 1: 'static'}.get(int(capacity))


class RefPrinter:
    """The object with its dynamic type, then its count."""

    def __init__(self, value):
        self.pointer = value['mPointer']

    def to_string(self):
        if int(self.pointer) == 0:
            return 'null'
        count = int(self.pointer.dereference()['mRefCount']['_M_i'])  # libstdc++'s std::atomic
        return f'({self.pointer.dynamic_type}) {int(self.pointer):#x} (held by {count})'


def build_printers():
    printers = gdb.printing.RegexpCollectionPrettyPrinter('libvx')
    printers.add_printer('vxCString', '^vxCString$', StringPrinter)
    printers.add_printer('vxRef', '^vxRef(Any|<.*>)$', RefPrinter)
    return printers


gdb.printing.register_pretty_printer(gdb.current_objfile(), build_printers(), replace=True)
