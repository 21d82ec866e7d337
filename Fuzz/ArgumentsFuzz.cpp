// Any command line gives a result of 0, 1 or -1 and leaves readable values.

#include <vx/CommandLineParser.h>

#include "Input.h"

namespace {

constexpr vxCommandLineDescription kDescription[] = {
    {vxCommandLineEntryType_Switch, "h", "help", vxCommandLineParameter_None,
     vxCommandLineFlag_HelpOption},
    {vxCommandLineEntryType_Switch, "v", "verbose", vxCommandLineParameter_None, 0},
    {vxCommandLineEntryType_Option, "p", "port", vxCommandLineParameter_Number, 0},
    {vxCommandLineEntryType_Option, "port", "longer", vxCommandLineParameter_String,
     vxCommandLineFlag_NeedSeparator},
    {vxCommandLineEntryType_Parameter, NULL, "first", vxCommandLineParameter_String, 0},
    {vxCommandLineEntryType_Parameter, NULL, "rest", vxCommandLineParameter_String,
     vxCommandLineFlag_ParameterOptional | vxCommandLineFlag_ParameterMultiple},
    {vxCommandLineEntryType_None, NULL, NULL, vxCommandLineParameter_None, 0},
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aData, size_t aSize) {
    vxfuzz::AssertionsAreFindings();
    vxConsole_SetHandler([](void*, const char*) {}, nullptr);
    const std::string theLine = vxfuzz::Input(aData, aSize).Rest();
    vxCommandLineParser theParser(kDescription, theLine.c_str(), false);
    const int theResult = theParser.Parse(false);
    vxfuzz::Expect(theResult >= -1 && theResult <= 1, "a stated result");
    int theNumber = 0;
    vxCString theText;
    theParser.Found("v");
    theParser.Found("p", &theNumber);
    theParser.Found("port", &theText);
    for (unsigned i = 0; i < theParser.GetParameterCount(); ++i) {
        theParser.GetParameter(i);
    }
    return 0;
}
