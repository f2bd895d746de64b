// SPDX-License-Identifier: MIT
#pragma once

#include "platform/controls/grid/DBGridTypes.h"
#include "platform/data/dataset/Field.h"

#include <QHash>

namespace Korvane {

class TDataSet;
class TwwColumn;

/// What stands at the feet of a grid's columns: texts, and figures over all rows that its dataset
/// shows. They belong to fields by name, blind to case, and stay when columns are built anew. A
/// figure is reckoned when it is painted after a change of the rows: linear in the rows. As long as rows
/// are to be fetched there is none.
class TGridTotals
{
public:
    TFooterKind Kind(const QString &fieldName) const { return FFooters.value(fieldName.toUpper()).Kind; }
    void SetKind(const QString &fieldName, TFooterKind kind) { FFooters[fieldName.toUpper()].Kind = kind; }
    QString Value(const QString &fieldName) const { return FFooters.value(fieldName.toUpper()).Value; }
    void SetValue(const QString &fieldName, const QString &text)
    {
        FFooters[fieldName.toUpper()].Value = text;
    }

    /// Figures are reckoned anew when they are asked for next.
    void Forget() { FTexts.clear(); }
    /// Formatted as the field's values are; empty where nothing counts.
    QString TextOf(const TwwColumn &column, TDataSet *dataSet);

private:
    struct TFooter
    {
        TFooterKind Kind = fkNone;
        QString Value;
    };

    QHash<QString, TFooter> FFooters;
    QHash<QString, QString> FTexts;
};

} // namespace Korvane
