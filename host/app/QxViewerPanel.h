#pragma once

#include "hx/HxViewerPanelBase.h"

#include <QPointer>
#include <QWidget>

#include <array>
#include <vector>

class QAction;
class QActionGroup;
class QGridLayout;
class QLabel;
class QToolBar;

/// The panel that shows viewers in a grid, with a bar of tools above it.
///
/// Layouts, by number: 1 shows the active viewer alone; 4 has two by two places; 5 has a large place at the
/// left and two small ones at the right. The place follows the object name of the viewer's widget:
/// "A0_UpperLeft", "A1_UpperRight", "A2_LowerLeft"; any other viewer takes the place at the lower right of
/// layout 4, and has none in layout 5. Places without a viewer stay blank.
///
/// The panel puts the widgets of its viewers into its grid but does not own them: a viewer that leaves takes
/// its widget along. The base's registration order is the panel order.
class QxViewerPanel : public QWidget, public HxViewerPanelBase
{
    Q_OBJECT

public:
    explicit QxViewerPanel(QWidget* parent = nullptr);
    ~QxViewerPanel() override;

    /// The panel of the main window, null before there is one.
    static QxViewerPanel* getThePanel();

    int layoutNumber() const { return layout; }
    /// Another number than 1, 4 or 5 changes nothing.
    void setLayoutNumber(int number);

    /// While held back, nothing is laid out anew but by reconfigure() itself.
    void setRelayoutHeld(bool held) { relayoutHeld = held; }

    /// Lays out anew; the places are read from the widgets' object names here.
    void reconfigure();

    /// Whether the viewer has a place in the present layout.
    bool isViewerVisible(HxViewerBase* viewer) const;

    /// The text over the blank grid while no viewer is registered.
    void setHint(const QString& text);

    void setActiveViewer(HxViewerBase* viewer) override;
    void setToolOverride(HxViewerBase* viewer, HxViewerTool* panelTool, HxViewerTool* replacement) override;
    void registerViewer(HxViewerBase* viewer) override;
    void unregisterViewer(HxViewerBase* viewer) override;

signals:
    void layoutNumberChanged(int number);

private:
    static constexpr int kNumPlaces = 4;

    class Place;

    struct ToolButton
    {
        HxViewerTool* tool;
        QAction* action;
    };

    void makeTools();
    void addTool(HxViewerTool* tool, const char* icon, const QString& text, const QString& explanation);
    void makeLayoutChoice();
    void makeGrid();
    void relayout();
    void assignPlaces();
    void arrangeGrid();
    void fill(int place, HxViewerBase* viewer);
    void watch(QWidget* widget);
    bool isRegistered(const HxViewerBase* viewer) const;
    void updateTools();
    void updateFrames();

    int layout = 1;
    bool relayoutHeld = false;
    std::array<HxViewerBase*, kNumPlaces> placed{};  // null: blank; valid until a widget has died
    std::array<Place*, kNumPlaces> places{};         // each holds one widget
    std::array<QPointer<QWidget>, kNumPlaces> shown; // the widget in each place
    QGridLayout* grid = nullptr;
    QLabel* hint = nullptr;
    QToolBar* bar = nullptr;
    QActionGroup* layoutChoice = nullptr;
    std::vector<ToolButton> buttons;
};
