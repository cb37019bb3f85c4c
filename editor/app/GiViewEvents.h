#pragma once

#include <string>

class GiQ;
class GiViewer;

/// Plays an event of mouse or keyboard into the widget of a slice viewer, as `view N event ...` asks for.
///
/// words   what stands behind `event`: press, release, move, key, wheel or leave and what belongs to it
/// error   a sentence that says what is wrong with them
/// returns whether the event was sent
///
/// There is one mouse: a button that was pressed is held in all that follows until it is released.
bool giSendViewEvent(GiQ& gi, GiViewer& viewer, int count, const char* const* words, std::string& error);
