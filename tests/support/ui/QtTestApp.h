#pragma once
// The GUI suites' main makes one QApplication for the whole process, on the offscreen
// platform unless QT_QPA_PLATFORM says otherwise. Tests reach it through qApp.

class QApplication;

namespace koqdde::test {
// The process's application object (made by the suites' main).
QApplication& QtTestApp();
// Runs pending events, such as deferred deletes, so a test sees their effect.
void ProcessEvents();
} // namespace koqdde::test
