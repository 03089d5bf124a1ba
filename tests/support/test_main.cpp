// Main of every test program: a widget application on the offscreen platform (set
// before the application exists, also because test listing runs the binary at build
// time), the recorders installed, then GoogleTest.

#include "Recorders.h"

#include <QApplication>
#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    ::testing::InitGoogleTest(&argc, argv);
    QApplication app(argc, argv);
    testsupport::InstallRecorders();
    return RUN_ALL_TESTS();
}
