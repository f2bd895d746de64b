// SPDX-License-Identifier: MIT
#include "import/ImportPlan.h"

#include "design/AuditColumns.h"
#include "design/DBDFile.h"

#include <QFileInfo>

namespace Korvane {

namespace {

bool IsSame(const QString &left, const QString &right)
{
    return !left.isEmpty() && left.compare(right, Qt::CaseInsensitive) == 0;
}

/// What a missing value of a field is filled with. A default of two quotes is the way to write
/// the empty text into a table script.
std::optional<QString> DefaultOf(const TFieldsObject &field)
{
    const QString text = field.FieldDefault == QLatin1String("''") ? QString() : field.FieldDefault;
    switch (GetDataType(field.FieldType)) {
    case dtInt:
    case dtSmallint:
    case dtDecimal:
    case dtFloat:
        return text.isEmpty() ? QStringLiteral("0") : text;
    case dtImage:
        return std::nullopt;
    default:
        return text.isNull() ? QStringLiteral("") : text;
    }
}

TImportColumn AuditColumnOf(const TAuditColumn &audit)
{
    TImportColumn column;
    column.Code = audit.Name;
    column.Label = audit.Label;
    column.IsAudit = true;
    const bool isTime = audit.Repair.isEmpty();
    column.Type = isTime ? dtDateTime : dtVarchar;
    column.Size = isTime ? 14 : 10;
    column.Origin = TImportOrigin::Audit;
    return column;
}

TImportColumn FieldColumnOf(const TFieldsObject &field)
{
    TImportColumn column;
    column.Code = field.FieldCode;
    column.Label = field.FieldName;
    column.Type = GetDataType(field.FieldType);
    column.Size = field.FieldSize;
    column.Precision = field.FieldPrecision;
    column.IsKey = field.IsKey;
    column.IsAuto = field.IsAuto;
    const bool mustHaveValue = (field.IsNotNull || field.IsKey) && !field.IsAuto;
    if (mustHaveValue)
        column.Default = DefaultOf(field);
    column.Origin = column.Default ? TImportOrigin::Default : TImportOrigin::Empty;
    return column;
}

/// Gives the old columns to the fields, each at most once.
class TColumnMatcher
{
public:
    explicit TColumnMatcher(const QList<TJetColumn> &old) : FOld(old), FTaken(old.size(), false) {}

    void Match(TImportColumn &column, const QString &name, TImportMatch match)
    {
        if (column.Old >= 0)
            return;
        for (qsizetype i = 0; i < FOld.size(); ++i) {
            if (FTaken[i] || !IsSame(name, FOld[i].Name))
                continue;
            FTaken[i] = true;
            column.Old = int(i);
            column.OldColumn = FOld[i];
            column.Match = match;
            column.Origin = TImportOrigin::OldColumn;
            return;
        }
    }

    QList<TJetColumn> Left() const
    {
        QList<TJetColumn> left;
        for (qsizetype i = 0; i < FOld.size(); ++i)
            if (!FTaken[i])
                left.append(FOld[i]);
        return left;
    }

private:
    const QList<TJetColumn> &FOld;
    QList<bool> FTaken;
};

void MatchColumns(TImportTable &table, const TObjectList<TFieldsObject> &fields,
                  const QList<TJetColumn> &oldColumns)
{
    TColumnMatcher matcher(oldColumns);
    for (const auto &field : fields)
        table.Columns.append(FieldColumnOf(*field));
    // A better name of a later field goes before a worse one of an earlier field.
    for (qsizetype i = 0; i < fields.size(); ++i)
        matcher.Match(table.Columns[i], fields[i]->FieldCode, TImportMatch::Code);
    QList<TImportColumn> audit;
    for (const TAuditColumn &column : AuditColumns) {
        audit.append(AuditColumnOf(column));
        matcher.Match(audit.last(), column.Name, TImportMatch::Code);
    }
    for (qsizetype i = 0; i < fields.size(); ++i)
        matcher.Match(table.Columns[i], fields[i]->FieldProp, TImportMatch::Property);
    for (qsizetype i = 0; i < fields.size(); ++i)
        matcher.Match(table.Columns[i], fields[i]->FieldName, TImportMatch::Label);
    table.Columns = audit + table.Columns;
    table.Unplaced = matcher.Left();
}

void FindObstacles(TImportPlan &plan)
{
    for (const TImportTable &table : std::as_const(plan.Tables))
        for (const TImportColumn &column : table.Columns)
            if (column.IsKey && column.Origin == TImportOrigin::Default && table.RowCount > 1)
                plan.Obstacles.append(QStringLiteral("表 %1 的主键栏位 %2（%3）在旧表中没有对应的列")
                                          .arg(table.Code, column.Code, column.Label));
    if (plan.Tables.isEmpty())
        plan.Obstacles.append(QStringLiteral("旧数据库中没有一个表在设计中有位置"));
}

QString MatchText(const TImportColumn &column)
{
    if (column.Match == TImportMatch::Property)
        return QStringLiteral("（按属性名）");
    return column.Match == TImportMatch::Label ? QStringLiteral("（按名称）") : QString();
}

QString SizedType(const QString &name, int size) { return name + QStringLiteral("(%1)").arg(size); }

QStringList TableLines(const TImportTable &table)
{
    QStringList lines = {
        QStringLiteral("%1 → %2，约 %3 行")
            .arg(table.OldName, WithLabel(table.Code, table.Label), QString::number(table.RowCount))};
    QStringList filled;
    for (const TImportColumn &column : table.Columns) {
        const QString type = column.Code + u' ' + FieldTypeText(column);
        const QString field = IsSame(column.Code, column.Label) ? type : WithLabel(type, column.Label);
        switch (column.Origin) {
        case TImportOrigin::OldColumn:
            lines.append(
                QStringLiteral("  %1 %2 → %3%4")
                    .arg(column.OldColumn.Name, JetTypeText(column.OldColumn), field, MatchText(column)));
            break;
        case TImportOrigin::Audit:
            filled.append(column.Code);
            break;
        case TImportOrigin::Default:
            lines.append(QStringLiteral("  （没有旧列）→ %1，填入默认值“%2”").arg(field, *column.Default));
            break;
        case TImportOrigin::Empty:
            lines.append(QStringLiteral("  （没有旧列）→ %1，留空").arg(field));
            break;
        }
    }
    if (!filled.isEmpty())
        lines.append(QStringLiteral("  导入时填写：") + filled.join(QStringLiteral("、")));
    for (const TJetColumn &column : table.Unplaced)
        lines.append(
            QStringLiteral("  %1 %2 → 设计中没有对应的栏位，不导入").arg(column.Name, JetTypeText(column)));
    return lines;
}

} // namespace

QList<TImportColumn> TImportTable::Filled() const
{
    QList<TImportColumn> filled;
    std::copy_if(Columns.begin(), Columns.end(), std::back_inserter(filled),
                 [](const TImportColumn &column) { return column.Origin != TImportOrigin::Empty; });
    return filled;
}

QString WithLabel(const QString &name, const QString &label)
{
    return label.isEmpty() || IsSame(name, label) ? name : name + u' ' + label;
}

QString JetTypeText(const TJetColumn &column)
{
    switch (column.Type) {
    case TJetType::Boolean:
        return QStringLiteral("是否");
    case TJetType::Byte:
        return QStringLiteral("字节");
    case TJetType::Integer:
        return QStringLiteral("整型");
    case TJetType::LongInteger:
        return column.IsAuto ? QStringLiteral("自动编号") : QStringLiteral("长整型");
    case TJetType::Money:
        return QStringLiteral("货币");
    case TJetType::Single:
        return QStringLiteral("单精度");
    case TJetType::Double:
        return QStringLiteral("双精度");
    case TJetType::DateTime:
        return QStringLiteral("日期时间");
    case TJetType::Binary:
        return SizedType(QStringLiteral("二进制"), column.Size);
    case TJetType::Text:
        return SizedType(column.IsFixed ? QStringLiteral("定长文本") : QStringLiteral("文本"), column.Size);
    case TJetType::Ole:
        return QStringLiteral("OLE 对象");
    case TJetType::Memo:
        return QStringLiteral("备注");
    case TJetType::Guid:
        return QStringLiteral("GUID");
    case TJetType::Decimal:
        return QStringLiteral("小数(%1,%2)").arg(column.Precision).arg(column.Scale);
    }
    return QStringLiteral("类型 %1").arg(int(column.Type));
}

QString FieldTypeText(const TImportColumn &column)
{
    const QString name = GetDataTypeName(column.Type);
    if (column.Type == dtChar || column.Type == dtVarchar)
        return SizedType(name, column.Size);
    if (column.Type == dtDecimal)
        return QStringLiteral("decimal(%1,%2)").arg(column.Size).arg(column.Precision);
    return name;
}

std::optional<int> OldDatabaseVersion(TJetFile &file, const QString &table)
{
    const QList<TJetColumn> columns = file.Columns(table);
    const auto found = std::find_if(columns.begin(), columns.end(), [](const TJetColumn &column) {
        return IsSame(column.Name, QStringLiteral("VerNo"));
    });
    if (found == columns.end())
        return std::nullopt;
    const size_t number = size_t(found - columns.begin());
    std::optional<int> version;
    file.ReadTable(table, [&](std::span<const TJetCell> row) {
        if (row[number].Kind == TJetCell::Integer)
            version = qMax(version.value_or(0), int(row[number].Int));
    });
    return version;
}

TImportPlan MakeImportPlan(TDBDFile &design, TJetFile &file)
{
    TImportPlan plan;
    plan.OldFile = file.FileName();
    plan.DesignFile = design.FileName();
    plan.DesignVersion = design.GetMaxChangeNo();
    QStringList oldTables;
    for (const TJetTableInfo &table : file.Tables()) {
        if (table.Kind == TJetTableKind::Table)
            oldTables.append(table.Name);
        else if (table.Kind == TJetTableKind::View)
            plan.Queries.append(table.Name);
    }

    const TObjectList<TTablesObject> tables = design.GetTables();
    QHash<QString, QString> oldNames; // by the design's codes
    const auto match = [&](QString TTablesObject::*name) {
        for (const auto &table : tables) {
            const auto found = std::find_if(oldTables.begin(), oldTables.end(),
                                            [&](const QString &old) { return IsSame((*table).*name, old); });
            if (found == oldTables.end() || oldNames.contains(table->TableCode))
                continue;
            oldNames.insert(table->TableCode, *found);
            oldTables.erase(found);
        }
    };
    match(&TTablesObject::TableCode);
    match(&TTablesObject::TableName);

    for (const auto &table : tables) {
        if (!oldNames.contains(table->TableCode)) {
            plan.Empty.append({table->TableCode, table->TableName});
            continue;
        }
        TImportTable next;
        next.Code = table->TableCode;
        next.Label = table->TableName;
        next.OldName = oldNames[table->TableCode];
        next.RowCount = file.RowCount(next.OldName);
        MatchColumns(next, design.GetTableFields(table->TableCode), file.Columns(next.OldName));
        plan.Tables.append(next);
    }
    for (const QString &table : std::as_const(oldTables)) {
        if (IsSame(table, QStringLiteral("Version")) && (plan.OldVersion = OldDatabaseVersion(file, table)))
            continue;
        plan.Unplaced.append(table);
    }
    FindObstacles(plan);
    return plan;
}

QStringList TImportPlan::Lines() const
{
    QStringList lines = {QStringLiteral("从 %1 导入到 %2 的设计（版本 %3）")
                             .arg(QFileInfo(OldFile).fileName(), QFileInfo(DesignFile).fileName(),
                                  QString::number(DesignVersion))};
    if (OldVersion)
        lines.append(QStringLiteral("旧数据库的版本为 %1").arg(*OldVersion));
    for (const TImportTable &table : Tables)
        lines += TableLines(table);
    if (!Unplaced.isEmpty())
        lines.append(QStringLiteral("设计中没有位置的旧表，不导入：") + Unplaced.join(QStringLiteral("、")));
    if (!Queries.isEmpty())
        lines.append(QStringLiteral("旧数据库中的查询，不导入：") + Queries.join(QStringLiteral("、")));
    QStringList empty;
    for (const TNamedTable &table : Empty)
        empty.append(WithLabel(table.Name, table.Label));
    if (!empty.isEmpty())
        lines.append(QStringLiteral("没有旧表、将保持空白的表：") + empty.join(QStringLiteral("、")));
    for (const QString &obstacle : Obstacles)
        lines.append(QStringLiteral("不能导入：") + obstacle);
    return lines;
}

} // namespace Korvane
