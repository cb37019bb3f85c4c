#include "app/HxController.h"

#include "app/HxMain.h"
#include "app/QxViewerPanel.h"
#include "hx/HxSubApplication.h"

#include <QPointer>

#include <array>

QxViewerPanel* HxController::panel(int index)
{
    constexpr int kNumViewers = 16;
    static std::array<QPointer<QxViewerPanel>, kNumViewers> panels;

    if (index < 0 || index >= kNumViewers) return nullptr;
    HxMain* main = HxMain::getTheMain();
    if (!main) return nullptr;
    if (index == kSubApplicationViewer && !HxSubApplication::hasSubApplications()) index = 0;
    if (index == 0) return main->viewerPanel();

    QPointer<QxViewerPanel>& panel = panels[static_cast<std::size_t>(index)];
    if (!panel) {
        panel = new QxViewerPanel(main);
        panel->setObjectName(QString("viewerPanel%1").arg(index));
        panel->hide();
    }
    return panel;
}
