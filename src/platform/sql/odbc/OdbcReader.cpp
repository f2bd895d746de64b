// SPDX-License-Identifier: MIT
#include "platform/sql/odbc/OdbcReader.h"

#include "platform/core/DateTime.h"

#include <QSet>

#include <charconv>
#include <cstring>

namespace Korvane {

namespace {

constexpr SQLULEN UnlimitedLength = 8190; ///< a text or blob from this length on has no declared one
constexpr size_t UnlimitedRoom = 512;     ///< bytes of an unlimited value that come with its block
constexpr size_t BlockBytes = 2 * 1024 * 1024;
constexpr size_t MostBlockRows = 2000;
constexpr size_t FirstPieceSize = 4 * 1024;
constexpr size_t PieceSize = 256 * 1024;
constexpr size_t DecimalRoom = 64;
constexpr size_t TimeRoom = 32;

/// A result may name two columns alike: later ones get "_1", "_2" … behind the name.
QString UniqueName(const QString &name, QSet<QString> &taken)
{
    QString unique = name;
    for (int i = 1; taken.contains(unique.toLower()); ++i)
        unique = name + QLatin1Char('_') + QString::number(i);
    taken.insert(unique.toLower());
    return unique;
}

/// The number that digits stand for; nothing where a float could not give them back.
std::optional<double> ExactDouble(std::string_view digits)
{
    // Up to 15 digits and a power of ten below 10^22 are exact, and so is their quotient's rounding.
    static constexpr double powers[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                        1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    const bool negative = digits.starts_with('-');
    qint64 mantissa = 0;
    size_t count = 0;
    size_t places = 0;
    bool fraction = false;
    for (const char c : digits.substr(negative ? 1 : 0)) {
        if ((c == '.' || c == ',') && !fraction) { // some drivers write the locale's sign
            fraction = true;
            continue;
        }
        if (c < '0' || c > '9')
            return std::nullopt;
        mantissa = mantissa * 10 + (c - '0');
        count += count > 0 || c != '0';
        places += fraction;
        if (count > 15)
            return std::nullopt;
    }
    if (places >= std::size(powers))
        return std::nullopt;
    const double value = double(mantissa) / powers[places];
    return negative ? -value : value;
}

/// Whether a text is a whole number of 64 bits.
std::optional<qint64> WholeNumber(std::string_view digits)
{
    qint64 number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error != std::errc() || end != digits.data() + digits.size())
        return std::nullopt;
    return number;
}

std::string_view WithoutZerosBehind(std::string_view digits)
{
    if (digits.find('.') == std::string_view::npos)
        return digits;
    while (digits.ends_with('0'))
        digits.remove_suffix(1);
    if (digits.ends_with('.'))
        digits.remove_suffix(1);
    return digits;
}

std::optional<double> DaysOf(const QDate &date, const QTime &time)
{
    if (!date.isValid() || !time.isValid())
        return std::nullopt;
    return TDateTime(date, time).Days();
}

std::optional<double> DateTimeDays(const char *place)
{
    SQL_TIMESTAMP_STRUCT value;
    std::memcpy(&value, place, sizeof value);
    const int msec = int((value.fraction + 500'000) / 1'000'000);
    const auto days = DaysOf(QDate(value.year, value.month, value.day),
                             QTime(value.hour, value.minute, value.second, std::min(msec, 999)));
    return days;
}

std::optional<double> DateDays(const char *place)
{
    SQL_DATE_STRUCT value;
    std::memcpy(&value, place, sizeof value);
    return DaysOf(QDate(value.year, value.month, value.day), QTime(0, 0));
}

/// "23:59:58.123". NOTE: ODBC's own structure of a time has no place for what is below a second.
std::optional<double> TimeDays(std::string_view text)
{
    const auto number = [text](size_t at, size_t count) {
        int value = -1;
        if (at + count <= text.size())
            std::from_chars(text.data() + at, text.data() + at + count, value);
        return value;
    };
    int msec = 0;
    for (size_t i = 9, unit = 100; i < text.size() && unit > 0; ++i, unit /= 10)
        msec += std::max(number(i, 1), 0) * int(unit);
    const QTime time(number(0, 2), number(3, 2), number(6, 2), msec);
    if (!time.isValid())
        return std::nullopt;
    return TDateTime(time).Days();
}

} // namespace

TOdbcReader::TOdbcReader(TOdbcStatement &statement, const QHash<QString, QString> &writtenNames)
    : FStatement(statement), FToUtf8(QStringEncoder::Utf8, QStringEncoder::Flag::Stateless)
{
    Describe(writtenNames);
}

TOdbcReader::~TOdbcReader()
{
    // The statement may go on to another result: it must not keep the arrays.
    SQLFreeStmt(FStatement.Handle(), SQL_UNBIND);
    SQLSetStmtAttr(FStatement.Handle(), SQL_ATTR_ROWS_FETCHED_PTR, nullptr, 0);
    SQLSetStmtAttr(FStatement.Handle(), SQL_ATTR_ROW_STATUS_PTR, nullptr, 0);
    SQLSetStmtAttr(FStatement.Handle(), SQL_ATTR_ROW_ARRAY_SIZE, OdbcNumber(1), 0);
}

void TOdbcReader::Describe(const QHash<QString, QString> &writtenNames)
{
    const int count = FStatement.ColumnCount();
    FColumns.resize(size_t(count));
    QSet<QString> taken;
    std::vector<SQLWCHAR> name(512);
    for (int i = 0; i < count; ++i) {
        SQLSMALLINT length = 0, type = 0, digits = 0, nullable = 0;
        SQLULEN size = 0;
        FStatement.Check(SQLDescribeColW(FStatement.Handle(), SQLUSMALLINT(i + 1), name.data(),
                                         SQLSMALLINT(name.size()), &length, &type, &size, &digits,
                                         &nullable));
        const QString told = QString::fromUtf16(reinterpret_cast<const char16_t *>(name.data()),
                                                std::min<qsizetype>(length, qsizetype(name.size()) - 1));
        TColumn &column = FColumns[size_t(i)];
        ChooseCell(column, i + 1, type, size, digits);
        column.Field.Name = UniqueName(writtenNames.value(told, told), taken);
    }
}

QString TOdbcReader::Attribute(int number, SQLUSMALLINT which) const
{
    std::vector<SQLWCHAR> text(256);
    SQLSMALLINT length = 0; // in bytes
    if (!SQL_SUCCEEDED(SQLColAttributeW(FStatement.Handle(), SQLUSMALLINT(number), which, text.data(),
                                        SQLSMALLINT(text.size() * sizeof(SQLWCHAR)), &length, nullptr)))
        return {};
    return QString::fromUtf16(reinterpret_cast<const char16_t *>(text.data()));
}

void TOdbcReader::ChooseText(TColumn &column, int number, SQLULEN size) const
{
    const TOdbcServer &server = FStatement.Connection().Server();
    const bool utf8 = !server.Utf8Types.isEmpty() &&
                      server.Utf8Types.contains(Attribute(number, SQL_DESC_TYPE_NAME), Qt::CaseInsensitive);
    column.Cell = utf8 ? TCell::Utf8 : TCell::Utf16;
    column.CType = utf8 ? SQL_C_BINARY : SQL_C_WCHAR;
    column.IsUnlimited = size == 0 || size >= UnlimitedLength;
    if (column.IsUnlimited) {
        const bool isMemo =
            !server.ComputedTextsAreUnlimited || !Attribute(number, SQL_DESC_BASE_TABLE_NAME).isEmpty();
        column.Field.Type = isMemo ? ftMemo : ftUnknown;
        column.Room = UnlimitedRoom;
    } else {
        column.Field.Type = ftString;
        column.Field.Size = int(size);
        // A character has up to three bytes, or four where it takes two places of UTF-16.
        column.Room = size_t(size) * (utf8 ? 4 : sizeof(SQLWCHAR) * 2);
    }
    column.Width = utf8 ? column.Room : column.Room + sizeof(SQLWCHAR);
}

void TOdbcReader::ChooseCell(TColumn &column, int number, SQLSMALLINT type, SQLULEN size,
                             SQLSMALLINT digits) const
{
    const auto choose = [&column](TCell cell, SQLSMALLINT ctype, size_t width, TFieldType field) {
        column.Cell = cell;
        column.CType = ctype;
        column.Width = column.Room = width;
        column.Field.Type = field;
    };
    switch (type) {
    case SQL_TINYINT:
    case SQL_SMALLINT:
        return choose(TCell::Int32, SQL_C_SLONG, sizeof(SQLINTEGER), ftSmallint);
    case SQL_INTEGER:
        return choose(TCell::Int32, SQL_C_SLONG, sizeof(SQLINTEGER), ftInteger);
    case SQL_BIGINT:
        return choose(TCell::Int64, SQL_C_SBIGINT, sizeof(SQLBIGINT), ftLargeint);
    case SQL_BIT:
        return choose(TCell::Bit, SQL_C_BIT, 1, ftBoolean);
    case SQL_REAL:
    case SQL_FLOAT:
    case SQL_DOUBLE:
        return choose(TCell::Double, SQL_C_DOUBLE, sizeof(SQLDOUBLE), ftFloat);
    case SQL_DECIMAL:
    case SQL_NUMERIC:
        choose(TCell::Decimal, SQL_C_CHAR, DecimalRoom, ftFloat);
        column.Room = DecimalRoom - 1;
        column.IsUnlimited = true;
        if (size > 0) {
            column.Field.Size = int(size);
            column.Field.Precision = digits;
        }
        return;
    case SQL_TYPE_TIMESTAMP:
        return choose(TCell::DateTime, SQL_C_TYPE_TIMESTAMP, sizeof(SQL_TIMESTAMP_STRUCT), ftDateTime);
    case SQL_TYPE_DATE:
        return choose(TCell::Date, SQL_C_TYPE_DATE, sizeof(SQL_DATE_STRUCT), ftDate);
    case SQL_TYPE_TIME:
        choose(TCell::Time, SQL_C_CHAR, TimeRoom, ftTime);
        column.Room = TimeRoom - 1;
        return;
    case SQL_BINARY:
    case SQL_VARBINARY:
    case SQL_LONGVARBINARY:
        choose(TCell::Blob, SQL_C_BINARY, UnlimitedRoom, ftBlob);
        column.IsUnlimited = size == 0 || size > UnlimitedRoom;
        return;
    default:
        return ChooseText(column, number, size);
    }
}

void TOdbcReader::BindBlocks()
{
    SQLHSTMT handle = FStatement.Handle();
    size_t rowWidth = 1;
    for (const TColumn &column : FColumns)
        rowWidth += column.Width + sizeof(SQLLEN);
    FBlockRows = std::clamp<size_t>(BlockBytes / rowWidth, 1, MostBlockRows);
    if (!FStatement.Connection().ReadsCellsOfBlocks()) {
        // Row by row then, and from the first unlimited column on cell by cell: a driver
        // need not give a column that stands before a bound one, nor one twice.
        bool bound = true;
        for (TColumn &column : FColumns) {
            bound = bound && (!column.IsUnlimited || column.Cell == TCell::Decimal);
            column.IsBound = bound;
        }
        if (!bound)
            FBlockRows = 1;
    }
    FRowStates.resize(FBlockRows);
    FStatement.Check(SQLSetStmtAttr(handle, SQL_ATTR_ROW_ARRAY_SIZE, OdbcNumber(FBlockRows), 0));
    FStatement.Check(SQLSetStmtAttr(handle, SQL_ATTR_ROWS_FETCHED_PTR, &FFetched, 0));
    FStatement.Check(SQLSetStmtAttr(handle, SQL_ATTR_ROW_STATUS_PTR, FRowStates.data(), 0));
    for (size_t i = 0; i < FColumns.size(); ++i) {
        TColumn &column = FColumns[i];
        column.Places.reset(new char[column.Width * FBlockRows]);
        column.Indicators.resize(FBlockRows);
        if (column.IsBound)
            FStatement.Check(SQLBindCol(handle, SQLUSMALLINT(i + 1), column.CType, column.Places.get(),
                                        SQLLEN(column.Width), column.Indicators.data()));
    }
}

TDataPacket TOdbcReader::ReadAll()
{
    BindBlocks();
    QList<TPacketField> fields;
    for (const TColumn &column : FColumns)
        fields.append(column.Field);
    TDataPacketBuilder builder(std::move(fields));
    for (;;) {
        const SQLRETURN result = SQLFetch(FStatement.Handle());
        if (result == SQL_NO_DATA)
            break;
        FStatement.Check(result);
        const size_t rows = size_t(FFetched);
        for (size_t row = 0; row < rows; ++row) {
            if (FRowStates[row] == SQL_ROW_ERROR)
                FStatement.Check(SQL_ERROR);
            AppendRow(builder, row);
        }
        if (builder.RowCount() == qsizetype(rows))
            builder.Expect(FStatement.RowCount()); // some drivers know how many rows there are
    }
    return std::move(builder).Build();
}

void TOdbcReader::AppendRow(TDataPacketBuilder &builder, size_t row)
{
    for (int i = 0; i < int(FColumns.size()); ++i)
        AppendCell(builder, i, row);
    builder.EndRow();
}

inline void TOdbcReader::AppendCell(TDataPacketBuilder &builder, int field, size_t row)
{
    const TColumn &column = FColumns[size_t(field)];
    if (!column.IsBound)
        return AppendLong(builder, field, row);
    const SQLLEN length = column.Indicators[row];
    if (length == SQL_NULL_DATA)
        builder.AppendNull(field);
    else if (length == SQL_NO_TOTAL || length > SQLLEN(column.Room))
        AppendLong(builder, field, row);
    else
        AppendBound(builder, field, column.Place(row), length);
}

void TOdbcReader::AppendBound(TDataPacketBuilder &builder, int field, const char *place, SQLLEN length)
{
    const auto appendDays = [&](const std::optional<double> &days) {
        if (!days)
            throw ESqlError(QStringLiteral("字段“%1”的日期超出范围").arg(FColumns[size_t(field)].Field.Name));
        builder.AppendDouble(field, *days);
    };
    switch (FColumns[size_t(field)].Cell) {
    case TCell::Int32: {
        SQLINTEGER value;
        std::memcpy(&value, place, sizeof value);
        return builder.AppendInt(field, value);
    }
    case TCell::Int64: {
        SQLBIGINT value;
        std::memcpy(&value, place, sizeof value);
        return builder.AppendInt(field, value);
    }
    case TCell::Bit:
        return builder.AppendInt(field, *place != 0);
    case TCell::Double: {
        double value;
        std::memcpy(&value, place, sizeof value);
        return builder.AppendDouble(field, value);
    }
    case TCell::Decimal:
        return AppendDecimal(builder, field, {place, size_t(length)});
    case TCell::Utf8:
        return builder.AppendText(field, {place, size_t(length)});
    case TCell::Utf16:
        return AppendUtf16(builder, field, place, size_t(length));
    case TCell::Blob:
        return builder.AppendBlob(field, {place, size_t(length)});
    case TCell::DateTime:
        return appendDays(DateTimeDays(place));
    case TCell::Date:
        return appendDays(DateDays(place));
    case TCell::Time:
        return appendDays(TimeDays({place, size_t(length)}));
    }
}

void TOdbcReader::AppendDecimal(TDataPacketBuilder &builder, int field, std::string_view digits)
{
    if (const auto value = ExactDouble(digits))
        return builder.AppendDouble(field, *value);
    // More digits than a float keeps: the builder makes the column one of texts, so that none is lost.
    const std::string_view plain = WithoutZerosBehind(digits);
    if (const auto value = ExactDouble(plain))
        return builder.AppendDouble(field, *value);
    if (const auto whole = WholeNumber(plain))
        return builder.AppendInt(field, *whole);
    builder.AppendText(field, plain);
}

void TOdbcReader::AppendUtf16(TDataPacketBuilder &builder, int field, const char *bytes, size_t size)
{
    const QStringView text(reinterpret_cast<const char16_t *>(bytes), qsizetype(size / sizeof(char16_t)));
    const size_t needed = size_t(FToUtf8.requiredSpace(text.size()));
    if (FUtf8.size() < needed)
        FUtf8.resize(needed);
    const char *end = FToUtf8.appendToBuffer(FUtf8.data(), text);
    builder.AppendText(field, {FUtf8.data(), size_t(end - FUtf8.data())});
}

bool TOdbcReader::ReadByPieces(int field, SQLSMALLINT ctype, size_t expected)
{
    FLong.clear();
    const size_t ending = ctype == SQL_C_WCHAR ? sizeof(SQLWCHAR) : ctype == SQL_C_CHAR ? 1 : 0;
    for (;;) {
        const size_t begin = FLong.size();
        const size_t room = begin > 0 ? PieceSize : std::max(FirstPieceSize, expected + sizeof(SQLWCHAR));
        FLong.resize(begin + room);
        SQLLEN length = 0;
        const SQLRETURN result = SQLGetData(FStatement.Handle(), SQLUSMALLINT(field + 1), ctype,
                                            FLong.data() + begin, SQLLEN(room), &length);
        if (result == SQL_NO_DATA) {
            FLong.resize(begin);
            return true;
        }
        FStatement.Check(result);
        if (length == SQL_NULL_DATA)
            return false;
        const bool more = length == SQL_NO_TOTAL || size_t(length) > room - ending;
        FLong.resize(begin + (more ? room - ending : size_t(length)));
        if (!more)
            return true;
    }
}

void TOdbcReader::AppendLong(TDataPacketBuilder &builder, int field, size_t row)
{
    const TColumn &column = FColumns[size_t(field)];
    if (FBlockRows > 1)
        FStatement.Check(
            SQLSetPos(FStatement.Handle(), SQLSETPOSIROW(row + 1), SQL_POSITION, SQL_LOCK_NO_CHANGE));
    const SQLLEN told = column.IsBound ? column.Indicators[row] : SQL_NO_TOTAL;
    const size_t expected = told > 0 ? size_t(told) : 0;
    // NOTE: psqlodbc loses the last byte of a text that it gives as bytes by pieces; in one piece,
    // or as UTF-16, it does not.
    const bool asUtf16 = column.Cell == TCell::Utf8 && expected == 0;
    if (!ReadByPieces(field, asUtf16 ? SQLSMALLINT(SQL_C_WCHAR) : column.CType, expected))
        return builder.AppendNull(field);
    if (asUtf16)
        return AppendUtf16(builder, field, FLong.data(), FLong.size());
    AppendBound(builder, field, FLong.data(), SQLLEN(FLong.size()));
}

} // namespace Korvane
