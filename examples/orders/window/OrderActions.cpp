// SPDX-License-Identifier: MIT
#include "examples/orders/window/OrderActions.h"

#include "examples/orders/window/OrderIcons.h"

using namespace Korvane;
using namespace Qt::StringLiterals;

namespace {

constexpr QSize IconSize(22, 22);

} // namespace

TOrderActions::TOrderActions(QObject *form) : List(form)
{
    Images.SetSize(IconSize);
    FillOrderIcons(Images);
    List.SetImages(&Images);
    struct TRow
    {
        TAction &Action;
        const char16_t *Name, *Caption, *ShortCut, *Hint;
        int Icon;
    };
    const TRow rows[] = {
        {First, u"First", u"首笔", u"Alt+Home", u"到第一笔", oiFirst},
        {Prior, u"Prior", u"上笔", u"Alt+PgUp", u"到上一笔", oiPrior},
        {Next, u"Next", u"下笔", u"Alt+PgDown", u"到下一笔", oiNext},
        {Last, u"Last", u"末笔", u"Alt+End", u"到最后一笔", oiLast},
        {Insert, u"Insert", u"新增", u"Ctrl+N", u"新增一笔", oiInsert},
        {Update, u"Update", u"修改", u"Ctrl+E", u"修改当前这一笔", oiUpdate},
        {Head, u"Head", u"单头", u"F6", u"修改订单的日期、客户、备注", oiHead},
        {Delete, u"Delete", u"删除", u"Ctrl+D", u"删除当前这一笔", oiDelete},
        {Save, u"Save", u"保存", u"Ctrl+S", u"保存所作的修改", oiSave},
        {Cancel, u"Cancel", u"取消", u"Shift+Esc", u"放弃所作的修改", oiCancel},
        {Refresh, u"Refresh", u"刷新", u"F5", u"从数据库重新读取", oiRefresh},
        {Export, u"Export", u"导出", u"Ctrl+Shift+E", u"导出为电子表格文件", oiExport},
        {AddLine, u"AddLine", u"加行", u"Alt+Ins", u"增加一行明细", oiAddLine},
        {DeleteLine, u"DeleteLine", u"删行", u"Alt+Del", u"删除当前这行明细", oiDeleteLine},
        {Up, u"Up", u"上移", u"Ctrl+Shift+Up", u"当前明细上移一行", oiUp},
        {Down, u"Down", u"下移", u"Ctrl+Shift+Down", u"当前明细下移一行", oiDown},
        {Exit, u"Exit", u"退出", u"Alt+F4", u"关闭程序", -1},
    };
    for (const TRow &row : rows) {
        const QString caption = QString::fromUtf16(row.Caption);
        const QKeySequence keys = QKeySequence::fromString(QString::fromUtf16(row.ShortCut));
        row.Action.SetName(QString::fromUtf16(row.Name));
        row.Action.SetCaption(caption);
        row.Action.SetShortCut(keys);
        row.Action.SetHint(
            u"%1（%2）"_s.arg(QString::fromUtf16(row.Hint), keys.toString(QKeySequence::NativeText)));
        row.Action.SetImageIndex(row.Icon);
        row.Action.SetActionList(&List);
    }
    State.SetActionFirst(&First);
    State.SetActionPrior(&Prior);
    State.SetActionNext(&Next);
    State.SetActionLast(&Last);
    State.SetActionInsert(&Insert);
    State.SetActionUpdate(&Update);
    State.SetActionDelete(&Delete);
    State.SetActionSave(&Save);
    State.SetActionCancel(&Cancel);
    State.SetActionRefresh(&Refresh);
    State.SetActionExport(&Export);
    LineState.SetActionInsert(&AddLine);
    LineState.SetActionDelete(&DeleteLine);
    LineState.SetActionUp(&Up);
    LineState.SetActionDown(&Down);
}

void TOrderActions::Follow(TDataSource &rows, TDataSource *lines)
{
    State.SetDataSource(&rows);
    LineState.SetDataSource(lines);
    LineState.SetMasterDataSource(lines ? &rows : nullptr);
    State.DataChanged();
    LineState.DataChanged();
}
