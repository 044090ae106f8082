#include "support/Sandbox.h"

#include <QApplication>

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    // Pictures may be drawn on a real display server (xvfb-run) instead.
    if (qEnvironmentVariableIsEmpty("KNJIGE_KEEP_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    knjige::test::sandboxSettings();
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
