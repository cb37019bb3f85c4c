#include "hx/HxMessage.h"

#include "hx/HxFormat.h"

namespace {

std::vector<std::string> present(const char* b0, const char* b1, const char* b2)
{
    std::vector<std::string> buttons;
    for (const char* button : {b0, b1, b2})
        if (button) buttons.emplace_back(button);
    if (buttons.empty()) buttons.emplace_back("Ok");
    return buttons;
}

HxDialogRequest makeRequest(HxDialogRequest::Kind kind, const char* text, std::vector<std::string> buttons,
                            int defaultIndex, int escapeIndex)
{
    const int count = static_cast<int>(buttons.size());
    if (defaultIndex < 0 || defaultIndex >= count) defaultIndex = 0;
    if (escapeIndex < 0 || escapeIndex >= count) escapeIndex = count - 1;
    return {kind, text, std::move(buttons), defaultIndex, escapeIndex};
}

} // namespace

HxMessage* HxMessage::getTheMsg()
{
    // Leaked on purpose: destructors of other statics may still have something to say.
    static HxMessage* theMessage = new HxMessage;
    return theMessage;
}

void HxMessage::printf(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const std::string line = hxFormat(format, arguments);
    va_end(arguments);
    show(line, stderr);
}

void HxMessage::echo(const char* text)
{
    show(text, stdout);
}

void HxMessage::show(std::string entry, std::FILE* stream) const
{
    if (sink) {
        sink(entry.c_str());
        return;
    }
    if (entry.ends_with('\n')) entry.pop_back();
    std::fprintf(stream, "%s\n", entry.c_str());
    // Line by line, so that both streams keep their order where they end in one file.
    std::fflush(stream);
}

void HxMessage::memError(unsigned long bytes)
{
    if (bytes == 0)
        printf("Not enough memory.");
    else
        printf("Not enough memory (%lu bytes).", bytes);
}

int HxMessage::warning(const char* text, const char* b0, const char* b1, const char* b2, int defaultIndex,
                       int escapeIndex)
{
    return ask(
        makeRequest(HxDialogRequest::Kind::warning, text, present(b0, b1, b2), defaultIndex, escapeIndex));
}

int HxMessage::question(const char* text, const char* b0, const char* b1, const char* b2, int defaultIndex,
                        int escapeIndex)
{
    return ask(
        makeRequest(HxDialogRequest::Kind::question, text, present(b0, b1, b2), defaultIndex, escapeIndex));
}

void HxMessage::Info(const char* text)
{
    ask(makeRequest(HxDialogRequest::Kind::info, text, {"Ok"}, 0, 0));
}

void HxMessage::error(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const std::string text = hxFormat(format, arguments);
    va_end(arguments);
    ask(makeRequest(HxDialogRequest::Kind::error, text.c_str(), {"Ok"}, 0, 0));
}

int HxMessage::ask(const HxDialogRequest& request)
{
    const int count = static_cast<int>(request.buttons.size());
    const auto checked = [&](int answer, const char* source) {
        if (answer >= 0 && answer < count) return answer;
        printf("%s %d is no button of \"%s\"; taking \"%s\".", source, answer, request.text.c_str(),
               request.buttons[static_cast<std::size_t>(request.escapeIndex)].c_str());
        return request.escapeIndex;
    };

    if (count > 1 && !queuedAnswers.empty()) {
        const int answer = queuedAnswers.front();
        queuedAnswers.erase(queuedAnswers.begin());
        return checked(answer, "Answer");
    }
    if (dialogHandler) return checked(dialogHandler(request), "The dialog's answer");

    show(request.text, stderr);
    return request.escapeIndex;
}

void HxMessage::queueAnswers(const std::vector<int>& indices)
{
    std::vector<int>& queue = getTheMsg()->queuedAnswers;
    queue.insert(queue.end(), indices.begin(), indices.end());
}

void HxMessage::clearAnswers()
{
    getTheMsg()->queuedAnswers.clear();
}

void HxMessage::setDialogHandler(DialogHandler handler)
{
    getTheMsg()->dialogHandler = std::move(handler);
}

void HxMessage::setSink(Sink newSink)
{
    getTheMsg()->sink = std::move(newSink);
}
