#pragma once

class QxViewerPanel;

/// The viewer panels by the index of their viewer: 0 is that of the normal window, 15 that of the
/// sub-applications. Without sub-applications 15 is 0.
class HxController
{
public:
    static constexpr int kSubApplicationViewer = 15;

    /// The panel of this index, made hidden on first use. It belongs to the main window, which must exist;
    /// whoever shows it puts it into a layout. Null for an index other than 0 to 15, or without main window.
    static QxViewerPanel* panel(int index);
};
