#include "support/Sandbox.h"

#include <QCoreApplication>
#include <cstring>
#include <gtest/gtest.h>

namespace knjige::test
{
// The child of the crash test: renumbers the book at `path` and is killed meanwhile.
int renumberChild(const QString& path);
}

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    knjige::test::sandboxSettings();
    if (argc == 3 && std::strcmp(argv[1], "--renumber-child") == 0)
        return knjige::test::renumberChild(QString::fromLocal8Bit(argv[2]));
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
