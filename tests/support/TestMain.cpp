// SPDX-License-Identifier: MIT
// The main function of every test program: an application object, and a message handler that
// turns an unexpected warning of Qt into a failed test.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QString>

#include <cstdio>
#include <ostream>

namespace {

void FailOnWarning(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    if (type == QtDebugMsg || type == QtInfoMsg)
        std::fprintf(stderr, "%s\n", qUtf8Printable(text));
    else
        ADD_FAILURE() << "Qt says: " << text.toStdString();
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("korvane-test"));
    testing::InitGoogleTest(&argc, argv);
    qInstallMessageHandler(FailOnWarning);
    return RUN_ALL_TESTS();
}
