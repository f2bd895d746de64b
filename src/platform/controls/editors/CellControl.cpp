// SPDX-License-Identifier: MIT
#include "platform/controls/editors/CellControl.h"

using namespace Qt::StringLiterals;

namespace Korvane {

namespace {

struct TKindName
{
    QLatin1StringView Name;
    TCellControlKind Kind;
};
constexpr TKindName KindNames[] = {{"CheckBox"_L1, ckCheckBox},
                                   {"ComboBox"_L1, ckComboBox},
                                   {"DateTimePicker"_L1, ckDate},
                                   {"Memo"_L1, ckMemo},
                                   {"CustomEdit"_L1, ckCustomEdit}};

TCellControlKind KindOf(const QString &name)
{
    for (const TKindName &kind : KindNames)
        if (name.compare(kind.Name, Qt::CaseInsensitive) == 0)
            return kind.Kind;
    return ckText;
}

void ReadItems(TCellControl &control, const QStringList &items)
{
    for (const QString &item : items) {
        const qsizetype sign = item.indexOf(u'=');
        control.Shown += item.left(sign); // all of it without a sign
        control.Stored += sign < 0 ? item : item.mid(sign + 1);
    }
}

} // namespace

TCellControl TCellControl::FromText(const QString &line)
{
    const QStringList pieces = line.split(u';');
    TCellControl control;
    control.FieldName = pieces[0];
    control.Kind = KindOf(pieces.value(1));
    if (control.Kind == ckCheckBox && pieces.size() > 3) {
        control.Checked = pieces[2];
        control.Unchecked = pieces[3];
    } else if (control.Kind == ckComboBox) {
        ReadItems(control, pieces.mid(2));
    } else if (control.Kind == ckCustomEdit) {
        control.ControlName = pieces.value(2);
        control.PaintsAll = pieces.value(3) == u"T"_s;
    }
    return control;
}

} // namespace Korvane
