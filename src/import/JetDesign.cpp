// SPDX-License-Identifier: MIT
#include "import/JetDesign.h"

#include "design/AuditColumns.h"
#include "general/Messages.h"
#include "general/Types.h"
#include "import/DesignNames.h"
#include "import/ImportPlan.h"
#include "platform/core/Prompts.h"

#include <QFile>
#include <QFileInfo>

#include <cmath>

namespace Korvane {

namespace {

constexpr qsizetype MostOfTableCode = 30;
constexpr int LargestText = 255;

bool IsAudit(const QString &name)
{
    return std::any_of(std::begin(AuditColumns), std::end(AuditColumns), [&](const TAuditColumn &column) {
        return column.Name.compare(name, Qt::CaseInsensitive) == 0;
    });
}

struct TFieldShape
{
    TDataType Type = dtVarchar;
    int Size = 0;
    int Precision = 0;
};

TFieldShape ShapeOf(const TJetColumn &column, bool hasTimes)
{
    switch (column.Type) {
    case TJetType::Boolean:
        return {dtBoolean, 1};
    case TJetType::Byte:
    case TJetType::Integer:
        return {dtSmallint, 6};
    case TJetType::LongInteger:
        return {dtInt, 8};
    case TJetType::Money:
        return {dtDecimal, 19, 4};
    case TJetType::Decimal:
        return {dtDecimal, column.Precision, column.Scale};
    case TJetType::Single:
    case TJetType::Double:
        return {dtFloat, 8};
    case TJetType::DateTime:
        return hasTimes ? TFieldShape{dtDateTime, 14} : TFieldShape{dtDate, 8};
    case TJetType::Text:
        return {column.IsFixed ? dtChar : dtVarchar, column.Size > 0 ? column.Size : LargestText};
    case TJetType::Memo:
        return {dtText};
    case TJetType::Guid:
        return {dtChar, 38};
    case TJetType::Binary:
    case TJetType::Ole:
        break;
    }
    return {dtImage};
}

/// For each column whether a date with a time of day stands in it; true also where there is no
/// row to tell.
std::vector<bool> TimesOf(TJetFile &file, const QString &table, const QList<TJetColumn> &columns)
{
    std::vector<size_t> dates;
    for (qsizetype i = 0; i < columns.size(); ++i)
        if (columns[i].Type == TJetType::DateTime)
            dates.push_back(size_t(i));
    std::vector<bool> hasTimes(size_t(columns.size()), false), hasDates = hasTimes;
    if (dates.empty())
        return hasTimes;
    file.ReadTable(table, [&](std::span<const TJetCell> row) {
        for (const size_t i : dates) {
            if (row[i].Kind == TJetCell::Null)
                continue;
            hasDates[i] = true;
            // "2024-01-31" alone is midnight.
            hasTimes[i] = hasTimes[i] || row[i].Bytes.size() > 10;
        }
    });
    for (size_t i = 0; i < hasTimes.size(); ++i)
        hasTimes[i] = hasTimes[i] || !hasDates[i];
    return hasTimes;
}

template <class Named> QStringList NamesOf(const QList<Named> &list)
{
    QStringList names;
    for (const Named &item : list)
        names.append(item.Name);
    return names;
}

class TDesignMaker
{
public:
    explicit TDesignMaker(TJetFile &file) : FFile(file), FTableNames(NamesOf(file.Tables())) {}

    TJetDesign Make()
    {
        for (const TJetTableInfo &table : FFile.Tables()) {
            if (table.Kind == TJetTableKind::Table && !table.Name.startsWith(u'~') &&
                !TakeVersion(table.Name))
                AddTable(table.Name);
        }
        return std::move(FDesign);
    }

private:
    /// The table that holds the old database's version becomes the change that leads there.
    bool TakeVersion(const QString &table)
    {
        if (table.compare(QLatin1String("Version"), Qt::CaseInsensitive) != 0)
            return false;
        const std::optional<int> version = OldDatabaseVersion(FFile, table);
        if (!version)
            return false;
        TChangesObject change;
        change.ChangeNo = *version;
        change.ChangeName = QStringLiteral("从旧数据库导入");
        if (change.ChangeNo > 0)
            FDesign.Rows.Changes.push_back(change);
        FDesign.Lines.append(QStringLiteral("%1 → 数据库版本 %2").arg(table).arg(*version));
        return true;
    }

    void AddTable(const QString &name)
    {
        TTablesObject table;
        table.TableCode = FTableNames.Code(name, MostOfTableCode);
        table.TableClass = u'T' + FTableNames.Property(name);
        table.TableName = name;
        FDesign.Rows.Tables.push_back(table);
        const QList<TJetIndex> indexes = FFile.Indexes(name);
        const qsizetype line = FDesign.Lines.size();
        const QHash<QString, QString> codes = AddFields(table.TableCode, name, indexes);
        FDesign.Lines.insert(
            line, QStringLiteral("%1 → %2（%3），%4 个栏位")
                      .arg(name, table.TableCode, table.TableClass, QString::number(codes.size())));
        AddIndexes(table.TableCode, indexes, codes);
    }

    /// Gives the codes by the old names.
    QHash<QString, QString> AddFields(const QString &table, const QString &oldTable,
                                      const QList<TJetIndex> &indexes)
    {
        const QList<TJetColumn> columns = FFile.Columns(oldTable);
        const std::vector<bool> hasTimes = TimesOf(FFile, oldTable, columns);
        QStringList key;
        for (const TJetIndex &index : indexes)
            if (index.IsPrimary)
                key = index.Columns;
        TDesignNames names(NamesOf(columns));
        QHash<QString, QString> codes;
        for (qsizetype i = 0; i < columns.size(); ++i) {
            const TJetColumn &column = columns[i];
            if (IsAudit(column.Name))
                continue;
            const TFieldShape shape = ShapeOf(column, hasTimes[size_t(i)]);
            TFieldsObject field;
            field.TableCode = table;
            field.FieldNo = int(codes.size()) + 1;
            field.FieldCode = names.Code(column.Name);
            field.FieldName = column.Name;
            field.FieldProp = names.Property(column.Name);
            field.FieldType = GetDataTypeName(shape.Type);
            field.FieldSize = shape.Size;
            field.FieldPrecision = shape.Precision;
            field.IsKey = key.contains(column.Name);
            field.IsAuto = column.IsAuto;
            field.IsNotNull = field.IsKey || (!column.IsNullable && shape.Type != dtImage);
            if (shape.Type == dtBoolean)
                field.FieldDefault = QStringLiteral("N");
            FDesign.Rows.Fields.push_back(field);
            codes.insert(column.Name, field.FieldCode);
            if (field.FieldCode.compare(column.Name, Qt::CaseInsensitive) != 0)
                FDesign.Lines.append(QStringLiteral("  %1 → %2").arg(column.Name, field.FieldCode));
        }
        return codes;
    }

    void AddIndexes(const QString &table, const QList<TJetIndex> &indexes,
                    const QHash<QString, QString> &codes)
    {
        TDesignNames names({});
        QSet<QString> seen;
        for (const TJetIndex &index : indexes)
            if (index.IsPrimary)
                seen.insert(index.Columns.join(u';'));
        for (const TJetIndex &index : indexes) {
            // The vendor's engine makes one of its own beside one of the user's.
            const QString columns = index.Columns.join(u';');
            QStringList fields;
            for (const QString &column : index.Columns)
                if (codes.contains(column))
                    fields.append(codes[column]);
            if (seen.contains(columns) || fields.size() < index.Columns.size())
                continue;
            seen.insert(columns);
            TIndexsObject object;
            object.TableCode = table;
            object.IndexCode = (index.IsUnique ? QStringLiteral("UX_") : QStringLiteral("IX_")) + table +
                               u'_' + names.Code(index.Name, MostOfTableCode);
            object.IndexName = index.Name;
            object.IndexFields = fields.join(u';');
            object.IsUnique = index.IsUnique;
            FDesign.Rows.Indexs.push_back(object);
        }
    }

    TJetFile &FFile;
    TJetDesign FDesign;
    TDesignNames FTableNames;
};

} // namespace

TJetDesign MakeJetDesign(TJetFile &file) { return TDesignMaker(file).Make(); }

QStringList WriteJetDesign(TJetFile &file, const QString &fileName)
{
    if (QFileInfo(fileName) == QFileInfo(file.FileName()))
        throw Exception(QStringLiteral("设计文件不能是旧数据库文件本身：%1").arg(fileName));
    if (QFile::exists(fileName) && ShowDialog(QStringLiteral("设计文件已经存在，是否覆盖？"), 0) == IDNO)
        throw Exception(QStringLiteral("没有写入设计文件：%1").arg(fileName));
    const TJetDesign design = MakeJetDesign(file);
    if (design.Rows.Tables.empty())
        throw Exception(QStringLiteral("数据库文件“%1”中没有表").arg(file.FileName()));
    WriteDesignStore(fileName, design.Rows);
    return design.Lines;
}

} // namespace Korvane
