// SPDX-License-Identifier: MIT
#include "platform/controls/grid/GridColumns.h"

#include "platform/core/Exceptions.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace Korvane {

void TGridColumns::Build(TwwDBGrid &grid, const QStringList &selected, const TFieldFinder &find)
{
    Clear();
    for (const QString &text : selected) {
        const TSelectedLine line = TSelectedLine::FromText(text);
        if (TField *field = find(line.FieldName))
            FAll.push_back(std::make_unique<TwwColumn>(grid, line, field));
    }
    ApplyLayout();
}

void TGridColumns::Clear()
{
    FShown.clear();
    FAll.clear();
}

TwwColumn *TGridColumns::Find(const QString &fieldName) const
{
    for (const auto &column : FAll)
        if (column->FieldName().compare(fieldName, Qt::CaseInsensitive) == 0)
            return column.get();
    return nullptr;
}

int TGridColumns::IndexOf(const TwwColumn *column) const
{
    const auto found = std::find(FShown.begin(), FShown.end(), column);
    return found == FShown.end() ? -1 : int(found - FShown.begin());
}

void TGridColumns::UpdateShown()
{
    FShown.clear();
    for (const auto &column : FAll)
        if (column->Visible())
            FShown.push_back(column.get());
}

void TGridColumns::Move(int from, int to)
{
    const auto placeOf = [&](int shown) {
        return shown < Count()
                   ? std::find_if(FAll.begin(), FAll.end(),
                                  [&](const auto &column) { return column.get() == FShown[size_t(shown)]; })
                   : FAll.end();
    };
    const auto source = placeOf(from), target = placeOf(to);
    if (source < target)
        std::rotate(source, source + 1, target);
    else
        std::rotate(target, source, source + 1);
    UpdateShown();
}

QList<TGridColumns::TPlace> TGridColumns::Places() const
{
    QList<TPlace> places;
    for (const auto &column : FAll)
        places.append({column->FieldName(), column->DisplayWidth(), column->Visible()});
    return places;
}

/// Columns that the kept layout does not know stand where the list has them.
void TGridColumns::ApplyLayout()
{
    std::vector<std::unique_ptr<TwwColumn>> kept, ordered;
    for (const TPlace &place : FKept)
        for (auto &column : FAll)
            if (column && column->FieldName().compare(place.FieldName, Qt::CaseInsensitive) == 0) {
                column->ApplyPlace(place.Width, place.Visible);
                kept.push_back(std::exchange(column, nullptr));
                break;
            }
    auto next = kept.begin();
    for (auto &column : FAll)
        ordered.push_back(std::move(column ? column : *next++));
    FAll = std::move(ordered);
    UpdateShown();
}

QString TGridColumns::SaveLayout() const
{
    QJsonArray columns;
    for (const TPlace &place : Places())
        columns.append(QJsonObject{
            {u"field"_s, place.FieldName}, {u"width"_s, place.Width}, {u"visible"_s, place.Visible}});
    return QString::fromUtf8(QJsonDocument(columns).toJson(QJsonDocument::Compact));
}

void TGridColumns::RestoreLayout(const QString &text)
{
    const QJsonDocument document = QJsonDocument::fromJson(text.toUtf8());
    if (!document.isArray())
        throw EConvertError(u"表格布局的内容无法识别"_s);
    QList<TPlace> places;
    for (const QJsonValue &value : document.array()) {
        const QJsonObject place = value.toObject();
        const QString name = place[u"field"_s].toString();
        const double width = place[u"width"_s].toDouble();
        if (name.isEmpty() || width <= 0)
            throw EConvertError(u"表格布局的内容无法识别"_s);
        places.append({name, width, place[u"visible"_s].toBool(true)});
    }
    FKept = places;
    ApplyLayout();
}

} // namespace Korvane
