#include "support/Sandbox.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    knjige::test::sandboxSettings();
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
