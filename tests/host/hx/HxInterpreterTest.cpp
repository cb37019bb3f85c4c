#include "hx/HxInterpreter.h"
#include "hx/HxScript.h"
#include "hx/HxScriptCommands.h"
#include "hx/HxScriptSocket.h"
#include "hx/HxWorkArea.h"
#include "mc/McMemoryException.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTcpServer>

#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <future>
#include <string>
#include <tcl.h>
#include <thread>

namespace {

HxInterpreter& tcl()
{
    return *HxInterpreter::getTheInterpreter();
}

std::string evaluated(const char* script)
{
    McString result;
    const int code = tcl().eval(script, result);
    return (code == TCL_OK ? "" : "error: ") + std::string(result.c_str());
}

TEST(HxInterpreter, ReadsGlobalAndNamespacedVariables)
{
    evaluated("set interpreterTestGlobal {a b}; namespace eval interpreterTest {variable v 7}");
    EXPECT_STREQ(tcl().getVar("interpreterTestGlobal"), "a b");
    EXPECT_STREQ(tcl().getVar("interpreterTest::v"), "7");
    EXPECT_EQ(tcl().getVar("interpreterTestNothing"), nullptr);
    EXPECT_EQ(tcl().getVar("interpreterTest::nothing"), nullptr);
    EXPECT_EQ(tcl().getVar("noSuchNamespace::v"), nullptr);
}

TEST(HxInterpreter, FormattedEvaluationIsNullOnErrorsOnly)
{
    evaluated("set interpreterTestList {one {two words} three}");
    EXPECT_STREQ(tcl().evalf("llength $%s", "interpreterTestList"), "3");
    EXPECT_STREQ(tcl().evalf("lindex $%s %d", "interpreterTestList", 1), "two words");
    EXPECT_STREQ(tcl().evalf("lindex $%s %d", "interpreterTestList", 3), "") << "beyond the end";
    EXPECT_EQ(tcl().evalf("llength $%s", "interpreterTestNothing"), nullptr);

    const std::string big(100000, 'x');
    EXPECT_STREQ(tcl().evalf("string length %s", big.c_str()), "100000");
}

TEST(HxInterpreter, EvaluatesAtGlobalLevelFromInsideAProcedure)
{
    HxScriptCommands::add("interpreterTestSet", "interpreterTestSet", "",
                          [](Tcl_Interp*, int, const char* const*) {
                              return tcl().evalf("set interpreterTestLevel 1") ? TCL_OK : TCL_ERROR;
                          });
    evaluated("proc interpreterTestProc {} { interpreterTestSet }; interpreterTestProc");
    EXPECT_STREQ(tcl().getVar("interpreterTestLevel"), "1");
}

TEST(HxInterpreter, AFileTellsWhereItFailed)
{
    const std::string path = testing::TempDir() + "interpreter_test.tcl";
    std::ofstream(path) << "set interpreterTestName \"\u00e9\"\nset x 1\nfoo_unknown\n";
    McString result;
    EXPECT_EQ(tcl().evalFile(path.c_str(), result), TCL_ERROR);
    EXPECT_STREQ(result, "invalid command name \"foo_unknown\"");
    EXPECT_NE(std::string(tcl().errorText().c_str()).find("line 3"), std::string::npos)
        << tcl().errorText().c_str();
    EXPECT_STREQ(tcl().getVar("interpreterTestName"), "\u00e9") << "scripts are UTF-8";

    EXPECT_EQ(tcl().evalFile("/nonexistent/x.tcl", result), TCL_ERROR);
    EXPECT_NE(std::string(result.c_str()).find("/nonexistent/x.tcl"), std::string::npos);
    EXPECT_STREQ(tcl().errorText(), result) << "nothing is left of the error before";
}

TEST(HxScript, SetsAndAppendsFormattedResults)
{
    const std::string big(70000, 'y');
    Tcl_VaSetResult(tcl().tcl(), "%s%d", big.c_str(), 5);
    EXPECT_EQ(Tcl_GetStringResult(tcl().tcl()), big + "5");

    Tcl_ResetResult(tcl().tcl());
    Tcl_VaAppendElement(tcl().tcl(), "%d %s", 1, "{x");
    Tcl_VaAppendElement(tcl().tcl(), "%s", "");
    int count = 0;
    Tcl_ListObjLength(nullptr, Tcl_GetObjResult(tcl().tcl()), &count);
    EXPECT_EQ(count, 2) << Tcl_GetStringResult(tcl().tcl());
}

TEST(HxScriptCommands, ComplainsWithUsageAndCatchesExceptions)
{
    HxScriptCommands::add("commandsTest", "commandsTest WHAT", "Throws things.",
                          [](Tcl_Interp* interp, int wordCount, const char* const* words) -> int {
                              if (wordCount != 2) return HxScriptCommands::wrongArguments(interp, words[0]);
                              const std::string what = words[1];
                              if (what == "memory") throw McMemoryException(123);
                              if (what == "exception") throw McException("The disk is sad.");
                              throw std::bad_alloc();
                          });
    EXPECT_EQ(evaluated("commandsTest"), "error: wrong # args: should be \"commandsTest WHAT\"");
    EXPECT_EQ(evaluated("commandsTest memory"), "error: commandsTest: Not enough memory (123 bytes).");
    EXPECT_EQ(evaluated("commandsTest exception"), "error: commandsTest: The disk is sad.");
    EXPECT_EQ(evaluated("commandsTest other"), "error: commandsTest: Not enough memory.");
    ASSERT_NE(HxScriptCommands::find("commandsTest"), nullptr);
    EXPECT_EQ(HxScriptCommands::find("commandsTest")->help, "Throws things.");
}

class HxScriptSocketTest : public testing::Test
{
protected:
    static void SetUpTestSuite() { ASSERT_EQ(tcl().openVorelSocket(7175), 0); }

    struct Reply
    {
        bool ok;
        std::string text;
    };

    /// Sends from another thread, as another process would, while this one runs its event loop.
    static Reply sent(const std::string& script, int port)
    {
        auto reply = std::async(std::launch::async, [&] {
            McString answer;
            const bool ok = HxScriptSocket::send(script.c_str(), "127.0.0.1", port, answer);
            return Reply{ok, answer.c_str()};
        });
        while (reply.wait_for(std::chrono::seconds(0)) != std::future_status::ready)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 10);
        return reply.get();
    }
};

TEST_F(HxScriptSocketTest, SendsResultsAndErrorsBackUnharmed)
{
    const int port = tcl().port();
    ASSERT_GE(port, 7175);
    ASSERT_LE(port, 7195);

    const Reply sum = sent("expr {6 * 7}", port);
    EXPECT_TRUE(sum.ok);
    EXPECT_EQ(sum.text, "42");

    const Reply lines = sent("set socketTest \"a\\nb\\\\n\\rc\"", port);
    EXPECT_TRUE(lines.ok);
    EXPECT_EQ(lines.text, "a\nb\\n\rc");
    EXPECT_STREQ(tcl().getVar("socketTest"), "a\nb\\n\rc");

    const Reply failure = sent("error {not here}", port);
    EXPECT_FALSE(failure.ok);
    EXPECT_EQ(failure.text, "127.0.0.1:" + std::to_string(port) + ": not here");

    const Reply twoLines = sent("set a 1\nset b 2", port);
    EXPECT_FALSE(twoLines.ok);
}

TEST_F(HxScriptSocketTest, ASecondOpenKeepsThePortAndATakenPortIsSkipped)
{
    const int port = tcl().port();
    EXPECT_EQ(tcl().openVorelSocket(9000), 0);
    EXPECT_EQ(tcl().port(), port);

    QTcpServer other;
    ASSERT_TRUE(other.listen(QHostAddress::LocalHost));
    HxScriptSocket second;
    ASSERT_TRUE(second.listen(other.serverPort()));
    EXPECT_GT(second.port(), other.serverPort());
}

// The commands raise the signal that Ctrl+C raises, in the middle of a script.
TEST(HxInterruptedScript, EndsPastEveryCatchAndTheNextOneRuns)
{
    HxWorkArea::catchSignals();
    bool sawInterruption = false;
    HxScriptCommands::add("pressCtrlC", "pressCtrlC", "", [&](Tcl_Interp*, int, const char* const*) {
        raise(SIGINT);
        return TCL_OK;
    });
    HxScriptCommands::add("busyCtrlC", "busyCtrlC", "", [&](Tcl_Interp*, int, const char* const*) {
        HxWorkArea::getTheWorkArea()->busyOn("long");
        raise(SIGINT);
        sawInterruption = HxWorkArea::getTheWorkArea()->interrupted();
        HxWorkArea::getTheWorkArea()->busyOff();
        return TCL_OK;
    });
    McString result;
    HxInterpreter* interpreter = HxInterpreter::getTheInterpreter();
    for (const char* script : {"catch {pressCtrlC}; while 1 {catch {set a 1}}", "busyCtrlC; while 1 {}"}) {
        EXPECT_EQ(interpreter->eval(script, result), TCL_ERROR) << script;
        EXPECT_EQ(std::string(result.c_str()), "interrupted.") << script;
        EXPECT_EQ(interpreter->eval("expr 6 * 7", result), TCL_OK);
        EXPECT_EQ(std::string(result.c_str()), "42");
    }
    EXPECT_TRUE(sawInterruption);
    signal(SIGINT, SIG_DFL);
}

TEST_F(HxScriptSocketTest, WaitsUntilTheBusyPhaseEnds)
{
    HxWorkArea* workArea = HxWorkArea::getTheWorkArea();
    auto reply = std::async(std::launch::async, [port = tcl().port()] {
        McString answer;
        return HxScriptSocket::send("set socketTestBusy done", "127.0.0.1", port, answer);
    });
    workArea->busyOn("Busy");
    QElapsedTimer clock;
    for (clock.start(); clock.elapsed() < 200;) QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    EXPECT_EQ(tcl().getVar("socketTestBusy"), nullptr);
    while (workArea->busyDepth() > 0) workArea->busyOff();
    while (reply.wait_for(std::chrono::seconds(0)) != std::future_status::ready)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    EXPECT_TRUE(reply.get());
    EXPECT_STREQ(tcl().getVar("socketTestBusy"), "done");
}

} // namespace
