#pragma once

namespace vorrano::qt {

// Puts what Qt reports of the focus to the accessibility bus into a form that screen readers read out.
//
// - A field that gets the focus by a key selects its text, and Qt reports this caret before the focus. A screen reader
//   takes the caret for the focus, and then says nothing of a focus that it knows already. So the focus goes first.
// - Qt reports the row of tabs, which has no name, when it gets the focus. What has the focus is the tab on screen.
//
// Main thread; a second call changes nothing.
void installFocusReports();

} // namespace vorrano::qt
