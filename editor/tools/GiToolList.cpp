// The tools of Gi: a list with fixed indices, of which one may be active. An entry whose tool is not
// part of this build is null; scripts and panels address tools by index, so it keeps its place.

#include "core/Gi.h"
#include "core/GiNotice.h"
#include "display/GiFrameBuffer.h"
#include "display/GiViewer.h"
#include "tools/GiBlowTool.h"
#include "tools/GiBrush.h"
#include "tools/GiCrossHairTool.h"
#include "tools/GiLasso.h"
#include "tools/GiMagicWand.h"
#include "tools/GiPanTool.h"
#include "tools/GiPickRegion.h"
#include "tools/GiThreshold.h"
#include "tools/GiTool.h"

namespace {

constexpr int kNumTools = 7; // pick region, brush, lasso, magic wand, threshold, blow tool, pan

} // namespace

void Gi::createTools()
{
    for (int i = 0; i < kNumTools; ++i) tools.append(nullptr);
    tools[GiPickRegion::kIndex] = new GiPickRegion(this);
    tools[GiBrush::kIndex] = new GiBrush(this);
    tools[GiLasso::kIndex] = new GiLasso(this);
    tools[GiMagicWand::kIndex] = new GiMagicWand(this);
    tools[GiThreshold::kIndex] = new GiThreshold(this);
    tools[GiBlowTool::kIndex] = new GiBlowTool(this);
    panTool = tools[GiPanTool::kIndex] = new GiPanTool(this);
    for (int i = 0; i < kNumTools; ++i)
        if (tools[i]) tools[i]->ref();
    crossHair = new GiCrossHairTool;
    crossHair->ref();
    crossHair->setValueChangedCallback(&Gi::crossHairCBs, this);
}

void Gi::destroyTools()
{
    currentTool = panTool = nullptr;
    for (int i = 0; i < tools.size(); ++i)
        if (tools[i]) tools[i]->unref();
    tools.clear();
    crossHair->unref();
    crossHair = nullptr;
}

void Gi::leaveTool()
{
    for (int i = 0; currentTool && i < viewers.size(); ++i) {
        GiFrameBuffer* buffer = viewers[i]->getFrameBuffer();
        currentTool->deselect(buffer);
        if (buffer) buffer->removeShape(currentTool);
    }
    currentTool = nullptr;
}

void Gi::setTool(int index)
{
    leaveTool();
    if (index < 0 || index >= tools.size()) return;
    currentTool = tools[index];
    if (currentTool) {
        for (int i = 0; i < viewers.size(); ++i) {
            if (GiFrameBuffer* buffer = viewers[i]->getFrameBuffer()) buffer->addShape(currentTool);
            viewers[i]->activateTool(currentTool->wrapper());
        }
        currentTool->select();
    }
    updateCursor();
}

void Gi::initTools()
{
    for (int i = 0; i < tools.size(); ++i)
        if (tools[i]) tools[i]->init();
}

McVec3f Gi::getPickingTranslation() const
{
    for (int i = 0; i < tools.size(); ++i)
        if (const auto* pick = dynamic_cast<GiPickRegion*>(tools[i])) return pick->getTranslationVec();
    return McVec3f();
}

void Gi::resetPickingTranslation()
{
    for (int i = 0; i < tools.size(); ++i)
        if (auto* pick = dynamic_cast<GiPickRegion*>(tools[i])) pick->resetTranslationVec();
}

void Gi::set3dMode(bool on)
{
    if (mode3D == on) return;
    mode3D = on;
    notifyTool(kMode3DChanged);
}

void Gi::setZoomMode(bool allViewers)
{
    if (zoomAllViewers == allViewers) return;
    zoomAllViewers = allViewers;
    notifyTool(kZoomModeChanged);
}

void Gi::notifyTool(int what)
{
    if (currentTool) currentTool->selectionNotify(what);
}

std::function<void(GiSelection2D&)> Gi::seedGuard()
{
    if (!currentTool || !currentTool->guardsSeeds()) return {};
    return [tool = currentTool](GiSelection2D& pixels) { tool->lockInactiveSeeds(pixels); };
}
