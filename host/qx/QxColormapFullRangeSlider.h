#pragma once

#include "hx/HxColormap.h"
#include "mc/McHandle.h"
#include "qx/QxFullRangeSliderBase.h"

/// A pair slider with a ramp below it that shows which colour each value gets: the map runs from the lower to
/// the upper handle, and its colours of under- and overflow lie beside them.
class QxColormapFullRangeSlider : public QxFullRangeSliderBase
{
    Q_OBJECT

public:
    explicit QxColormapFullRangeSlider(QWidget* parent = nullptr);
    ~QxColormapFullRangeSlider() override;

    /// Takes a reference; null: grey. The ramp follows changes of the map.
    void setColormap(HxColormap* map);
    HxColormap* getColormap() const { return colormap; }

private:
    McHandle<HxColormap> colormap;
};
