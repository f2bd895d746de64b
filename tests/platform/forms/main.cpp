// SPDX-License-Identifier: MIT
// The main function of the tests that are about the application object itself.
#include "platform/forms/Application.h"
#include "support/FailOnWarning.h"

#include <QFont>
#include <QStyleFactory>

/// Exceptions that pass through Qt's widgets leave behind what those had in hand: they are compiled without
/// the code that cleans up.
extern "C" const char *__asan_default_options() { return "detect_leaks=0"; }

int main(int argc, char **argv)
{
    Korvane::TApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("korvane-test"));
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QFont font(QStringLiteral("Noto Sans CJK SC"));
    font.setPixelSize(14);
    QApplication::setFont(font);
    testing::InitGoogleTest(&argc, argv);
    qInstallMessageHandler(Korvane::Testing::FailOnWarning);
    return RUN_ALL_TESTS();
}
