// SPDX-License-Identifier: MIT
#pragma once

#include "import/ImportPlan.h"
#include "platform/core/Exceptions.h"

#include <string>
#include <string_view>

namespace Korvane {

/// A value of the old database does not fit into the new column; the message says why.
class EImportValue : public Exception
{
public:
    using Exception::Exception;
};

/// A value as it goes into the new database. Bytes is valid until the converter's next call.
struct TImportValue
{
    enum TKind : quint8 {
        Null,
        Number, ///< Bytes are the literal
        Text,   ///< UTF-8
        Blob
    };

    TKind Kind = Null;
    std::string_view Bytes;
};

/// What happened to values that fitted only with a change that loses nothing but what is told
/// here, counted for the report.
struct TConversionNotes
{
    qint64 NullsFilled = 0;  ///< NULL became the default of a column that allows none
    qint64 TimesDropped = 0; ///< a time of day was cut off a date
    qint64 OddDates = 0;     ///< digits of the right count that are no day of the calendar
};

/// Turns the cells of one old column into values of its new column. Exact numbers go from text
/// to text; what would lose a digit, a letter or a meaning raises EImportValue.
class TCellConverter
{
public:
    explicit TCellConverter(const TImportColumn &column);

    TImportValue Convert(const TJetCell &cell);
    const TConversionNotes &Notes() const { return FNotes; }

private:
    TImportValue ConvertNull();
    TImportValue ToWords(const TJetCell &cell);
    TImportValue ToWhole(const TJetCell &cell);
    TImportValue ToDecimal(const TJetCell &cell);
    TImportValue ToFloat(const TJetCell &cell);
    TImportValue ToDate(const TJetCell &cell);
    TImportValue ToFlag(const TJetCell &cell);
    TImportValue ToImage(const TJetCell &cell);

    std::string_view WordsOf(const TJetCell &cell);
    bool ReadNumber(const TJetCell &cell);
    TImportValue Digits(std::string_view date, std::string_view time);
    TImportValue Text(std::string_view bytes) const { return {TImportValue::Text, bytes}; }
    TImportValue Number(std::string_view bytes) const { return {TImportValue::Number, bytes}; }
    void CheckLength(std::string_view text) const;

    const TImportColumn FColumn;
    std::string FDefault;
    std::string FBuffer;
    TConversionNotes FNotes;
};

/// Writes a decimal number in its one form: no sign of a zero, no zeros without need, no point
/// without decimals. False for what is no such number; blanks round it aside.
bool CanonicalDecimal(std::string_view text, std::string &number);

/// A float as a decimal number in that form: the fewest digits that tell it from all others, but
/// of a fraction no more than 15, so that 0.1 + 0.2 is 0.3. Not for infinities and NaN.
void CanonicalFloat(double value, std::string &number);

/// The text without its blanks at the end.
std::string_view WithoutTrailingBlanks(std::string_view text);

/// A cell for people, shortened.
QString CellForReport(const TJetCell &cell);

} // namespace Korvane
