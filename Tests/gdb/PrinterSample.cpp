// What the pretty-printers are shown; PrinterTest.py stops in Stop() and looks at the caller.

#include <libteskTools/DLList.h>

#include "vx/CString.h"
#include "vx/Error.h"
#include "vx/List.h"
#include "vx/Ref.h"
#include "vx/StringList.h"

class Sample : public vxUserData {};

__attribute__((noinline)) void Stop() {
    asm volatile("");
}

int main() {
    const vxCString theEmpty;
    const vxCString theOwned("say \"hi\"");
    const vxCString theShared("abc");
    const vxCString theCopy(theShared);
    const vxCString theStatic = vxCString::FromStaticString("static");
    const vxCString theSum = theShared + "def";
    const vxCString theSumCopy(theSum);
    vxCString theWritten("old");
    theWritten.GetWriteBuf(3);
    const vxRef<vxUserData> theNull;
    const vxRef<vxUserData> theHeld(new Sample);
    const vxRefAny theOther(theHeld);
    const vxList<int> theEmptyList;
    vxList<int> theList;
    theList.push_back(1);
    theList.push_back(2);
    vxListIterator<int> theIterator(theList);
    const vxListIterator<int> theOutside(theList);
    theIterator.Next();
    vxDLList theEmptyHead;
    vxDLList_Init(&theEmptyHead);
    vxDLList theHead;
    vxDLList_Init(&theHead);
    _vxDLListNode theNode;
    vxDLList_InitNode(&theNode);
    vxDLList_AddTail(&theHead, &theNode);
    _vxDLListNode theFreeNode;
    vxDLList_InitNode(&theFreeNode);
    vxCSVStringList theNames("a,b,,c");
    theNames.RemoveAt(1);
    const vxStringList theNoNames;
    vxError theError(5, "five");
    theError.ConvertTo(-3, "not found", "File");
    Stop();
    theWritten.UngetWriteBuf(0);
    return 0;
}
