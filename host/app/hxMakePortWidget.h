#pragma once

#include <functional>

class HxPort;
class QWidget;

/// The control of a port, without its label: it shows the port's value, follows it, and sets it.
///
/// changed  called after the person has changed the value; with true after the press of a button, which
///          wants the owner to compute
/// returns null for a port that has nothing to control
QWidget* hxMakePortWidget(HxPort& port, QWidget* parent, const std::function<void(bool compute)>& changed);
