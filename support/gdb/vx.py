"""Pretty-printers of libvx for gdb.

    (gdb) source support/gdb/vx.py

A vxCString shows its text and how its block is shared, a vxRef its object and how many handles hold it:

    theTitle = "The Long Way Home" (shared by 2)
    theCommand = (vxCLICommand *) 0x55555556b2c0 (held by 3)

Lists and string lists show their items, an error the chain behind it:

    theNames = vxCSVStringList of 2, separator ',' = {"first", "second"}
    theError = -3 [File] 'not found' <- 5 'no such device'
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


class ListPrinter:
    """The size, then the values."""

    def __init__(self, value):
        self.value = value
        self.type = value.type.strip_typedefs().unqualified()

    def to_string(self):
        return f'{self.type} of {int(self.value["mSize"])}'

    def display_hint(self):
        return 'array'

    def children(self):
        item, number = self.value['mBegin'], 0
        while int(item) != 0:
            yield f'[{number}]', list_item(item, self.type)
            item, number = item['mNext'], number + 1


def list_item(item, list_type):
    """The value in an item of a list, or of an iterator, whose type names that of the values."""
    kind = list_type.template_argument(0)
    return item.cast(gdb.lookup_type(f'vxListItem<{kind}>').pointer()).dereference()['mItem']


class ListIteratorPrinter:
    """The value that it stands on."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        if int(self.value['mList']) == 0:
            return 'the list is gone'
        return None if int(self.value['mCurrentItem']) else 'outside the items'

    def children(self):
        item = self.value['mCurrentItem']
        if int(item) != 0:
            yield 'value', list_item(item, self.value.type.strip_typedefs().unqualified())


class DLListNodePrinter:
    """Head or node, which look alike: how many others are in the ring."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        node, others = self.value['mNext'], 0
        if int(node) == 0:
            return 'in no list'
        while node != self.value.address:
            node, others = node['mNext'], others + 1
        return f'linked with {others}' if others else 'empty list'


class StringListPrinter:
    """The count and the separator, then the items."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        name = self.value.type.strip_typedefs().unqualified()
        separator = chr(int(self.value['mSeparatorChar']) & 0xFF)
        return f'{name} of {int(self.value["mCount"])}, separator {separator!r}'

    def display_hint(self):
        return 'array'

    def children(self):
        for i in range(int(self.value['mCount'])):
            yield f'[{i}]', (self.value['mStr'] + int(self.value['mIndex'][i])).lazy_string()


class ErrorPrinter:
    """The chain, newest first, also behind a code of 0."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        link, links = self.value['mError'], []
        while True:
            text = str(int(link['mCode']))
            if int(link['mModule']) != 0:
                text += f' [{link["mModule"].string("utf-8", "replace")}]'
            message = link['mMessage']['mStringPtr'].string('utf-8', 'replace')
            links.append(text + (f" '{message}'" if message else ''))
            if int(link['mPrevious']) == 0:
                return ' <- '.join(links)
            link = link['mPrevious'].dereference()


def build_printers():
    printers = gdb.printing.RegexpCollectionPrettyPrinter('libvx')
    printers.add_printer('vxCString', '^vxCString$', StringPrinter)
    printers.add_printer('vxRef', '^vxRef(Any|<.*>)$', RefPrinter)
    printers.add_printer('vxList', '^vxList<.*>$', ListPrinter)
    printers.add_printer('vxListIterator', '^vxListIterator<.*>$', ListIteratorPrinter)
    printers.add_printer('vxDLList', '^_vxDLListNode$', DLListNodePrinter)
    printers.add_printer('vxStringList', '^vx(CSV)?StringList$', StringListPrinter)
    printers.add_printer('vxError', '^vxError$', ErrorPrinter)
    return printers


gdb.printing.register_pretty_printer(gdb.current_objfile(), build_printers(), replace=True)
