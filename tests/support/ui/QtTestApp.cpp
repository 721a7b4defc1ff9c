#include "support/ui/QtTestApp.h"

#include <QApplication>
#include <QCoreApplication>
#include <QEvent>

#include <gtest/gtest.h>

#include <cstdlib>

namespace {
QApplication* g_app = nullptr;
}

namespace koqdde::test {

QApplication& QtTestApp() {
    return *g_app;
}

void ProcessEvents() {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
}

} // namespace koqdde::test

int main(int argc, char** argv) {
    // setenv without overwrite: a caller's choice of platform stands.
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    testing::InitGoogleTest(&argc, argv);
    QApplication app(argc, argv);
    g_app = &app;
    const int result = RUN_ALL_TESTS();
    g_app = nullptr;
    return result;
}
