#pragma once

#include <cstdio>
#include <functional>
#include <string>
#include <vector>

/// A modal dialog that waits for an answer.
struct HxDialogRequest
{
    enum class Kind
    {
        info,
        warning,
        question,
        error
    };

    Kind kind;
    std::string text;
    std::vector<std::string> buttons; ///< one to three
    int defaultIndex;                 ///< the button that Return presses
    int escapeIndex;                  ///< the button that Escape presses
};

/// The console and the modal questions.
///
/// A question is answered, in this order, by the answers that a script has queued, by the dialog handler
/// (the windows, or a test), or by its escape button. In the last case its text goes to the console's error
/// side. Boxes of a single button ask nothing: they never use up a queued answer.
class HxMessage
{
public:
    using DialogHandler = std::function<int(const HxDialogRequest&)>;
    using Sink = std::function<void(const char*)>;

    static HxMessage* getTheMsg();

    /// One console entry per call. Drops one trailing newline and keeps all others.
    void printf(const char* format, ...) __attribute__((format(printf, 2, 3)));

    /// One console entry that a script asked for: its result, where printf() has the program's remarks.
    void echo(const char* text);

    /// Reports on the console that memory ran out; 0: size unknown.
    void memError(unsigned long bytes = 0);

    /// Modal; returns the index of the button. Buttons that are null are absent; without any there is "Ok".
    /// escapeIndex -1: the last button.
    int warning(const char* text, const char* b0 = "Ok", const char* b1 = nullptr, const char* b2 = nullptr,
                int defaultIndex = 0, int escapeIndex = -1);
    int question(const char* text, const char* b0 = "Ok", const char* b1 = nullptr, const char* b2 = nullptr,
                 int defaultIndex = 0, int escapeIndex = -1);

    /// Modal, one button.
    void Info(const char* text);
    void error(const char* format, ...) __attribute__((format(printf, 2, 3)));

    /// Answers of the next questions, by button index; an index that a question lacks counts as its escape
    /// button and is reported.
    static void queueAnswers(const std::vector<int>& indices);
    static void clearAnswers();

    /// Shows the dialogs from now on; its answer is a button index. An empty function takes it away.
    static void setDialogHandler(DialogHandler handler);

    /// Takes the console lines from now on, one call per entry with the text as formatted, trailing newline
    /// included. Without a sink all go to standard error, echoed lines alone to standard output.
    static void setSink(Sink sink);

private:
    HxMessage() = default;

    int ask(const HxDialogRequest& request);
    void show(std::string entry, std::FILE* stream) const;

    DialogHandler dialogHandler;
    Sink sink;
    std::vector<int> queuedAnswers; // next answer first
};
