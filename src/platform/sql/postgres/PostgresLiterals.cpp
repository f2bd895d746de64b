// SPDX-License-Identifier: MIT
#include "platform/sql/postgres/PostgresLiterals.h"

#include "platform/sql/postgres/PostgresNames.h"

using namespace Qt::StringLiterals;

namespace Korvane {

namespace {

QString BlobLiteral(QStringView written)
{
    const QStringView digits = written.mid(2);
    return u"cast('\\x"_s + (digits.size() % 2 ? u"0"_s : QString()) + digits.toString() + u"' as bytea)"_s;
}

QString Variable(const TSqlToken &token)
{
    if (token.Is("@@spid"_L1))
        return u"pg_backend_pid()"_s;
    if (token.Is("@@identity"_L1))
        return u"korvane_identity()"_s;
    if (token.Is("@@rowcount"_L1))
        return PostgresRowCount;
    RefuseSql(token.Text.toString());
}

} // namespace

bool WritePostgresLiterals(TSqlEdits &edits)
{
    bool readsRowCount = false;
    for (int i = 0; i < edits.Size(); ++i) {
        const TSqlToken &token = edits[i];
        switch (token.Kind) {
        case TSqlTokenKind::Text:
            if (token.Text.front() != u'\'') // N'text'
                edits.Replace(i, PostgresText(SqlTextValue(token)));
            break;
        case TSqlTokenKind::Number:
            if (token.Text.startsWith("0x"_L1, Qt::CaseInsensitive))
                edits.Replace(i, BlobLiteral(token.Text));
            break;
        case TSqlTokenKind::BracketName:
        case TSqlTokenKind::QuotedName:
            if (token.Text.size() == 2)
                throw ESqlError(u"方括号中没有名称"_s);
            break;
        case TSqlTokenKind::Word:
            if (token.Text.front() != u'@' || (i > 0 && edits[i - 1].Is("declare"_L1)))
                break;
            edits.Replace(i, Variable(token));
            readsRowCount = readsRowCount || token.Is("@@rowcount"_L1);
            break;
        default:
            break;
        }
    }
    return readsRowCount;
}

} // namespace Korvane
