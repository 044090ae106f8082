#include "support/Sandbox.h"

#include <QApplication>
#include <QLocale>
#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    knjige::test::sandboxSettings();
    // The windows are tried as on the workstations they are made for, whatever the
    // machine running the tests is set to.
    QLocale::setDefault(QLocale(QLocale::Bosnian, QLocale::BosniaAndHerzegovina));
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
