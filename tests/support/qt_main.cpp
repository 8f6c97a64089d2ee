#include <QCoreApplication>

#include <cstdlib>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
    // The programs that are tested speak the tester's language otherwise.
    ::setenv("LC_ALL", "C.UTF-8", 1);
    ::unsetenv("LANGUAGE");
    const QCoreApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
