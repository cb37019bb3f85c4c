#pragma once

#include "hx/HxResource.h"
#include "mc/McException.h"

#include <exception>
#include <utility>

/// Where the message of an exception goes.
enum class GiReport
{
    kDialog, // of a command that the user chose and waits for
    kConsole // of an event, which a dialog would answer with further events
};

/// Runs what the user's hands led to. Qt takes no exceptions from slots and event handlers: one that gets
/// there ends the program, and labels that are not saved go with it. Those of libraries end here, too.
template <class Act>
void giGuarded(GiReport report, const Act& act)
{
    const int consoleOnly = report == GiReport::kConsole ? 1 : 0;
    try {
        act();
    } catch (const McException& e) {
        HxResource::handleException(e, consoleOnly);
    } catch (const std::exception& e) {
        HxResource::handleException(McException(e.what()), consoleOnly);
    }
}

/// A slot that calls an operation with what the signal tells, and reports exceptions in a dialog.
template <class Object, class Base, class... Values>
auto giGuardedSlot(Object* object, void (Base::*operation)(Values...))
{
    return [object, operation](Values... values) {
        giGuarded(GiReport::kDialog, [&] { (object->*operation)(std::forward<Values>(values)...); });
    };
}
