#pragma once

struct HxDialogRequest;

/// Shows a modal dialog over the active window; returns the index of the button.
int hxShowDialog(const HxDialogRequest& request);
