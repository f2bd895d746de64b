// SPDX-License-Identifier: MIT
#include "platform/sql/sqlite/SqliteDatabase.h"

#include "platform/sql/sqlite/SqliteErrors.h"

#include <QDir>
#include <QSet>

#include <sqlite3.h>

namespace Korvane {

TSqliteDatabase::TSqliteDatabase(const QString &fileName, TSqliteOpen mode) : FFileName(fileName)
{
    int flags = SQLITE_OPEN_EXRESCODE | SQLITE_OPEN_NOMUTEX;
    switch (mode) {
    case TSqliteOpen::ReadOnly:
        flags |= SQLITE_OPEN_READONLY;
        break;
    case TSqliteOpen::ReadWrite:
        flags |= SQLITE_OPEN_READWRITE;
        break;
    case TSqliteOpen::Create:
        flags |= SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
        break;
    case TSqliteOpen::Memory:
        flags |= SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_MEMORY;
        break;
    }
    const QByteArray path =
        mode == TSqliteOpen::Memory ? QByteArray(":memory:") : QDir::toNativeSeparators(fileName).toUtf8();
    const int code = sqlite3_open_v2(path.constData(), &FHandle, flags, nullptr);
    if (code == SQLITE_OK) {
        // NOTE: a name in quotes is a name. By default the engine takes one that it does not know for
        // a text, and finds nothing in place of a failure.
        sqlite3_db_config(FHandle, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
        sqlite3_db_config(FHandle, SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
        return;
    }
    const QString text = FHandle ? QString::fromUtf8(sqlite3_errmsg(FHandle)) : QString();
    sqlite3_close_v2(FHandle);
    throw ESqlError(DescribeSqliteError(code, text, fileName), code);
}

TSqliteDatabase::~TSqliteDatabase() { sqlite3_close_v2(FHandle); }

void TSqliteDatabase::Run(const QByteArray &sql)
{
    QByteArray rest = sql;
    while (!rest.isEmpty()) {
        TSqliteStatement statement(*this, rest, &rest);
        if (statement.IsValid())
            while (statement.Step()) {
            }
    }
}

QString TSqliteDatabase::Value(const QByteArray &sql)
{
    TSqliteStatement statement(*this, sql);
    return statement.Step() ? statement.String(0) : QString();
}

qint64 TSqliteDatabase::Changes() const { return sqlite3_changes64(FHandle); }

bool TSqliteDatabase::InTransaction() const { return sqlite3_get_autocommit(FHandle) == 0; }

void TSqliteDatabase::Fail() const
{
    const int code = sqlite3_extended_errcode(FHandle);
    throw ESqlError(DescribeSqliteError(code, QString::fromUtf8(sqlite3_errmsg(FHandle)), FFileName), code);
}

TSqliteStatement::TSqliteStatement(TSqliteDatabase &database, const QByteArray &sql, QByteArray *rest)
    : FDatabase(database)
{
    const char *tail = nullptr;
    const QByteArray text = sql; // rest may be the same object
    Prepare(text, TStatementUse::Once, &tail);
    if (rest)
        *rest = text.mid(tail - text.constData());
}

TSqliteStatement::TSqliteStatement(TSqliteDatabase &database, const QByteArray &sql, TStatementUse use)
    : FDatabase(database)
{
    Prepare(sql, use, nullptr);
}

void TSqliteStatement::Prepare(const QByteArray &sql, TStatementUse use, const char **tail)
{
    const unsigned flags = use == TStatementUse::Often ? SQLITE_PREPARE_PERSISTENT : 0;
    if (sqlite3_prepare_v3(FDatabase.Handle(), sql.constData(), int(sql.size()), flags, &FStatement, tail) !=
        SQLITE_OK)
        FDatabase.Fail();
}

TSqliteStatement::~TSqliteStatement() { sqlite3_finalize(FStatement); }

void TSqliteStatement::BindNull(int index) { sqlite3_bind_null(FStatement, index); }
void TSqliteStatement::BindInt(int index, qint64 value) { sqlite3_bind_int64(FStatement, index, value); }
void TSqliteStatement::BindDouble(int index, double value) { sqlite3_bind_double(FStatement, index, value); }

void TSqliteStatement::BindText(int index, std::string_view utf8)
{
    if (sqlite3_bind_text64(FStatement, index, utf8.data() ? utf8.data() : "", utf8.size(), SQLITE_TRANSIENT,
                            SQLITE_UTF8) != SQLITE_OK)
        FDatabase.Fail();
}

void TSqliteStatement::BindLastingText(int index, std::string_view utf8)
{
    if (sqlite3_bind_text64(FStatement, index, utf8.data(), utf8.size(), SQLITE_STATIC, SQLITE_UTF8) !=
        SQLITE_OK)
        FDatabase.Fail();
}

void TSqliteStatement::BindBlob(int index, std::string_view bytes)
{
    if (sqlite3_bind_blob64(FStatement, index, bytes.data() ? bytes.data() : "", bytes.size(),
                            SQLITE_TRANSIENT) != SQLITE_OK)
        FDatabase.Fail();
}

void TSqliteStatement::Bind(int index, const QVariant &value)
{
    if (value.isNull())
        return BindNull(index);
    switch (value.typeId()) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Short:
    case QMetaType::Long:
    case QMetaType::LongLong:
        return BindInt(index, value.toLongLong());
    case QMetaType::Float:
    case QMetaType::Double:
        return BindDouble(index, value.toDouble());
    case QMetaType::QByteArray: {
        const QByteArray bytes = value.toByteArray();
        return BindBlob(index, {bytes.constData(), size_t(bytes.size())});
    }
    default: {
        const QByteArray text = value.toString().toUtf8();
        return BindText(index, {text.constData(), size_t(text.size())});
    }
    }
}

void TSqliteStatement::Bind(std::span<const TSqlParameter> parameters)
{
    // The engine tells names of different case apart, the library does not.
    const int count = parameters.empty() ? 0 : sqlite3_bind_parameter_count(FStatement);
    for (int index = 1; index <= count; ++index) {
        const char *name = sqlite3_bind_parameter_name(FStatement, index);
        const QString wanted = name ? QString::fromUtf8(name + 1) : QString();
        for (const TSqlParameter &parameter : parameters)
            if (parameter.Name.compare(wanted, Qt::CaseInsensitive) == 0)
                Bind(index, parameter.Value);
    }
}

bool TSqliteStatement::Step()
{
    switch (sqlite3_step(FStatement)) {
    case SQLITE_ROW:
        return true;
    case SQLITE_DONE:
        return false;
    default:
        FDatabase.Fail();
    }
}

void TSqliteStatement::Reset()
{
    sqlite3_reset(FStatement);
    sqlite3_clear_bindings(FStatement);
}

int TSqliteStatement::ColumnCount() const { return sqlite3_column_count(FStatement); }
bool TSqliteStatement::IsNull(int column) const
{
    return sqlite3_column_type(FStatement, column) == SQLITE_NULL;
}
qint64 TSqliteStatement::Int(int column) const { return sqlite3_column_int64(FStatement, column); }
double TSqliteStatement::Double(int column) const { return sqlite3_column_double(FStatement, column); }

std::string_view TSqliteStatement::Text(int column) const
{
    // NOTE: the bytes are asked for after the text, since the first call may convert.
    const auto *text = reinterpret_cast<const char *>(sqlite3_column_text(FStatement, column));
    return {text ? text : "", size_t(text ? sqlite3_column_bytes(FStatement, column) : 0)};
}

std::string_view TSqliteStatement::Blob(int column) const
{
    const auto *bytes = static_cast<const char *>(sqlite3_column_blob(FStatement, column));
    return {bytes ? bytes : "", size_t(bytes ? sqlite3_column_bytes(FStatement, column) : 0)};
}

QString TSqliteStatement::String(int column) const
{
    const std::string_view text = Text(column);
    return QString::fromUtf8(text.data(), qsizetype(text.size()));
}

namespace {

/// The two numbers of a declared type's brackets, 0 where there are none.
void ReadDeclaredSize(const QString &declared, TPacketField &field)
{
    const qsizetype open = declared.indexOf(QLatin1Char('('));
    const qsizetype close = declared.indexOf(QLatin1Char(')'), open);
    if (open < 0 || close < 0)
        return;
    const QStringList numbers = declared.mid(open + 1, close - open - 1).split(QLatin1Char(','));
    field.Size = numbers.value(0).trimmed().toInt();
    field.Precision = numbers.value(1).trimmed().toInt();
}

struct TDeclaredType
{
    const char *Part;
    TFieldType Type;
};

/// First match wins; the parts are looked for in the declared type in lower case, as the
/// engine itself does for its affinities (sqlite.org/datatype3.html).
constexpr TDeclaredType DeclaredTypes[] = {
    {"char", ftString},       {"date", ftString},   {"time", ftString},     {"blob", ftBlob},
    {"image", ftBlob},        {"binary", ftBlob},   {"clob", ftMemo},       {"text", ftMemo},
    {"guid", ftString},       {"memo", ftMemo},     {"bigint", ftLargeint}, {"smallint", ftSmallint},
    {"int", ftInteger},       {"decimal", ftFloat}, {"numeric", ftFloat},   {"money", ftCurrency},
    {"currency", ftCurrency}, {"float", ftFloat},   {"real", ftFloat},      {"doub", ftFloat},
    {"bool", ftBoolean},      {"bit", ftBoolean},   {"long", ftInteger},    {"short", ftSmallint},
};

TPacketField DeclaredField(const char *declaredType)
{
    TPacketField field;
    const QString declared = QString::fromUtf8(declaredType).toLower();
    for (const TDeclaredType &entry : DeclaredTypes)
        if (declared.contains(QLatin1String(entry.Part))) {
            field.Type = entry.Type;
            ReadDeclaredSize(declared, field);
            break;
        }
    return field;
}

/// A result may name two columns alike: later ones get "_1", "_2" … behind the name. The
/// engine's own way to tell them apart, ":1", becomes the same.
QString UniqueName(QString name, QSet<QString> &taken)
{
    const qsizetype colon = name.lastIndexOf(QLatin1Char(':'));
    if (colon > 0)
        name.replace(colon, 1, QLatin1Char('_'));
    QString unique = name;
    for (int i = 1; taken.contains(unique.toLower()); ++i)
        unique = name + QLatin1Char('_') + QString::number(i);
    taken.insert(unique.toLower());
    return unique;
}

} // namespace

const QList<TPacketField> &TSqliteStatement::Fields()
{
    const int preparations = sqlite3_stmt_status(FStatement, SQLITE_STMTSTATUS_REPREPARE, 0);
    if (preparations == FPreparations)
        return FFields;
    FFields.clear();
    QSet<QString> taken;
    for (int i = 0; i < ColumnCount(); ++i) {
        TPacketField field = DeclaredField(sqlite3_column_decltype(FStatement, i));
        field.Name = UniqueName(QString::fromUtf8(sqlite3_column_name(FStatement, i)), taken);
        FFields.append(field);
    }
    FPreparations = preparations;
    return FFields;
}

bool TSqliteStatement::IsText(int column) const
{
    return sqlite3_column_type(FStatement, column) == SQLITE_TEXT;
}

bool TSqliteStatement::IsFloat(int column) const
{
    return sqlite3_column_type(FStatement, column) == SQLITE_FLOAT;
}

bool TSqliteStatement::IsReckoned(int column) const
{
    return column < ColumnCount() && !sqlite3_column_decltype(FStatement, column);
}

void TSqliteStatement::AppendRow(TDataPacketBuilder &builder) const
{
    const int columns = builder.FieldCount();
    for (int i = 0; i < columns; ++i) {
        // NOTE: the connection has no mutex and one thread, so that the engine makes no
        // difference between protected and unprotected values (sqlite.org/c3ref/value.html).
        sqlite3_value *const value = sqlite3_column_value(FStatement, i);
        switch (sqlite3_value_type(value)) {
        case SQLITE_INTEGER:
            builder.AppendInt(i, sqlite3_value_int64(value));
            break;
        case SQLITE_FLOAT:
            builder.AppendDouble(i, sqlite3_value_double(value));
            break;
        case SQLITE_TEXT: {
            const auto *text = reinterpret_cast<const char *>(sqlite3_value_text(value));
            builder.AppendText(i, {text ? text : "", size_t(text ? sqlite3_value_bytes(value) : 0)});
            break;
        }
        case SQLITE_BLOB:
            builder.AppendBlob(i, Blob(i));
            break;
        default:
            builder.AppendNull(i);
            break;
        }
    }
    builder.EndRow();
}

TDataPacket TSqliteStatement::ReadAll()
{
    bool hasRow = Step();
    TDataPacketBuilder builder(Fields());
    for (; hasRow; hasRow = Step())
        AppendRow(builder);
    return std::move(builder).Build();
}

} // namespace Korvane
