#include "app/HxWindowCommands.h"

#include "app/HxFileDialog.h"
#include "app/HxMain.h"
#include "hx/HxScript.h"
#include "hx/HxScriptCommands.h"

#include <QCoreApplication>
#include <QImageWriter>
#include <QMenu>
#include <QMenuBar>
#include <QPixmap>
#include <QPointer>

#include <tcl.h>

#include <vector>

namespace {

int fail(Tcl_Interp* interp, const QString& text)
{
    Tcl_VaSetResult(interp, "%s", text.toUtf8().constData());
    return TCL_ERROR;
}

/// The text as people read it: without the ampersands of the keys, the dots of a dialog and the shortcut.
QString plainText(const QAction& action)
{
    QString text = action.text().section('\t', 0, 0);
    // "&&" is an ampersand that is shown.
    text.replace("&&", QChar(1)).remove('&').replace(QChar(1), '&');
    while (text.endsWith('.') || text.endsWith(' ')) text.chop(1);
    return text;
}

QString join(const QList<QAction*>& actions)
{
    QStringList texts;
    for (const QAction* action : actions)
        if (action->isVisible() && !action->isSeparator()) texts.append(plainText(*action));
    return texts.join(", ");
}

QAction* find(const QList<QAction*>& actions, const QString& text)
{
    for (QAction* action : actions)
        if (action->isVisible() && !action->isSeparator() && plainText(*action) == text) return action;
    return nullptr;
}

/// Menus on the way to an entry; each is told that it shows, so that it is filled, and at the end that it
/// hides, as it is before an entry that a person clicks runs.
class OpenMenus
{
public:
    ~OpenMenus()
    {
        for (std::size_t i = open.size(); i-- > 0;)
            if (open[i]) emit open[i]->aboutToHide();
    }
    void show(QMenu* menu)
    {
        open.emplace_back(menu);
        emit menu->aboutToShow();
    }

private:
    std::vector<QPointer<QMenu>> open;
};

/// The entry of a path, or null with the complaint in `error`.
QAction* findEntry(const QString& path, QString& error)
{
    OpenMenus menus;
    QList<QAction*> entries = HxMain::getTheMain()->menuBar()->actions();
    QStringList done;
    QStringList words = path.split('/');
    while (true) {
        const QString word = words.takeFirst();
        QAction* action = find(entries, word);
        const QString place = done.isEmpty() ? QString("the menu bar") : '"' + done.join('/') + '"';
        if (!action) {
            error = QString("menu: there is no entry \"%1\" in %2; there are %3.")
                        .arg(word, place, join(entries));
            return nullptr;
        }
        done.append(word);
        if (!action->isEnabled()) {
            error = QString("menu: \"%1\" is disabled.").arg(done.join('/'));
            return nullptr;
        }
        if (words.isEmpty()) {
            if (!action->menu()) return action;
            error = QString("menu: \"%1\" is a menu, not an entry.").arg(path);
            return nullptr;
        }
        if (!action->menu()) {
            error = QString("menu: \"%1\" has no entries.").arg(done.join('/'));
            return nullptr;
        }
        menus.show(action->menu());
        entries = action->menu()->actions();
    }
}

int menu(Tcl_Interp* interp, int wordCount, const char* const* words)
{
    if (wordCount != 2) return HxScriptCommands::wrongArguments(interp, "menu");
    QString error;
    QAction* action = findEntry(QString::fromUtf8(words[1]), error);
    if (!action) return fail(interp, error);
    Tcl_ResetResult(interp);
    action->trigger();
    return TCL_OK;
}

/// The picture of the whole window. One that is not shown is laid out as if it were.
QImage picture(HxMain& window)
{
    if (window.isVisible()) return window.grab().toImage();
    window.setAttribute(Qt::WA_DontShowOnScreen);
    window.show();
    // Sizes that are only announced so far. Each layout announces its own to the one around it, so a change
    // in a tool panel takes several rounds to reach the window.
    constexpr int kRounds = 8;
    for (int round = 0; round < kRounds; ++round)
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    const QImage image = window.grab().toImage();
    window.hide();
    window.setAttribute(Qt::WA_DontShowOnScreen, false);
    return image;
}

int windowSnapshot(Tcl_Interp* interp, int wordCount, const char* const* words)
{
    if (wordCount != 2) return HxScriptCommands::wrongArguments(interp, "windowSnapshot");
    const QString path = QString::fromUtf8(words[1]);
    QImageWriter writer(path, "png");
    if (!writer.write(picture(*HxMain::getTheMain())))
        return fail(interp, QString("windowSnapshot: %1: %2.").arg(path, writer.errorString()));
    return TCL_OK;
}

int answerFile(Tcl_Interp* interp, int wordCount, const char* const* words)
{
    QStringList paths;
    for (int i = 1; i < wordCount; ++i) {
        if (!*words[i]) return fail(interp, "answerFile: a file has no empty name.");
        paths.append(QString::fromUtf8(words[i]));
    }
    HxFileDialog::setNextAnswer(paths);
    Tcl_ResetResult(interp);
    return TCL_OK;
}

} // namespace

void hxRegisterWindowCommands()
{
    HxScriptCommands::add("menu", "menu PATH",
                          "Triggers an entry of the menu bar by its texts, without ampersands and dots, such "
                          "as Selection/Grow/Volume. An unknown or disabled entry is an error.",
                          menu);
    HxScriptCommands::add("windowSnapshot", "windowSnapshot FILE",
                          "Writes a PNG picture of the main window; without a display it is 1280 by 800 "
                          "pixels.",
                          windowSnapshot);
    HxScriptCommands::add("answerFile", "answerFile ?FILE ...?",
                          "Answers the next file dialog with these files, or a folder; without a file it "
                          "cancels the dialog.",
                          answerFile);
}
