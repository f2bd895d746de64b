// SPDX-License-Identifier: MIT
// Which rows a client dataset shows, in which order, and how it finds them.
#include "platform/core/Text.h"
#include "platform/core/Variants.h"
#include "platform/data/CellValues.h"
#include "platform/data/dataset/ClientDataSet.h"

namespace Korvane {

int TCustomClientDataSet::ColumnOf(QStringView name) const
{
    const TField *field = FieldCount() > 0 ? FindField(name) : nullptr;
    if (field && field->Calculated())
        Fail(QStringLiteral("计算字段“%1”不能用于排序或查找").arg(name));
    const int column = FStore->Packet().IndexOf(name);
    if (column < 0)
        Fail(QStringLiteral("字段“%1”没有找到").arg(name));
    return column;
}

std::vector<int> TCustomClientDataSet::ColumnsOf(const QString &names) const
{
    std::vector<int> columns;
    for (const QString &name : SplitFieldNames(names))
        columns.push_back(ColumnOf(name));
    return columns;
}

// ---- order ----------------------------------------------------------------------------

std::vector<TOrderPart> TCustomClientDataSet::OrderOf(const TIndexDef &index) const
{
    const TTextCollation *collation =
        FSortLocale.isEmpty() ? nullptr : TTextCollation::ForLocale(FSortLocale);
    const QStringList down = SplitFieldNames(index.DescFields);
    const QStringList blind = SplitFieldNames(index.CaseInsensitiveFields);
    const auto applies = [](const QStringList &names, const QString &name, bool option) {
        return names.isEmpty() ? option : names.contains(name, Qt::CaseInsensitive);
    };
    std::vector<TOrderPart> order;
    for (const QString &name : SplitFieldNames(index.Fields)) {
        const int column = ColumnOf(name);
        if (FStore->Kinds()[size_t(column)] == TColumnKind::Blob)
            Fail(QStringLiteral("字段“%1”不能用于排序").arg(name));
        order.push_back(
            {column,
             applies(blind, name, index.Options & ixCaseInsensitive) ? TCaseMode::Blind : TCaseMode::Exact,
             applies(down, name, index.Options & ixDescending) ? TSortDirection::Descending
                                                               : TSortDirection::Ascending,
             collation});
    }
    return order;
}

std::vector<TOrderPart> TCustomClientDataSet::OrderFor(const QString &fieldNames,
                                                       const QString &indexName) const
{
    if (!fieldNames.isEmpty())
        return OrderOf({{}, fieldNames, {}, {}, {}});
    if (indexName.isEmpty())
        return {};
    const TIndexDef *index = FindIndex(indexName);
    if (!index)
        Fail(QStringLiteral("索引“%1”没有找到").arg(indexName));
    return OrderOf(*index);
}

void TCustomClientDataSet::ChangeOrder(const QString &fieldNames, const QString &indexName)
{
    if (Active()) {
        CheckBrowseMode();
        TRecordView::TRules rules = FView->Rules();
        rules.Order = OrderFor(fieldNames, indexName);
        SelectBy(std::move(rules));
    }
    FIndexFieldNames = fieldNames;
    FIndexName = indexName;
    if (Active())
        Notify(deDataSetChange);
}

void TCustomClientDataSet::SetIndexFieldNames(const QString &names)
{
    if (names != FIndexFieldNames || !FIndexName.isEmpty())
        ChangeOrder(names, {});
}

void TCustomClientDataSet::SetIndexName(const QString &name) { ChangeOrder({}, name); }

const TIndexDef *TCustomClientDataSet::FindIndex(const QString &name) const
{
    for (const TIndexDef &index : FIndexDefs)
        if (SameText(index.Name, name))
            return &index;
    return nullptr;
}

void TCustomClientDataSet::AddIndex(const QString &name, const QString &fields, TIndexOptions options,
                                    const QString &descFields, const QString &caseInsFields, int)
{
    if (name.isEmpty() || FindIndex(name))
        Fail(QStringLiteral("索引“%1”已经存在或名称为空").arg(name));
    const TIndexDef index{name, fields, options, descFields, caseInsFields};
    if (Active())
        CheckIndex(index);
    FIndexDefs.append(index);
}

void TCustomClientDataSet::DeleteIndex(const QString &name)
{
    const TIndexDef *index = FindIndex(name);
    if (!index)
        Fail(QStringLiteral("索引“%1”没有找到").arg(name));
    if (SameText(name, FIndexName))
        ChangeOrder({}, {});
    FIndexDefs.removeAt(index - FIndexDefs.constData());
}

void TCustomClientDataSet::SetSortLocale(const QString &locale)
{
    if (locale == FSortLocale)
        return;
    if (!locale.isEmpty())
        TTextCollation::ForLocale(locale); // an unknown one raises before anything changes
    FSortLocale = locale;
    if (Active())
        ChangeOrder(FIndexFieldNames, FIndexName);
}

namespace {

bool IsUnique(const TIndexDef &index) { return (index.Options & (ixUnique | ixPrimary)) != 0; }

} // namespace

/// The fields exist, and a unique index holds on the rows that there are.
void TCustomClientDataSet::CheckIndex(const TIndexDef &index) const
{
    const std::vector<TOrderPart> order = OrderOf(index);
    if (order.empty())
        Fail(QStringLiteral("索引“%1”没有字段").arg(index.Name));
    if (!IsUnique(index))
        return;
    FetchAll();
    TRecordView view(*FStore);
    view.Select({order, {}, {}, 0});
    for (qsizetype i = 1; i < view.Count(); ++i)
        if (CompareRows(FStore->Packet(), FStore->Overlay(), order, view.RecordAt(i - 1), view.RecordAt(i)) ==
            0)
            Fail(QStringLiteral("索引“%1”的字段“%2”有重复的值").arg(index.Name, index.Fields));
}

/// Refuses a row whose key another one has in a unique index.
void TCustomClientDataSet::CheckUnique(const TRowValues &row, quint32 except) const
{
    for (const TIndexDef &index : FIndexDefs) {
        if (!IsUnique(index))
            continue;
        const std::vector<TOrderPart> order = OrderOf(index);
        for (quint32 record = 0; record < FStore->RecordLimit(); ++record)
            if (record != except && FStore->IsPresent(record) &&
                CompareRowToKey(FStore->RowOf(record), order, row, order.size(), FStore->Kinds()) == 0)
                Fail(QStringLiteral("索引“%1”的字段“%2”的值重复").arg(index.Name, index.Fields));
    }
}

// ---- filter ---------------------------------------------------------------------------

TRecordView::TRules TCustomClientDataSet::RulesFor(std::vector<TOrderPart> order, const QString &filter,
                                                   bool filtered, TFilterOptions options)
{
    TRecordView::TRules rules;
    rules.Order = std::move(order);
    rules.Statuses = int(FStatusFilter);
    if (!filtered)
        return rules;
    rules.Filter = TFilterExpression(filter, options).Bind(FStore->Fields());
    if (OnFilterRecord())
        rules.Accepts = [this](quint32 record) {
            bool accept = true;
            WithRecord(dsFilter, record, [&] { OnFilterRecord()(this, accept); });
            return accept;
        };
    return rules;
}

void TCustomClientDataSet::SelectBy(TRecordView::TRules rules)
{
    if (!rules.SelectAll())
        FetchAll();
    const quint32 current = CurrentRecord();
    FView->Select(std::move(rules));
    FSearches.Clear();
    ++FVersion;
    Resync(current);
}

void TCustomClientDataSet::InternalFilter(const QString &text, bool filtered, TFilterOptions options)
{
    SelectBy(RulesFor(FView->Rules().Order, text, filtered, options));
}

void TCustomClientDataSet::InternalRefresh()
{
    SelectBy(RulesFor(OrderFor(FIndexFieldNames, FIndexName), Filter(), Filtered(), FilterOptions()));
}

// ---- search ---------------------------------------------------------------------------

qsizetype TCustomClientDataSet::Find(const QString &names, const QVariant &values, TLocateOptions options)
{
    FetchAll();
    TRowSearches::TSearch &search = FSearches.Of(ColumnsOf(names), options, FStore->Fields());
    TRowSearches::SetKey(search, names, values);
    return TRowSearches::Find(search, RecordCount(),
                              [this](qsizetype place) { return FStore->RowOf(FView->RecordAt(place)); });
}

void TCustomClientDataSet::MoveTo(qsizetype place)
{
    SetPosition(place);
    Notify(deDataSetChange);
}

bool TCustomClientDataSet::Locate(const QString &names, const QVariant &values, TLocateOptions options)
{
    CheckBrowseMode();
    DoBeforeScroll();
    const qsizetype place = Find(names, values, options);
    if (place < 0)
        return false;
    MoveTo(place);
    DoAfterScroll();
    return true;
}

QVariant TCustomClientDataSet::Lookup(const QString &names, const QVariant &values,
                                      const QString &resultNames)
{
    CheckActive();
    const QList<TField *> fields = GetFieldList(resultNames);
    const qsizetype place = Find(names, values, {});
    if (place < 0)
        return VarNull();
    QVariantList found;
    const TPeek peek(*this, place);
    for (const TField *field : fields)
        found.append(field->Value());
    return found.size() == 1 ? found.first() : VarArrayOf(found);
}

/// Puts values into a key of the order's first fields; gives how many.
size_t TCustomClientDataSet::SetKey(TRowValues &key, const QVariantList &values) const
{
    const std::vector<TOrderPart> &order = FView->Rules().Order;
    if (order.empty())
        Fail(QStringLiteral("没有设置索引，不能按键值查找"));
    if (values.isEmpty() || size_t(values.size()) > order.size())
        Fail(QStringLiteral("索引有 %1 个字段，与给出的 %2 个值不符").arg(order.size()).arg(values.size()));
    for (qsizetype i = 0; i < values.size(); ++i) {
        const int column = order[size_t(i)].Column;
        const TPacketField &field = FStore->Fields()[column];
        TCellWriter(key, column, field.Type, field.Name).SetValue(values[i]);
    }
    return size_t(values.size());
}

bool TCustomClientDataSet::FindKey(const QVariantList &values)
{
    CheckBrowseMode();
    TRowValues key(int(FStore->Fields().size()));
    const size_t parts = SetKey(key, values);
    DoBeforeScroll();
    const qsizetype place = FView->Bound(key, parts, false);
    if (place == RecordCount() || CompareRowToKey(FStore->RowOf(RecordAt(place)), FView->Rules().Order, key,
                                                  parts, FStore->Kinds()) != 0)
        return false;
    MoveTo(place);
    DoAfterScroll();
    return true;
}

void TCustomClientDataSet::FindNearest(const QVariantList &values)
{
    CheckBrowseMode();
    TRowValues key(int(FStore->Fields().size()));
    const size_t parts = SetKey(key, values);
    DoBeforeScroll();
    if (RecordCount() > 0)
        MoveTo(qMin(FView->Bound(key, parts, false), RecordCount() - 1));
    DoAfterScroll();
}

} // namespace Korvane
