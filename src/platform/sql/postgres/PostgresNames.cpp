// SPDX-License-Identifier: MIT
#include "platform/sql/postgres/PostgresNames.h"

#include "platform/sql/dialect/SqlTokenizer.h"

#include "platform/sql/postgres/PostgresRewriter.h"

#include <QCryptographicHash>

using namespace Qt::StringLiterals;

namespace Korvane {

namespace {

/// More bytes of a name the engine would cut off without a word.
constexpr qsizetype MaxNameBytes = 63;

/// NOTE: a to z alone, as the engine's own folding: other letters keep their case.
QString Capitals(QString name)
{
    for (QChar &c : name) {
        if (c >= u'a' && c <= u'z')
            c = QChar(c.unicode() - 32);
    }
    return name;
}

} // namespace

void CheckPostgresName(const QString &name)
{
    // A letter takes three bytes at most.
    if (name.size() * 3 > MaxNameBytes && name.toUtf8().size() > MaxNameBytes)
        throw ESqlError(u"名称“%1”太长：PostgreSQL 的名称最多 %2 个字节"_s.arg(name).arg(MaxNameBytes));
}

QString PostgresName(const QString &name)
{
    CheckPostgresName(name);
    return Capitals(name);
}

QString QuotedPostgresName(const QString &name) { return QuotedSqlName(PostgresName(name)); }

QString JoinedPostgresName(const QString &name)
{
    QString capitals = Capitals(name);
    if (capitals.toUtf8().size() > MaxNameBytes) {
        const QByteArray hash = QCryptographicHash::hash(capitals.toUtf8(), QCryptographicHash::Sha1).toHex();
        while (capitals.toUtf8().size() > MaxNameBytes - 13)
            capitals.chop(capitals.back().isLowSurrogate() ? 2 : 1);
        capitals += u'.' + QString::fromLatin1(hash.left(12));
    }
    return QuotedSqlName(capitals);
}

QString PostgresText(const QString &text) { return u'\'' + QString(text).replace(u'\'', u"''"_s) + u'\''; }

} // namespace Korvane
