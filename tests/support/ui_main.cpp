#include "support/Sandbox.h"

#include <QApplication>

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    // Windows stay off the screen; pictures may be drawn by a real X server (Xvfb).
    const QByteArray platform = qgetenv("KNJIGE_TEST_PLATFORM");
    qputenv("QT_QPA_PLATFORM", platform.isEmpty() ? QByteArray("offscreen") : platform);
    QApplication app(argc, argv);
    knjige::test::sandboxSettings();
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
