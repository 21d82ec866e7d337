// A text is a date or gives the invalid value; a date written in ISO form reads back as itself.

#include <vx/DateTime.h>

#include "Input.h"

namespace {

void RoundTrip(const vxDateTime& aDate) {
    // Dates outside the range of four-digit years and hours that a clock change skips are left out.
    if (!aDate.IsValid() || aDate.GetYear() < 1971 || aDate.GetYear() > 2037) {
        return;
    }
    vxDateTime theAgain;
    vxfuzz::Expect(theAgain.ParseISO(aDate.FormatISO()), "written dates are read");
    vxfuzz::Expect(theAgain.GetTicks() == aDate.GetTicks(), "written dates read back");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aData, size_t aSize) {
    setenv("TZ", "UTC", 1);
    vxfuzz::AssertionsAreFindings();
    const vxCString theText(reinterpret_cast<const char*>(aData), aSize);
    vxDateTime theDate;
    if (theDate.ParseISO(theText)) {
        RoundTrip(theDate);
    }
    vxDateTime theHeaderDate;
    if (theHeaderDate.ParseRFC1123(theText)) {
        RoundTrip(theHeaderDate);
    }
    vxDateTime theMediaDate;
    if (theMediaDate.ParseDLNA(theText)) {
        RoundTrip(theMediaDate);
    }
    vxDateTime theTime;
    theTime.ParseISOTime(theText);
    return 0;
}
