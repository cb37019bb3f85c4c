#pragma once

/// The commands that read and set the widgets of tool panels, toolbox and filter dialogs.
void giAddWidgetCommands();
