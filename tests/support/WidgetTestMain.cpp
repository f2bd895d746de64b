// SPDX-License-Identifier: MIT
// The main function of the test programs with windows. The application is Qt's own, so that what
// an event handler raises reaches the test; the style and the font do not depend on the machine.
#include "support/FailOnWarning.h"
#include "support/WidgetLook.h"

/// Exceptions that pass through Qt's widgets leave behind what those had in hand: they are compiled without
/// the code that cleans up.
extern "C" const char *__asan_default_options() { return "detect_leaks=0"; }

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    Korvane::Testing::SetLook();
    testing::InitGoogleTest(&argc, argv);
    qInstallMessageHandler(Korvane::Testing::FailOnWarning);
    return RUN_ALL_TESTS();
}
