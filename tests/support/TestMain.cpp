// SPDX-License-Identifier: MIT
// The main function of the test programs without windows.
#include "support/FailOnWarning.h"

#include <QCoreApplication>

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("korvane-test"));
    testing::InitGoogleTest(&argc, argv);
    qInstallMessageHandler(Korvane::Testing::FailOnWarning);
    return RUN_ALL_TESTS();
}
