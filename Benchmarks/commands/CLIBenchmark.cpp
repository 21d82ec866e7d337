// How long does a console line take from its text to typed values? The console knows six commands with
// parameters; one line is read after the other. The peers split the line as a shell does, find the
// command and convert its words with the parser that a program of theirs would use.

#include <benchmark/benchmark.h>
#include <glib.h>
#include <tcl.h>

#include <QProcess>
#include <QStringList>
#include <cstring>
#include <string>

#include "vx/CLICommand.h"
#include "vx/CLICommandSet.h"
#include "vx/CLIManager.h"

namespace {

// What a line comes down to.
struct Values {
    int mCount = 0;
    double mLevel = 0;
    bool mfLoop = false;
    std::string mName;
};

constexpr char kLine[] = "player play 'evening mix' 12 0.75 yes";

bool IsRight(const Values& aValues) {
    return aValues.mCount == 12 && aValues.mLevel == 0.75 && aValues.mfLoop &&
           aValues.mName == "evening mix";
}

void BM_Vx(benchmark::State& aState) {
    vxRef<vxCLIManager> theManager = new vxCLIManager;
    vxRef<vxCLICommandSet> theSet = new vxCLICommandSet("player,p");
    theSet->Add("play", "name:str count:ui32[1,1000] level:double[0,1] (loop:bool:no)", "play");
    theSet->Add("stop", "", "stop playing");
    theSet->Add("seek", "position:double", "go to a position");
    theSet->Add("volume", "level:ui8[0,100]", "set the volume");
    theSet->Add("say", "text:...", "show a text");
    theSet->Add("list", "(first:ui32) (count:ui32:10)", "list titles");
    theManager->Add(theSet);
    const vxCString theLine = kLine;
    for (auto _ : aState) {
        const vxRef<vxCLICommand> theCommand = theManager->Parse(theLine);
        Values theValues;
        if (theCommand->IsValid() && theCommand->Is("player", "play")) {
            theValues.mName = theCommand->Parameter(0)->GetString().c_str();
            theValues.mCount = static_cast<int>(theCommand->Parameter(1)->GetUInt32());
            theValues.mLevel = theCommand->Parameter(2)->GetDouble();
            theValues.mfLoop = theCommand->Parameter(3)->GetBool();
        }
        if (!IsRight(theValues)) {
            aState.SkipWithError("wrong values");
        }
    }
}
BENCHMARK(BM_Vx)->Name("cmdline/console_line/vx");

// GLib splits and unquotes; options of the command are declared once per line, as its parser needs.
void BM_GLib(benchmark::State& aState) {
    const std::string kOptions = "player play --name='evening mix' --count=12 --level=0.75 --loop";
    for (auto _ : aState) {
        gchar** theWords = nullptr;
        gint theCount = 0;
        Values theValues;
        if (g_shell_parse_argv(kOptions.c_str(), &theCount, &theWords, nullptr) &&
            g_str_equal(theWords[0], "player") && g_str_equal(theWords[1], "play")) {
            gchar* theName = nullptr;
            gint theNumber = 0;
            gdouble theLevel = 0;
            gboolean theLoop = FALSE;
            const GOptionEntry kEntries[] = {
                {"name", 0, 0, G_OPTION_ARG_STRING, &theName, nullptr, nullptr},
                {"count", 0, 0, G_OPTION_ARG_INT, &theNumber, nullptr, nullptr},
                {"level", 0, 0, G_OPTION_ARG_DOUBLE, &theLevel, nullptr, nullptr},
                {"loop", 0, 0, G_OPTION_ARG_NONE, &theLoop, nullptr, nullptr},
                {nullptr, 0, 0, G_OPTION_ARG_NONE, nullptr, nullptr, nullptr}};
            GOptionContext* theContext = g_option_context_new(nullptr);
            g_option_context_add_main_entries(theContext, kEntries, nullptr);
            if (g_option_context_parse_strv(theContext, &theWords, nullptr)) {
                theValues = {theNumber, theLevel, theLoop != FALSE, theName};
            }
            g_option_context_free(theContext);
            g_free(theName);
        }
        g_strfreev(theWords);
        if (!IsRight(theValues)) {
            aState.SkipWithError("wrong values");
        }
    }
}
BENCHMARK(BM_GLib)->Name("cmdline/console_line/GLib_shell_GOption");

// The plainest use of GLib: split, look up, convert by position.
void BM_GLibPlain(benchmark::State& aState) {
    for (auto _ : aState) {
        gchar** theWords = nullptr;
        gint theCount = 0;
        Values theValues;
        if (g_shell_parse_argv(kLine, &theCount, &theWords, nullptr) && theCount == 6 &&
            g_str_equal(theWords[0], "player") && g_str_equal(theWords[1], "play")) {
            guint64 theNumber = 0;
            g_ascii_string_to_unsigned(theWords[3], 10, 1, 1000, &theNumber, nullptr);
            gchar* theEnd = nullptr;
            theValues = {static_cast<int>(theNumber), g_ascii_strtod(theWords[4], &theEnd),
                         g_ascii_strcasecmp(theWords[5], "yes") == 0, theWords[2]};
        }
        g_strfreev(theWords);
        if (!IsRight(theValues)) {
            aState.SkipWithError("wrong values");
        }
    }
}
BENCHMARK(BM_GLibPlain)->Name("cmdline/console_line/GLib_shell_by_hand");

int PlayCommand(ClientData aValues, Tcl_Interp* anInterpreter, int aCount, Tcl_Obj* const* aWords) {
    Values* theValues = static_cast<Values*>(aValues);
    int theLoop = 0;
    if (aCount != 6 || strcmp(Tcl_GetString(aWords[1]), "play") != 0 ||
        Tcl_GetIntFromObj(anInterpreter, aWords[3], &theValues->mCount) != TCL_OK ||
        Tcl_GetDoubleFromObj(anInterpreter, aWords[4], &theValues->mLevel) != TCL_OK ||
        Tcl_GetBooleanFromObj(anInterpreter, aWords[5], &theLoop) != TCL_OK) {
        return TCL_ERROR;
    }
    theValues->mfLoop = theLoop != 0;
    theValues->mName = Tcl_GetString(aWords[2]);
    return TCL_OK;
}

void BM_Tcl(benchmark::State& aState) {
    Tcl_Interp* theInterpreter = Tcl_CreateInterp();
    Values theValues;
    Tcl_CreateObjCommand(theInterpreter, "player", PlayCommand, &theValues, nullptr);
    for (auto _ : aState) {
        theValues = Values();
        // typed text is evaluated once, so it is not compiled
        if (Tcl_EvalEx(theInterpreter, "player play \"evening mix\" 12 0.75 yes", -1,
                       TCL_EVAL_DIRECT) != TCL_OK ||
            !IsRight(theValues)) {
            aState.SkipWithError("wrong values");
        }
    }
    Tcl_DeleteInterp(theInterpreter);
}
BENCHMARK(BM_Tcl)->Name("cmdline/console_line/Tcl");

void BM_Qt(benchmark::State& aState) {
    const QString theLine = "player play \"evening mix\" 12 0.75 yes";
    for (auto _ : aState) {
        const QStringList theWords = QProcess::splitCommand(theLine);
        Values theValues;
        if (theWords.size() == 6 && theWords[0] == QLatin1String("player") &&
            theWords[1] == QLatin1String("play")) {
            bool theIsNumber = false;
            theValues = {theWords[3].toInt(&theIsNumber), theWords[4].toDouble(&theIsNumber),
                         theWords[5].compare(QLatin1String("yes"), Qt::CaseInsensitive) == 0,
                         theWords[2].toStdString()};
        }
        if (!IsRight(theValues)) {
            aState.SkipWithError("wrong values");
        }
    }
}
BENCHMARK(BM_Qt)->Name("cmdline/console_line/Qt_split_by_hand");

}  // namespace
