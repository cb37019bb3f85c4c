#include "app/GiWidgetCommands.h"

#include "app/GiQ.h"
#include "app/GiQToolbox.h"
#include "app/GiWidgetValue.h"
#include "app/HxGiEditor.h"
#include "app/HxGiSubApplication.h"
#include "filters/GiFilter.h"
#include "hx/HxScript.h"
#include "hx/HxScriptCommands.h"
#include "tools/GiTool.h"

#include <QWidget>

#include <exception>
#include <string>

#include <tcl.h>

namespace {

/// One call: `COMMAND ... widget NAME ?VALUE ...?`.
struct Call
{
    Tcl_Interp* interp;
    int count;
    const char* const* words;

    int fail(const std::string& text) const
    {
        Tcl_VaSetResult(interp, "%s", (std::string(words[0]) + ": " + text).c_str());
        return TCL_ERROR;
    }
    int noData() const { return fail("no label field is open; use segment first."); }
};

std::string quoted(const char* word)
{
    return std::string("\"") + word + "\"";
}

/// Qt's own parts of a widget have names of this kind, or none.
bool isNamed(const QWidget* widget)
{
    return !widget->objectName().isEmpty() && !widget->objectName().startsWith("qt_");
}

/// Whether a path as `slider/minField` means the widget: its last part is the widget's name, the others are
/// names of widgets around it within the panel, from the outside in.
bool isMeant(const QWidget* widget, const QWidget& panel, const QStringList& path)
{
    if (widget->objectName() != path.back()) return false;
    qsizetype open = path.size() - 1; // parts that are not found yet
    for (const QWidget* outer = widget->parentWidget(); open > 0 && outer && outer != &panel;
         outer = outer->parentWidget())
        if (outer->objectName() == path[open - 1]) --open;
    return open == 0;
}

/// The name, after that of the widget around it where several widgets have it.
QString listedName(const QWidget* widget, const QStringList& allNames)
{
    const QString name = widget->objectName();
    const QWidget* parent = widget->parentWidget();
    return allNames.count(name) > 1 && parent && isNamed(parent) ? parent->objectName() + '/' + name : name;
}

/// Reads or sets the widget that the words from `at` on name.
///
/// part    true for widgets of the panel, false for those of others inside it
template <class IsPart>
int access(const Call& call, QWidget& panel, int at, const IsPart& isPart)
{
    if (call.count < at + 2 || std::string(call.words[at]) != "widget")
        return HxScriptCommands::wrongArguments(call.interp, call.words[0]);
    const char* name = call.words[at + 1];
    const QStringList path = QString::fromUtf8(name).split('/');
    QWidget* found = nullptr;
    QList<QWidget*> parts;
    QStringList names;
    for (QWidget* widget : panel.findChildren<QWidget*>()) {
        if (!isNamed(widget) || !isPart(widget)) continue;
        parts.append(widget);
        names.append(widget->objectName());
        if (!found && isMeant(widget, panel, path)) found = widget;
    }
    if (!found) {
        QStringList listed;
        for (const QWidget* widget : std::as_const(parts)) listed.append(listedName(widget, names));
        listed.removeDuplicates();
        listed.sort();
        return call.fail("there is no widget " + quoted(name) +
                         "; there are: " + listed.join(", ").toStdString() + ".");
    }
    QStringList values;
    for (int i = at + 2; i < call.count; ++i) values.append(QString::fromUtf8(call.words[i]));
    QString text;
    const bool isDone = values.isEmpty() ? giReadWidget(*found, text) : giSetWidget(*found, values, text);
    if (!isDone) return call.fail(std::string(name) + " " + text.toStdString());
    Tcl_VaSetResult(call.interp, "%s", text.toUtf8().constData());
    return TCL_OK;
}

bool isAnyPart(const QWidget*)
{
    return true;
}

int tool(Tcl_Interp* interp, int count, const char* const* words)
{
    const Call call{interp, count, words};
    if (count < 2) return HxScriptCommands::wrongArguments(interp, words[0]);
    GiQ* gi = HxGiEditor::activeGi();
    if (!gi) return call.noData();
    int index;
    if (Tcl_GetInt(interp, words[1], &index) != TCL_OK || index < 0 || index >= gi->tools.size() ||
        !gi->tools[index])
        return call.fail("there is no tool " + quoted(words[1]) + ".");
    QWidget* panel = gi->tools[index]->getWidget(nullptr);
    if (!panel) return call.fail(std::string("tool ") + words[1] + " has no panel.");
    return access(call, *panel, 2, isAnyPart);
}

int toolbox(Tcl_Interp* interp, int count, const char* const* words)
{
    const Call call{interp, count, words};
    GiQ* gi = HxGiEditor::activeGi();
    // Its combo boxes and "New" serve before there are labels, while the mode runs.
    HxGiEditor* own = HxGiSubApplication::instance()->getEditor();
    if (!gi && own && HxSubApplication::running()) gi = own->getGi();
    if (!gi || !gi->getToolbox()) return call.noData();
    // Panels of tools lie in the toolbox and name their widgets alike.
    const auto isOwn = [gi](const QWidget* widget) {
        for (int i = 0; i < gi->tools.size(); ++i) {
            const QWidget* panel = gi->tools[i] ? gi->tools[i]->getWidget(nullptr) : nullptr;
            if (panel && (panel == widget || panel->isAncestorOf(widget))) return false;
        }
        return true;
    };
    return access(call, *gi->getToolbox(), 1, isOwn);
}

/// A filter's name as a menu shows it: without the mark of its key and without dots at the end.
QString plainName(const char* name)
{
    QString text = QString::fromUtf8(name).remove('&');
    while (text.endsWith('.')) text.chop(1);
    return text;
}

GiFilter* findFilter(const GiQ& gi, const char* name)
{
    for (const McDArray<GiFilter*>* list : {&gi.filters, &gi.pluginFilters})
        for (GiFilter* filter : *list)
            if (filter && plainName(filter->name) == plainName(name)) return filter;
    return nullptr;
}

int filter(Tcl_Interp* interp, int count, const char* const* words)
{
    const Call call{interp, count, words};
    if (count < 2) return HxScriptCommands::wrongArguments(interp, words[0]);
    GiQ* gi = HxGiEditor::activeGi();
    if (!gi) return call.noData();
    GiFilter* found = findFilter(*gi, words[1]);
    if (!found) return call.fail("there is no filter " + quoted(words[1]) + ".");
    QWidget* dialog = nullptr;
    try {
        dialog = found->getWidget(gi->getToolbox(), true);
    } catch (const std::exception& e) { // of foreign code, which may throw what it likes
        return call.fail(std::string("the dialog of ") + quoted(words[1]) + " cannot be opened: " + e.what());
    } catch (...) {
        return call.fail(std::string("the dialog of ") + quoted(words[1]) + " cannot be opened.");
    }
    if (!dialog) return call.fail(std::string("filter ") + words[1] + " has no dialog.");
    return access(call, *dialog, 2, isAnyPart);
}

} // namespace

void giAddWidgetCommands()
{
    const char* const kValues =
        " A name that several widgets have means the first; PARENT/NAME tells which one. "
        "Check boxes and radio buttons have 0 or 1, range sliders two numbers, "
        "combo boxes an item's text or index; "
        "buttons take click.";
    HxScriptCommands::add("tool", "tool N widget NAME ?VALUE ...?",
                          (std::string("Reads or sets a widget in the panel of tool N.") + kValues).c_str(),
                          tool);
    HxScriptCommands::add("toolbox", "toolbox widget NAME ?VALUE ...?",
                          (std::string("Reads or sets a widget of the toolbox.") + kValues).c_str(), toolbox);
    HxScriptCommands::add(
        "filter", "filter FILTER widget NAME ?VALUE ...?",
        (std::string("Reads or sets a widget in the dialog of a filter.") + kValues).c_str(), filter);
}
