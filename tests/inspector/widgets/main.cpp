#include <QApplication>

#include "inspector/widgets/field_tests.h"

namespace vexqt::testing {

std::vector<MakeTest>& fieldTests() {
    static std::vector<MakeTest> tests;
    return tests;
}

}  // namespace vexqt::testing

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    int failures = 0;
    for (const vexqt::testing::MakeTest make : vexqt::testing::fieldTests())
        failures += QTest::qExec(make().get(), argc, argv);
    return failures == 0 ? 0 : 1;
}
