// SPDX-License-Identifier: MIT
// The main function of the tests that are about the application object itself.
#include "platform/forms/Application.h"
#include "support/FailOnWarning.h"
#include "support/WidgetLook.h"

/// Exceptions that pass through Qt's widgets leave behind what those had in hand: they are compiled without
/// the code that cleans up.
extern "C" const char *__asan_default_options() { return "detect_leaks=0"; }

int main(int argc, char **argv)
{
    Korvane::TApplication application(argc, argv);
    Korvane::Testing::SetLook();
    testing::InitGoogleTest(&argc, argv);
    qInstallMessageHandler(Korvane::Testing::FailOnWarning);
    return RUN_ALL_TESTS();
}
