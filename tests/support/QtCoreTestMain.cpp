#include <QCoreApplication>
#include <gtest/gtest.h>

// State tests whose background work reports back through the event loop need an
// application object, but no windows.
int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
