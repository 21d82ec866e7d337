#include "library/SearchCommands.h"

#include "library/ItemTable.h"
#include "library/LibraryEvaluator.h"

namespace vxmedia {

vxCString FindItems(const MediaLibrary& aLibrary, const vxCString& aCriteria, uint32_t aMaxCount,
                    Console& aConsole) {
    LibraryCriteria theCriteria(aCriteria);
    vxCString theError = theCriteria.Read();
    if (!theError.IsEmpty()) {
        return theError;
    }
    ItemTable theTable;
    for (const auto& theEntry : aLibrary.GetItems()) {
        if (theTable.GetCount() == aMaxCount) {
            break;
        }
        if (theCriteria.Match(*theEntry.second.Get())) {
            theTable.Add(*theEntry.second.Get());
        }
    }
    aConsole.Print(theTable.GetText(aLibrary.GetItems().size()));
    return vxCString();
}

}  // namespace vxmedia
