#include <QApplication>
#include <gtest/gtest.h>

// Widget tests need an application object. They never need a display: offscreen is the
// default, also when the build lists the tests.
int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
