#include "GiSpecksFilter.h"

#include "core/Gi.h"
#include "core/GiSelection2D.h"
#include "display/GiViewer.h"
#include "hx/HxMessage.h"
#include "hx/HxResource.h"
#include "mc/McException.h"

#include <QDialog>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <cstdlib>
#include <vector>

namespace {

constexpr int kFieldWidth = 60; // device-independent pixels

/// Moves the piece at a pixel out of `open` and gives its pixels.
std::vector<McVec2i> takePiece(GiSelection2D& open, McVec2i start)
{
    const int width = static_cast<int>(open.width), height = static_cast<int>(open.height);
    std::vector<McVec2i> piece;
    const auto take = [&](int x, int y) {
        if (x < 0 || y < 0 || x >= width || y >= height || !open.isSet(x, y)) return;
        open.unset(x, y);
        piece.emplace_back(x, y);
    };
    take(start.x, start.y);
    for (std::size_t i = 0; i < piece.size(); ++i) {
        const McVec2i p = piece[i];
        take(p.x - 1, p.y);
        take(p.x + 1, p.y);
        take(p.x, p.y - 1);
        take(p.x, p.y + 1);
    }
    return piece;
}

int removeSpecks(GiSelection2D& slice, std::size_t smallest)
{
    GiSelection2D open(slice);
    open.makeLocal();
    int removed = 0;
    for (int y = 0; y < static_cast<int>(slice.height); ++y) {
        for (int x = 0; x < static_cast<int>(slice.width); ++x) {
            if (!open.isSet(x, y)) continue;
            const std::vector<McVec2i> piece = takePiece(open, {x, y});
            if (piece.size() >= smallest) continue;
            for (const McVec2i& p : piece) slice.unset(p.x, p.y);
            ++removed;
        }
    }
    return removed;
}

} // namespace

GiSpecksFilter::GiSpecksFilter(Gi* owner) : GiFilter(owner)
{
    name = "Remove Specks";
}

int GiSpecksFilter::apply(int smallest)
{
    GiViewer* viewer = gi->getCurrentViewer();
    if (!gi->labelLattice || !viewer || smallest < 1) return 0;
    gi->saveUndoInformationForSlice(1, 0, nullptr); // selection, not labels
    const int removed = removeSpecks(*viewer->getSelection(), static_cast<std::size_t>(smallest));
    gi->updateSelectionBoxes();
    gi->touchData(1, 0, viewer->getOrientation(), viewer->getSlice(), 0, 0);
    gi->redraw();
    return removed;
}

void GiSpecksFilter::applyClicked()
{
    // Read when it counts: text that is no number is 0, and removes nothing.
    const int smallest =
        static_cast<int>(std::strtol(smallestEdit->text().toLocal8Bit().constData(), nullptr, 10));
    try {
        HxMessage::getTheMsg()->printf("Specks removed: %d", apply(smallest));
    } catch (const McException& e) {
        HxResource::handleException(e, 0);
    }
}

void GiSpecksFilter::hideWidget()
{
    if (widget) widget->hide();
}

QWidget* GiSpecksFilter::createWidget(QWidget* parent)
{
    auto* dialog = new QDialog(parent, Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                                           Qt::WindowCloseButtonHint | Qt::MSWindowsFixedSizeDialogHint);
    auto* grid = new QGridLayout(dialog);
    grid->setSizeConstraint(QLayout::SetFixedSize);
    smallestEdit = new QLineEdit("10");
    smallestEdit->setObjectName("wSmallest");
    smallestEdit->setFixedWidth(kFieldWidth);
    auto* label = new QLabel(tr("Smallest piece to keep (pixels):"));
    label->setBuddy(smallestEdit);
    grid->addWidget(label, 0, 0);
    grid->addWidget(smallestEdit, 0, 1);
    auto* apply = new QPushButton(tr("Apply"));
    apply->setObjectName("wApply");
    auto* close = new QPushButton(tr("Close"));
    close->setObjectName("wClose");
    grid->addWidget(apply, 1, 0, Qt::AlignLeft);
    grid->addWidget(close, 1, 1);
    connect(apply, &QPushButton::clicked, this, &GiSpecksFilter::applyClicked);
    connect(close, &QPushButton::clicked, this, &GiSpecksFilter::hideWidget);
    dialog->setWindowTitle(tr("Remove Specks"));
    dialog->move(20, 20);
    return dialog;
}

/// What the registry names: makes the filter for an editor. The editor takes the reference.
extern "C" void kelvaneSpecks(Gi* gi)
{
    gi->pluginFilters.append(new GiSpecksFilter(gi));
}
