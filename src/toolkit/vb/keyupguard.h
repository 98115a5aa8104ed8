#pragma once

// Keyboard commands run at key-up, and only when the key-down came to the same control. A key
// pressed in a message box, an open drop-down list or another window, and let go after that
// closed, comes up in the control below, which must then do nothing. One watcher on the
// application sees every key-down and remembers which control it came to.

class QKeyEvent;
class QObject;

namespace keyupguard {

// Starts the watcher; every window or control that acts at key-up calls it when it is built.
// Further calls do nothing.
void Install();

// True when keyUp, now arriving in control, lets go of a key whose key-down came to control,
// with no other key-down anywhere since. A held key's repeats and a second key-up of the same
// press are not counted.
bool CameHere(const QObject* control, const QKeyEvent* keyUp);

}  // namespace keyupguard
