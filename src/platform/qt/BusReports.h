#pragma once

class QLabel;

namespace vorrano::qt {

// Puts what Qt reports to the accessibility bus into a form that screen readers read out.
//
// - A field that gets the focus by a key selects its text, and Qt reports this caret before the focus. A screen reader
//   takes the caret for the focus, and then says nothing of a focus that it knows already. So the focus goes first.
// - Qt reports the row of tabs, which has no name, when it gets the focus. What has the focus is the tab on screen.
// - Qt reports what is typed in a field as it is. Of a text that its field hides, only the length is told.
// - A screen reader that has many reports to read passes over what is announced. During an upload a line of text and a
//   bar change many times a second: the text is reported only when it is announced, the bar with each tenth.
//
// Main thread; a second call changes nothing.
void installBusReports();

// Whether a screen reader reads the label out by itself: that is what its layout's property `announced` says.
[[nodiscard]] bool isAnnounced(const QLabel& label);

// Has a screen reader read the label out now.
void announce(QLabel& label);

} // namespace vorrano::qt
