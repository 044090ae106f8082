#include "support/Sandbox.h"

#include <QApplication>

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    // Pictures for the documentation may be drawn on a real (virtual) display.
    const QByteArray platform = qgetenv("KNJIGE_SCREENSHOT_PLATFORM");
    qputenv("QT_QPA_PLATFORM", platform.isEmpty() ? QByteArray("offscreen") : platform);
    QApplication app(argc, argv);
    knjige::test::sandboxSettings();
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
