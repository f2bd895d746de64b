// SPDX-License-Identifier: MIT
#include "import/TableVerifier.h"

#include "import/RowConverter.h"
#include "platform/data/NumberText.h"
#include "session/DBSession.h"

#include <QHash>

#include <array>
#include <charconv>

namespace Korvane {

namespace {

constexpr int MostRowsShown = 10;

/// Reads a column of the new table in the forms in which TCellConverter gives values.
class TPacketCells
{
public:
    TPacketCells(const TImportColumn &column, const TPacketColumn &cells) : FColumn(column), FCells(&cells) {}

    TImportValue At(qsizetype row)
    {
        if (FCells->IsNull(row))
            return {};
        const bool isText = FCells->Kind() == TColumnKind::Text || FCells->Kind() == TColumnKind::Blob;
        switch (FColumn.Type) {
        case dtInt:
        case dtSmallint:
        case dtDecimal:
        case dtFloat:
            ReadNumber(row);
            return {TImportValue::Number, FBuffer};
        case dtImage:
            if (isText)
                return {TImportValue::Blob, FCells->Bytes(row)};
            break;
        case dtBoolean:
            if (!isText) {
                ReadNumber(row);
                return {TImportValue::Text, FBuffer == "0" ? "N" : "Y"};
            }
            break;
        default:
            break;
        }
        if (isText)
            return {TImportValue::Text, FCells->Bytes(row)};
        ReadNumber(row);
        return {TImportValue::Text, FBuffer};
    }

private:
    void ReadNumber(qsizetype row)
    {
        switch (FCells->Kind()) {
        case TColumnKind::Double:
            return FromFloat(FCells->Doubles()[size_t(row)]);
        case TColumnKind::Text:
        case TColumnKind::Blob:
            return FromText(FCells->Bytes(row));
        default:
            if (FColumn.Type == dtFloat)
                return FromFloat(double(FCells->Int(row)));
            FBuffer = std::to_string(FCells->Int(row));
        }
    }

    void FromFloat(double value)
    {
        if (FColumn.Type == dtFloat) {
            FBuffer = TNumberText(value == 0 ? 0.0 : value).View();
        } else if (FColumn.Type == dtDecimal) {
            std::array<char, 400> text;
            const auto end = std::to_chars(text.data(), text.data() + text.size(), value,
                                           std::chars_format::fixed, FColumn.Precision);
            CanonicalDecimal({text.data(), size_t(end.ptr - text.data())}, FBuffer);
        } else {
            CanonicalFloat(value, FBuffer);
        }
    }

    void FromText(std::string_view text)
    {
        const std::optional<double> value = FColumn.Type == dtFloat ? ParseDouble(text) : std::nullopt;
        if (value)
            FromFloat(*value);
        else if (!CanonicalDecimal(text, FBuffer))
            FBuffer = text;
    }

    const TImportColumn FColumn;
    const TPacketColumn *FCells;
    std::string FBuffer;
};

QString ValueText(const TImportValue &value)
{
    if (value.Kind == TImportValue::Null)
        return QStringLiteral("NULL");
    if (value.Kind == TImportValue::Blob)
        return QStringLiteral("%1 字节").arg(value.Bytes.size());
    return u'“' + QString::fromUtf8(value.Bytes.data(), qMin(qsizetype(value.Bytes.size()), qsizetype(60))) +
           u'”';
}

/// The key of a row of the new table, or all of it.
QString RowText(const QList<TImportColumn> &columns, const std::vector<TImportValue> &values)
{
    const bool hasKey =
        std::any_of(columns.begin(), columns.end(), [](const TImportColumn &column) { return column.IsKey; });
    QStringList cells;
    for (qsizetype i = 0; i < columns.size(); ++i)
        if (columns[i].IsKey || !hasKey)
            cells.append(columns[i].Code + u'=' + ValueText(values[size_t(i)]));
    return cells.join(QStringLiteral("，"));
}

} // namespace

TTableVerifier::TTableVerifier(const TImportTable &table, TDBSession &session)
    : FTable(table), FColumns(table.Filled())
{
    QStringList codes;
    for (const TImportColumn &column : FColumns)
        codes.append(column.Code);
    FRows = session.Open(QStringLiteral("select %1 from %2").arg(codes.join(u','), table.Code));
}

template <typename F> void TTableVerifier::ReadBack(F row)
{
    std::vector<TPacketCells> cells;
    for (int i = 0; i < int(FColumns.size()); ++i)
        cells.emplace_back(FColumns[i], FRows.Column(i));
    std::vector<TImportValue> values(cells.size());
    for (qsizetype number = 0; number < FRows.RowCount(); ++number) {
        for (size_t i = 0; i < cells.size(); ++i)
            values[i] = cells[i].At(number);
        row(values);
    }
}

QStringList TTableVerifier::Verify(const TColumnSums &expected, TJetFile &file)
{
    TColumnSums found(FColumns);
    ReadBack([&](const std::vector<TImportValue> &values) { found.AddRow(values); });
    QStringList lines = Differences(expected, found);
    if (!lines.isEmpty())
        FindRows(file, lines);
    return lines;
}

QStringList TTableVerifier::Differences(const TColumnSums &expected, const TColumnSums &found) const
{
    QStringList lines;
    if (expected.RowCount() != found.RowCount())
        lines.append(QStringLiteral("表 %1 应有 %2 行，实有 %3 行")
                         .arg(FTable.Code)
                         .arg(expected.RowCount())
                         .arg(found.RowCount()));
    QStringList codes;
    for (qsizetype i = 0; i < FColumns.size(); ++i)
        if (expected.Sum(size_t(i)) != found.Sum(size_t(i)))
            codes.append(FColumns[i].Code);
    if (!codes.isEmpty())
        lines.append(
            QStringLiteral("表 %1 的校验和不一致：%2").arg(FTable.Code, codes.join(QStringLiteral("、"))));
    return lines;
}

/// Tells the first rows that differ. The old rows are known by their keys; where those repeat, a
/// row may be taken for another of the same key.
void TTableVerifier::FindRows(TJetFile &file, QStringList &lines)
{
    TColumnSums sums(FColumns);
    struct TOldRow
    {
        QString Text;
        std::vector<quint64> Cells;
    };
    QHash<quint64, TOldRow> old;
    TRowConverter rows(FTable);
    file.ReadTable(FTable.OldName, [&](std::span<const TJetCell> row) {
        rows.Convert(row);
        sums.AddRow(rows.Values());
        TOldRow &next = old[sums.RowKey()];
        next.Text = rows.RowText(row);
        for (size_t i = 0; i < rows.Values().size(); ++i)
            next.Cells.push_back(sums.RowCell(i));
    });
    int shown = 0;
    const auto show = [&](const QString &line) {
        if (++shown <= MostRowsShown)
            lines.append(QStringLiteral("  ") + line);
    };
    ReadBack([&](const std::vector<TImportValue> &values) {
        sums.AddRow(values);
        const auto found = old.constFind(sums.RowKey());
        if (found == old.constEnd())
            return show(QStringLiteral("旧表中没有的行：") + RowText(FColumns, values));
        for (size_t i = 0; i < values.size(); ++i)
            if (found->Cells[i] != sums.RowCell(i))
                show(QStringLiteral("%1 的 %2 成了%3")
                         .arg(found->Text, FColumns[qsizetype(i)].Code, ValueText(values[i])));
        old.erase(found);
    });
    for (const TOldRow &row : std::as_const(old))
        show(QStringLiteral("缺少的行：%1").arg(row.Text));
    if (shown > MostRowsShown)
        lines.append(QStringLiteral("  另有 %1 处").arg(shown - MostRowsShown));
}

} // namespace Korvane
