#pragma once

#include <QWidget>

class QAction;
class QTextBrowser;

/// The window that shows help pages.
class HxHTML : public QWidget
{
    Q_OBJECT

public:
    /// The one browser; made on first use, hidden.
    static HxHTML* getTheBrowser();

    /// Loads a page; does not show the window. A page that cannot be read is said so in its place.
    void load(const char* path);

    /// The page that lists all help there is.
    void home();

    /// Brings the window to the front.
    void show();

private:
    explicit HxHTML(QWidget* parent);

    QTextBrowser* browser;
};
