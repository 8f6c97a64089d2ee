#include <QApplication>

#include <cstdlib>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
    // Windows that nobody sees, in the same type and language wherever the tests run.
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    ::setenv("LC_ALL", "C.UTF-8", 1);
    ::unsetenv("LANGUAGE");
    const QApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
