#include <QApplication>

#include <gtest/gtest.h>

#include <cstdlib>

// Qt 5's offscreen platform plugin never deletes the screen and cursor it creates when the
// application starts; LeakSanitizer would blame every widget test for them. Only allocations
// made inside that plugin are excused, and the full stack is needed to see it there (Qt's
// libraries have no frame pointers for the fast unwinder). Without a sanitizer nothing reads
// these hooks.
extern "C" __attribute__((visibility("default"), used)) const char* __lsan_default_options() {
    return "fast_unwind_on_malloc=0:print_suppressions=0";
}

extern "C" __attribute__((visibility("default"), used)) const char* __lsan_default_suppressions() {
    return "leak:libqoffscreen.so\n";
}

int main(int argc, char** argv) {
    // Widgets need a platform; without a display the offscreen one serves.
    if (std::getenv("QT_QPA_PLATFORM") == nullptr) {
        ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    }
    QApplication application(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
