// What the pretty-printers are shown; PrinterTest.py stops in Stop() and looks at the caller.

#include "vx/CString.h"
#include "vx/Ref.h"

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
    Stop();
    theWritten.UngetWriteBuf(0);
    return 0;
}
