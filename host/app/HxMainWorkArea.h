#pragma once

#include "hx/HxWorkArea.h"

#include <QPointer>
#include <QWidget>

#include <memory>
#include <set>
#include <vector>

class QProgressBar;
class QPushButton;
class QToolButton;

/// The work area in the main window: progress and stop button, and below them the main button with its
/// neighbour. While something is busy it keeps the windows painted and hears the stop button alone.
///
/// At rest the main button reads "Apply" and its neighbour is the switch "Auto"; a tool panel may use both
/// for its own ends and sets them back.
class HxMainWorkArea : public QWidget, public HxWorkAreaView
{
    Q_OBJECT

public:
    explicit HxMainWorkArea(QWidget* parent = nullptr);
    ~HxMainWorkArea() override;

    void showBusy(const char* text) override;
    void showIdle() override;
    void showText(const char* text) override;
    void showProgress(double fraction) override;
    bool poll() override;
    QAbstractButton* mainButton() override;
    QAbstractButton* neighbourButton() override;

protected:
    bool eventFilter(QObject* receiver, QEvent* event) override;

private:
    /// A release whose press was before the busy phase; its receiver would wait for it forever.
    struct Held
    {
        QPointer<QObject> receiver;
        std::unique_ptr<QEvent> event;
    };

    bool isForStopButton(const QEvent& event) const;
    bool holdBack(QObject* receiver, QEvent* event);
    void hold(QObject* receiver, const QEvent& event);

    QProgressBar* bar;
    QToolButton* stop;
    QPushButton* apply;
    QPushButton* automatic;
    bool stopPressed = false;
    bool busy = false;
    std::vector<Held> held;
    Qt::MouseButtons droppedButtons; // pressed during the busy phase
    std::set<int> droppedKeys;
};
