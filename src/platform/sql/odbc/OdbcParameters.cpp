// SPDX-License-Identifier: MIT
#include "platform/sql/odbc/OdbcParameters.h"

#include "platform/sql/QuotedText.h"

namespace Korvane {

namespace {

constexpr SQLLEN PieceSize = 64 * 1024;     ///< bytes; what is larger goes by pieces of it
constexpr SQLULEN LongestPlainText = 4000;  ///< characters of a text that is not a long one
constexpr SQLULEN LongestPlainBytes = 8000; ///< the same for a blob

bool BeginsName(QChar c) { return c.isLetter() || c == QLatin1Char('_'); }
bool IsNameCharacter(QChar c) { return c.isLetterOrNumber() || c == QLatin1Char('_'); }

/// Index behind the literal, quoted name or comment at a position, the position itself where
/// there is none. What does not end goes on to the end of the text.
qsizetype QuotedOrCommentEnd(QStringView text, qsizetype at)
{
    const QChar c = text[at];
    qsizetype end = at;
    if (c == u'\'' || c == u'"')
        end = QuotedEnd(text, at, c);
    else if (c == u'[')
        end = QuotedEnd(text, at, u']');
    else if (c == u'-' || c == u'/')
        end = CommentEnd(text, at);
    return end < 0 ? text.size() : end;
}

int IndexOf(std::span<const TSqlParameter> parameters, QStringView name)
{
    for (size_t i = 0; i < parameters.size(); ++i)
        if (name.compare(parameters[i].Name, Qt::CaseInsensitive) == 0)
            return int(i);
    return -1;
}

} // namespace

TOdbcMarkedSql MarkOdbcParameters(const QString &sql, std::span<const TSqlParameter> parameters)
{
    if (parameters.empty())
        return {sql, {}};
    TOdbcMarkedSql marked;
    const QStringView text(sql);
    qsizetype copied = 0;
    for (qsizetype i = 0; i < text.size();) {
        const qsizetype quoted = QuotedOrCommentEnd(text, i);
        if (quoted > i) {
            i = quoted;
        } else if (text[i] == u'?') {
            marked.Values.push_back(-1);
            ++i;
        } else if (text[i] == u':' && i + 1 < text.size() && text[i + 1] == u':') {
            i += 2;
        } else if (text[i] == u':' && i + 1 < text.size() && BeginsName(text[i + 1])) {
            qsizetype end = i + 1;
            while (end < text.size() && IsNameCharacter(text[end]))
                ++end;
            marked.Values.push_back(IndexOf(parameters, text.mid(i + 1, end - i - 1)));
            marked.Sql += text.mid(copied, i - copied);
            marked.Sql += QLatin1Char('?');
            copied = i = end;
        } else {
            ++i;
        }
    }
    marked.Sql += text.mid(copied);
    return marked;
}

void TOdbcValues::Set(TValue &value, const QVariant &given)
{
    const bool isBlob = given.typeId() == QMetaType::QByteArray;
    if (isBlob) {
        value.CType = SQL_C_BINARY;
        value.SqlType = SQL_LONGVARBINARY;
    }
    if (given.isNull())
        return;
    switch (given.typeId()) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Short:
    case QMetaType::Long:
    case QMetaType::LongLong:
        value.Int = given.toLongLong();
        value.CType = SQL_C_SBIGINT;
        value.SqlType = SQL_BIGINT;
        value.Indicator = 0;
        return;
    case QMetaType::Float:
    case QMetaType::Double:
        value.Double = given.toDouble();
        value.CType = SQL_C_DOUBLE;
        value.SqlType = SQL_DOUBLE;
        value.Indicator = 0;
        return;
    default:
        break;
    }
    if (isBlob) {
        value.Bytes = given.toByteArray();
        value.Data = value.Bytes.constData();
        value.Size = value.Bytes.size();
        if (SQLULEN(value.Size) <= LongestPlainBytes)
            value.SqlType = SQL_VARBINARY;
    } else {
        value.Text = given.toString();
        value.Data = reinterpret_cast<const char *>(value.Text.utf16());
        value.Size = value.Text.size() * SQLLEN(sizeof(SQLWCHAR));
        if (SQLULEN(value.Text.size()) > LongestPlainText)
            value.SqlType = SQL_WLONGVARCHAR;
    }
    value.Indicator = value.Size <= PieceSize ? value.Size : SQL_LEN_DATA_AT_EXEC(value.Size);
}

void TOdbcValues::Bind(TOdbcStatement &statement, const std::vector<int> &marks,
                       std::span<const TSqlParameter> parameters)
{
    const bool noNul = statement.Connection().Server().TextsEndAtNul;
    FValues.clear();
    FValues.resize(marks.size()); // at once: the statement keeps their addresses
    for (size_t i = 0; i < marks.size(); ++i) {
        TValue &value = FValues[i];
        if (marks[i] >= 0)
            Set(value, parameters[size_t(marks[i])].Value);
        if (noNul && value.Text.contains(QChar(0)))
            throw ESqlError(QStringLiteral("参数“%1”的文本中有 NUL 字符，不能保存")
                                .arg(parameters[size_t(marks[i])].Name));
        SQLPOINTER place = const_cast<char *>(value.Data);
        if (value.CType == SQL_C_SBIGINT)
            place = &value.Int;
        else if (value.CType == SQL_C_DOUBLE)
            place = &value.Double;
        else if (value.Indicator <= SQL_LEN_DATA_AT_EXEC_OFFSET)
            place = &value; // comes back when the value is asked for
        const SQLLEN unit = value.CType == SQL_C_WCHAR ? SQLLEN(sizeof(SQLWCHAR)) : 1;
        statement.Check(SQLBindParameter(
            statement.Handle(), SQLUSMALLINT(i + 1), SQL_PARAM_INPUT, value.CType, value.SqlType,
            SQLULEN(std::max<SQLLEN>(value.Size / unit, 1)), 0, place, value.Size, &value.Indicator));
    }
}

// NOTE: drivers convert each piece by itself: the two halves of a character stay together.
SQLLEN TOdbcValues::PieceAt(const TValue &value, SQLLEN sent)
{
    const SQLLEN rest = value.Size - sent;
    if (rest <= PieceSize)
        return rest;
    const bool splits = value.CType == SQL_C_WCHAR &&
                        value.Text[(sent + PieceSize) / qsizetype(sizeof(SQLWCHAR))].isLowSurrogate();
    return splits ? PieceSize - SQLLEN(sizeof(SQLWCHAR)) : PieceSize;
}

void TOdbcValues::SendPieces(TOdbcStatement &statement)
{
    for (;;) {
        SQLPOINTER asked = nullptr;
        const SQLRETURN result = SQLParamData(statement.Handle(), &asked);
        if (result != SQL_NEED_DATA) {
            if (result != SQL_NO_DATA)
                statement.Check(result);
            return;
        }
        const auto &value = *static_cast<const TValue *>(asked);
        for (SQLLEN sent = 0; sent < value.Size;) {
            const SQLLEN piece = PieceAt(value, sent);
            statement.Check(SQLPutData(statement.Handle(), const_cast<char *>(value.Data) + sent, piece));
            sent += piece;
        }
    }
}

} // namespace Korvane
