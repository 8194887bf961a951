#pragma once
// The process tells the window system that it scales nothing itself, where the
// system asks (user32's SetProcessDpiAwarenessInternal). Elsewhere the library
// does not load and nothing is called.
class QLibrary;

// `user32` stays loaded for the life of the process. True when the call was made.
bool declareNotDpiAware(QLibrary &user32);
