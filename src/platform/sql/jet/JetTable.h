// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/jet/JetIndexes.h"
#include "platform/sql/jet/JetPages.h"
#include "platform/sql/jet/JetValue.h"

#include <QList>

#include <functional>
#include <map>
#include <span>
#include <string_view>
#include <vector>

namespace Korvane {

/// The type of a column as the file gives it. Types that are not named here come as blobs.
enum class TJetType : quint8 {
    Boolean = 1,
    Byte,
    Integer,
    LongInteger,
    Money,
    Single,
    Double,
    DateTime,
    Binary,
    Text,
    Ole,
    Memo,
    Guid = 15,
    Decimal
};

struct TJetColumn
{
    QString Name;
    TJetType Type = TJetType::Text;
    int Size = 0;         ///< characters of a text, bytes of a binary; 0 for memo and OLE
    int Precision = 0;    ///< digits in all, of a decimal
    int Scale = 0;        ///< decimal places, of a decimal
    bool IsFixed = false; ///< a fixed text comes filled with blanks
    bool IsNullable = true;
    bool IsAuto = false; ///< the engine numbers the rows
};

/// A cell of a row. Bytes is valid until the next row.
struct TJetCell
{
    enum TKind : quint8 { Null, Integer, Real, Text, Blob };

    TKind Kind = Null;
    qint64 Int = 0;         ///< of Integer; a boolean is 0 or 1
    double Number = 0;      ///< of Real, and the date-time number beside the text of a date
    std::string_view Bytes; ///< of Text in UTF-8 (money, decimals, dates and GUIDs, too) and Blob
};

using TJetRowFunction = std::function<void(std::span<const TJetCell>)>;

/// The definition of a table and its rows. All that is wrong in the file raises EJetDamage.
class TJetTable
{
public:
    TJetTable(TJetPages &pages, quint32 definitionPage);

    const QList<TJetColumn> &Columns() const { return FColumns; }
    int IndexOf(QStringView name) const;
    /// How many rows the definition counts, which may be behind after a program was killed.
    size_t RowCount() const { return FRowCount; }
    QList<TJetIndex> Indexes();
    /// Calls for each row in the order of the file; deleted rows are passed over.
    void ReadRows(const TJetRowFunction &row);

private:
    /// Where the values of a column stand in a row.
    struct TPlace
    {
        int Number = 0; ///< bit in the null mask
        bool IsFixed = false;
        size_t Offset = 0; ///< of a fixed value
        int Variable = 0;  ///< number among the variable values
        size_t Size = 0;   ///< bytes
        TJetText *Text = nullptr;
    };
    /// The frame of a row: where its values begin and end.
    struct TRow
    {
        TJetBytes Bytes;
        int ColumnCount = 0;
        size_t MaskBegin = 0;
        size_t ValuesEnd = 0;
    };

    std::vector<quint8> DefinitionBytes(quint32 page) const;
    void ReadColumns(TJetBytes definition);
    TJetColumn ReadColumn(TJetBytes record, TPlace &place);
    size_t ReadNames(TJetBytes definition, size_t at);
    TJetText &TextOf(int codePage);

    std::vector<quint32> DataPages();
    void AddMappedPages(TJetBytes bitmap, quint32 firstPage, std::vector<quint32> &pages) const;
    bool HoldsRows(TJetBytes page, quint32 number) const;
    size_t ReadPage(TJetBytes page, const TJetRowFunction &row);

    TRow Frame(TJetBytes row);
    void ReadVariableOffsets(TRow &row, size_t end);
    void ReadVariableOffsets3(TRow &row, size_t end, int count);
    void DecodeRow(TJetBytes bytes);
    bool FindValue(const TRow &row, const TPlace &place, TJetBytes &value) const;
    void DecodeValue(size_t column, TJetBytes value);
    TJetBytes LongValue(TJetBytes reference);
    TJetBytes ChainedValue(quint32 pointer, size_t size);

    TJetPages &FPages;
    quint32 FPage;
    std::vector<quint8> FDefinition;
    TJetIndexPlaces FIndexPlaces;
    quint32 FUsageMap = 0; ///< pointer to the row that holds it
    size_t FRowCount = 0;
    int FVariableCount = 0;
    QList<TJetColumn> FColumns;
    std::vector<TPlace> FPlaces;
    std::map<int, TJetText> FTexts; ///< by code page

    // Used for each row anew, kept to save allocations.
    std::vector<TJetCell> FCells;
    std::vector<std::string> FBuffers; ///< one for each column
    std::vector<size_t> FVariableOffsets;
    std::vector<quint8> FLongValue;
    /// Bytes that long values may still have before they must be counting some twice.
    size_t FLongBytesLeft = 0;
};

} // namespace Korvane
