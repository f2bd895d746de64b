// SPDX-License-Identifier: MIT
#include "platform/sql/odbc/OdbcErrors.h"

namespace Korvane {

QString OdbcServerWords(const TOdbcServer &server, const QString &message)
{
    qsizetype begin = 0;
    while (begin < message.size() && message[begin] == QLatin1Char('[')) {
        const qsizetype end = message.indexOf(QLatin1Char(']'), begin);
        if (end < 0)
            break;
        begin = end + 1;
    }
    QString words = message.mid(begin).trimmed();
    if (!server.NoiseBehindErrors.isEmpty() && words.endsWith(server.NoiseBehindErrors))
        words.chop(server.NoiseBehindErrors.size());
    while (words.endsWith(QLatin1Char(';')) || words.endsWith(QLatin1Char('\n')))
        words.chop(1);
    return words.isEmpty() ? message : words;
}

bool IsOdbcConnectionLost(const QString &sqlState)
{
    // 57P01 to 57P03: the server, or this connection of it, is being shut down.
    return sqlState.startsWith(QLatin1String("08")) || sqlState.startsWith(QLatin1String("57P0"));
}

QList<TSqlError> DescribeOdbcErrors(const TOdbcServer &server, QList<TSqlError> errors)
{
    for (TSqlError &error : errors) {
        error.Description = OdbcServerWords(server, error.Description);
        for (const TOdbcSentence &sentence : server.Sentences)
            if (error.SQLState == sentence.SQLState)
                error.Description =
                    QStringLiteral("%1（%2）").arg(QString::fromUtf8(sentence.Text), error.Description);
    }
    return errors;
}

} // namespace Korvane
