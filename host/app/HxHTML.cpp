#include "app/HxHTML.h"

#include "app/HxMain.h"
#include "hx/HxPackage.h"
#include "hx/HxResource.h"
#include "hx/HxScriptCommands.h"

#include <QDir>
#include <QFileInfo>
#include <QPointer>
#include <QTextBrowser>
#include <QToolBar>
#include <QUrl>
#include <QVBoxLayout>

namespace {

constexpr QSize kFirstSize(860, 720);

/// The help pages in the packages' folders, by title of the file.
QString pageList()
{
    QString list;
    for (const std::string& folder : HxPackage::resourceFolders()) {
        const QDir top(QString::fromStdString(folder));
        for (const QFileInfo& package : top.entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name))
            for (const QFileInfo& page :
                 QDir(package.filePath()).entryInfoList({"*.html"}, QDir::Files, QDir::Name))
                list += QString("<li><a href=\"%1\">%2: %3</a></li>")
                            .arg(QUrl::fromLocalFile(page.filePath()).toString().toHtmlEscaped(),
                                 package.fileName().toHtmlEscaped(), page.completeBaseName().toHtmlEscaped());
    }
    return list;
}

QString commandList()
{
    QString list;
    for (const HxScriptCommands::Entry* entry : HxScriptCommands::all())
        list += QString("<dt><code>%1</code></dt><dd>%2</dd>")
                    .arg(QString::fromStdString(entry->usage).toHtmlEscaped(),
                         QString::fromStdString(entry->help).toHtmlEscaped());
    return list;
}

} // namespace

HxHTML* HxHTML::getTheBrowser()
{
    static QPointer<HxHTML> theBrowser; // ends with the main window
    if (!theBrowser) theBrowser = new HxHTML(HxMain::getTheMain());
    return theBrowser;
}

HxHTML::HxHTML(QWidget* parent) : QWidget(parent, Qt::Window), browser(new QTextBrowser(this))
{
    setObjectName("helpBrowser");
    setWindowTitle(tr("Help"));
    resize(kFirstSize);
    browser->setOpenExternalLinks(true);

    auto* bar = new QToolBar(this);
    QAction* back = bar->addAction(tr("Back"), browser, &QTextBrowser::backward);
    QAction* forward = bar->addAction(tr("Forward"), browser, &QTextBrowser::forward);
    bar->addAction(tr("Contents"), this, &HxHTML::home);
    back->setEnabled(false);
    forward->setEnabled(false);
    connect(browser, &QTextBrowser::backwardAvailable, back, &QAction::setEnabled);
    connect(browser, &QTextBrowser::forwardAvailable, forward, &QAction::setEnabled);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(bar);
    column->addWidget(browser);
}

void HxHTML::load(const char* path)
{
    const QFileInfo file(QString::fromUtf8(path));
    if (file.isReadable() && file.isFile())
        browser->setSource(QUrl::fromLocalFile(file.absoluteFilePath()));
    else
        browser->setHtml(
            QString("<p>%1: there is no such help page.</p>").arg(file.filePath().toHtmlEscaped()));
}

void HxHTML::home()
{
    const QString pages = pageList();
    QString text = "<h1>Help</h1>";
    if (!pages.isEmpty()) text += "<h2>Guides</h2><ul>" + pages + "</ul>";
    text += "<h2>Script commands</h2><p>They can be typed into the line below the console; "
            "<code>help</code> explains those of the objects, too.</p><dl>" +
            commandList() + "</dl>";
    browser->setHtml(text);
}

void HxHTML::show()
{
    QWidget::show();
    raise();
    activateWindow();
}
