#include "hx/HxMessage.h"
#include "hx/HxResource.h"
#include "mc/McMemoryException.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using testing::ElementsAre;

class HxMessageTest : public testing::Test
{
protected:
    HxMessageTest()
    {
        HxMessage::setSink([this](const char* line) { lines.emplace_back(line); });
    }

    ~HxMessageTest() override
    {
        HxMessage::setSink({});
        HxMessage::setDialogHandler({});
        HxMessage::clearAnswers();
    }

    void answerDialogsWith(int index)
    {
        HxMessage::setDialogHandler([this, index](const HxDialogRequest& request) {
            requests.push_back(request);
            return index;
        });
    }

    HxMessage& msg = *HxMessage::getTheMsg();
    std::vector<std::string> lines;
    std::vector<HxDialogRequest> requests;
};

TEST_F(HxMessageTest, TheSinkGetsEachEntryUnchanged)
{
    const std::string big(100000, 'z');
    msg.printf("max label is %d\n", 4);
    msg.printf("two\nlines\n\n");
    msg.printf("%s", big.c_str());
    EXPECT_THAT(lines, ElementsAre("max label is 4\n", "two\nlines\n\n", big));
}

TEST_F(HxMessageTest, RemarksGoToStandardErrorAndEchoesToStandardOutput)
{
    msg.echo("50%");
    EXPECT_THAT(lines, ElementsAre("50%"));
    HxMessage::setSink({});
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    msg.printf("one\n");
    msg.printf("two\n\n");
    msg.echo("result\n");
    msg.printf("three");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "one\ntwo\n\nthree\n") << "one line end is dropped";
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "result\n");
}

TEST_F(HxMessageTest, UnansweredQuestionsTakeTheEscapeButtonAndSayTheirTextOnStandardError)
{
    HxMessage::setSink({});
    testing::internal::CaptureStderr();
    EXPECT_EQ(msg.question("Remove it?", "OK", "Cancel"), 1) << "escape is the last button";
    EXPECT_EQ(msg.warning("Merge?", "Yes", "No", "Stop", 2, 0), 0);
    msg.Info("Done.");
    msg.error("Can't write %s.", "a.nrrd");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Remove it?\nMerge?\nDone.\nCan't write a.nrrd.\n");
}

TEST_F(HxMessageTest, TheHandlerSeesTheWholeRequest)
{
    answerDialogsWith(1);
    EXPECT_EQ(msg.question("Sure?", "Yes", "No", "Maybe", 2, 0), 1);
    EXPECT_EQ(msg.warning("Wrap.\n", "Ok"), 0) << "1 is no button here, so it is the escape button";
    msg.error("%d%%", 50);
    ASSERT_EQ(requests.size(), 3u);
    EXPECT_EQ(requests[0].kind, HxDialogRequest::Kind::question);
    EXPECT_EQ(requests[0].text, "Sure?");
    EXPECT_THAT(requests[0].buttons, ElementsAre("Yes", "No", "Maybe"));
    EXPECT_EQ(requests[0].defaultIndex, 2);
    EXPECT_EQ(requests[0].escapeIndex, 0);
    EXPECT_EQ(requests[1].defaultIndex, 0);
    EXPECT_EQ(requests[1].escapeIndex, 0);
    EXPECT_EQ(requests[2].kind, HxDialogRequest::Kind::error);
    EXPECT_EQ(requests[2].text, "50%");
}

TEST_F(HxMessageTest, QueuedAnswersServeQuestionsInOrderBeforeTheHandler)
{
    answerDialogsWith(0);
    HxMessage::queueAnswers({1, 2});
    HxMessage::queueAnswers({2});
    msg.Info("A box of one button uses no answer.");
    EXPECT_EQ(msg.question("a", "x", "y", "z"), 1);
    EXPECT_EQ(msg.warning("b", "x", "y", "z"), 2);
    EXPECT_EQ(msg.warning("c", "x", "y", nullptr, 0, 0), 0) << "button 2 does not exist";
    EXPECT_EQ(requests.size(), 1u) << "only the box of one button reached the handler";
    EXPECT_THAT(lines, ElementsAre("Answer 2 is no button of \"c\"; taking \"x\"."));
    EXPECT_EQ(msg.question("d", "x", "y"), 0) << "the queue is empty, the handler answers";
}

TEST_F(HxMessageTest, ExceptionsGoToADialogOrToTheConsole)
{
    answerDialogsWith(0);
    HxResource::handleException(McMemoryException(4096));
    ASSERT_EQ(requests.size(), 1u);
    EXPECT_EQ(requests[0].kind, HxDialogRequest::Kind::error);
    EXPECT_EQ(requests[0].text, "Not enough memory (4096 bytes).");
    HxResource::handleException(McException("100% wrong"), 1);
    EXPECT_EQ(requests.size(), 1u) << "no dialog from within an event handler";
    msg.memError(17);
    msg.memError();
    EXPECT_THAT(lines, ElementsAre("100% wrong", "Not enough memory (17 bytes).", "Not enough memory."));
}

} // namespace
