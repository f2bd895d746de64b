// SPDX-License-Identifier: MIT
// A second user of a database, in a process of its own, who does what its standard input says
// and answers with a line. See OtherUser.h.
#include "platform/sql/ADOConnection.h"
#include "support/TestDatabase.h"

#include <QCoreApplication>

#include <iostream>

using namespace Korvane;

namespace {

std::string Answer(std::unique_ptr<TADOConnection> &connection, const std::string &word, const QString &text)
{
    if (word == "connect") {
        connection = Testing::ConnectTo(text);
        return "ok";
    }
    if (word == "disconnect") {
        connection.reset();
        return "ok";
    }
    if (word == "run")
        return std::to_string(connection->Execute(text));
    if (word == "rows")
        return Testing::Rows(*connection, text).toStdString();
    if (word == "insert") {
        // A row per statement, numbered; the text names the table and the writer.
        for (int i = 0; i < 200; ++i)
            connection->Execute(QStringLiteral("insert into T values(%1, %2)").arg(text).arg(i));
        return "ok";
    }
    if (word == "reconnect") {
        for (int i = 0; i < 100; ++i)
            Testing::ConnectTo(text)->Execute(QStringLiteral("update T set N=N+1"));
        return "ok";
    }
    return "what?";
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("second-user"));
    std::unique_ptr<TADOConnection> connection;
    for (std::string line; std::getline(std::cin, line);) {
        const size_t blank = line.find(' ');
        const QString text =
            blank == std::string::npos ? QString() : QString::fromStdString(line.substr(blank + 1));
        try {
            std::cout << Answer(connection, line.substr(0, blank), text) << std::endl;
        } catch (const Exception &error) {
            std::cout << "error: " << error.what() << std::endl;
        }
    }
}
