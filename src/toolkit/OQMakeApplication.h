#pragma once

// Makes Qt's application object on the calling thread, for a process that has none: never one that
// would end the process for want of a display or of Qt's X11 plugin, and one that leaves alone what
// is the host's: environment, locale, and when the process ends. It is never destroyed. False, and
// the reason in the log, where it can't be made. Internal.
bool OQMakeApplication();
