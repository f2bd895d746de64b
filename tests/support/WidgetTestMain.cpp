// SPDX-License-Identifier: MIT
// The main function of the test programs with windows. The application is Qt's own, so that what
// an event handler raises reaches the test; the style and the font do not depend on the machine.
#include "support/FailOnWarning.h"

#include <QApplication>
#include <QFont>
#include <QStyleFactory>

/// Exceptions that pass through Qt's widgets leave behind what those had in hand: they are compiled without
/// the code that cleans up.
extern "C" const char *__asan_default_options() { return "detect_leaks=0"; }

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("korvane-test"));
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QFont font(QStringLiteral("Noto Sans CJK SC"));
    font.setPixelSize(14);
    QApplication::setFont(font);
    testing::InitGoogleTest(&argc, argv);
    qInstallMessageHandler(Korvane::Testing::FailOnWarning);
    return RUN_ALL_TESTS();
}
