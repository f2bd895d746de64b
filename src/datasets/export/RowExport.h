// SPDX-License-Identifier: MIT
#pragma once

#include "platform/data/dataset/DataSet.h"

#include <vector>

namespace Korvane {

/// What stands in a cell whose value nobody is to see.
inline constexpr std::string_view MaskText = "******";

/// What a column of a file is made of.
enum class TExportForm { Integer, Float, Text };

/// The rows of a dataset on their way into a file: how each field is read is found out once, so
/// that most cells go from the rows to the writer as they stand. A cell is left out where its field
/// is not visible or shows MaskText to be edited.
///
/// A writer has Integer, Number, Text (of UTF-8 or of a QString) and Skip.
class TRowExport
{
public:
    using TFormOf = TExportForm (*)(TFieldType);
    /// What becomes of a number that is NULL.
    enum class TNullNumber { Zero, Skipped };

    TRowExport(TDataSet &dataSet, TFormOf formOf, TNullNumber nullNumber)
        : FDataSet(dataSet), FFormOf(formOf), FNullNumber(nullNumber)
    {
    }

    /// Writes the current row.
    template <class Writer> void WriteRow(Writer &writer)
    {
        Aim();
        const TRowReader *row = FDataSet.CurrentRow();
        for (const TColumn &column : FColumns) {
            if (!column.Field->Visible())
                writer.Skip();
            else if (column.Number >= 0 && row && !column.Field->OnGetText)
                WriteStored(column, *row, writer);
            else
                WriteShown(column, writer);
        }
    }

private:
    struct TColumn
    {
        TField *Field;
        TExportForm Form;
        int Number;            ///< of the rows' column that has the value as it is written; -1 if none has
        bool HasWords = false; ///< the column has 0 and 1, for which these stand
        QByteArray Words[2] = {};
    };

    /// Learns the fields, if they are not those of the row before.
    void Aim();
    static TColumn ColumnOf(TField &field, TExportForm form);

    template <class Writer> void WriteStored(const TColumn &column, const TRowReader &row, Writer &writer)
    {
        const bool isNull = row.IsNull(column.Number);
        if (column.Form == TExportForm::Text)
            return isNull ? writer.Text(std::string_view()) : WriteText(column, row, writer);
        if (isNull && FNullNumber == TNullNumber::Skipped)
            writer.Skip();
        else if (column.Form == TExportForm::Integer)
            writer.Integer(row.GetInt(column.Number));
        else
            writer.Number(row.GetDouble(column.Number));
    }

    template <class Writer>
    static void WriteText(const TColumn &column, const TRowReader &row, Writer &writer)
    {
        const std::string_view text =
            column.HasWords ? WordOf(column, row.GetInt(column.Number)) : row.GetText(column.Number);
        if (text == MaskText)
            writer.Skip();
        else
            writer.Text(text);
    }
    static std::string_view WordOf(const TColumn &column, qint64 value)
    {
        const QByteArray &word = column.Words[value != 0 ? 1 : 0];
        return {word.constData(), size_t(word.size())};
    }

    template <class Writer> void WriteShown(const TColumn &column, Writer &writer)
    {
        TField &field = *column.Field;
        const QString text = field.Text();
        if (text == QLatin1String(MaskText.data(), qsizetype(MaskText.size())))
            writer.Skip();
        else if (column.Form == TExportForm::Text)
            writer.Text(text);
        else if (FNullNumber == TNullNumber::Skipped && field.IsNull())
            writer.Skip();
        else if (column.Form == TExportForm::Float)
            writer.Number(field.AsFloat());
        else
            WriteInteger(field, writer);
    }
    template <class Writer> static void WriteInteger(TField &field, Writer &writer)
    {
        if (field.DataType() == ftLargeint)
            writer.Integer(field.AsLargeInt());
        else
            writer.Integer(field.AsInteger());
    }

    TDataSet &FDataSet;
    const TFormOf FFormOf;
    const TNullNumber FNullNumber;
    QList<TField *> FFields; // NOTE: kept, so that no other list can come to lie where it lies
    std::vector<TColumn> FColumns;
};

} // namespace Korvane
