#include <gtest/gtest.h>

#include <QApplication>

// The window tests' main(): one application for the whole run, made before the first test and
// gone before the program's exit handlers run.
int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    QApplication app(argc, argv);
    return RUN_ALL_TESTS();
}
