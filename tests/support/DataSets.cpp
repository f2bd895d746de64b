// SPDX-License-Identifier: MIT
#include "support/DataSets.h"

#include <map>

namespace Korvane {

namespace {

constexpr struct
{
    const char *Name;
    TEvent<TDataSet *> TDataSet::*Event;
} Events[] = {
    {"BeforeOpen", &TDataSet::BeforeOpen},     {"AfterOpen", &TDataSet::AfterOpen},
    {"BeforeClose", &TDataSet::BeforeClose},   {"AfterClose", &TDataSet::AfterClose},
    {"BeforeInsert", &TDataSet::BeforeInsert}, {"AfterInsert", &TDataSet::AfterInsert},
    {"BeforeEdit", &TDataSet::BeforeEdit},     {"AfterEdit", &TDataSet::AfterEdit},
    {"BeforePost", &TDataSet::BeforePost},     {"AfterPost", &TDataSet::AfterPost},
    {"BeforeCancel", &TDataSet::BeforeCancel}, {"AfterCancel", &TDataSet::AfterCancel},
    {"BeforeDelete", &TDataSet::BeforeDelete}, {"AfterDelete", &TDataSet::AfterDelete},
    {"BeforeScroll", &TDataSet::BeforeScroll}, {"AfterScroll", &TDataSet::AfterScroll},
    {"OnNewRecord", &TDataSet::OnNewRecord},
};

using TFailureEvent = TEvent<TDataSet *, const EDatabaseError &, TDataAction &>;

constexpr struct
{
    const char *Name;
    TFailureEvent TDataSet::*Event;
} FailureEvents[] = {
    {"OnEditError", &TDataSet::OnEditError},
    {"OnPostError", &TDataSet::OnPostError},
    {"OnDeleteError", &TDataSet::OnDeleteError},
};

QString NameOf(TDataSetState state)
{
    static const char *const names[] = {"inactive", "browse", "edit", "insert", "calc", "filter"};
    return QString::fromLatin1(names[state]);
}

QString CellText(const TField &field)
{
    if (field.IsNull())
        return QStringLiteral("~");
    if (ColumnKindOf(field.DataType()) == TColumnKind::Blob)
        return QStringLiteral("0x") + QString::fromLatin1(field.AsBytes().toHex());
    return field.AsString();
}

using TStep = std::function<void(TCustomClientDataSet &, const QString &)>;

const std::map<QString, TStep> &Steps()
{
    using TSet = TCustomClientDataSet;
    static const std::map<QString, TStep> steps = {
        {"open", [](TSet &set, const QString &) { set.Open(); }},
        {"close", [](TSet &set, const QString &) { set.Close(); }},
        {"first", [](TSet &set, const QString &) { set.First(); }},
        {"last", [](TSet &set, const QString &) { set.Last(); }},
        {"next", [](TSet &set, const QString &) { set.Next(); }},
        {"prior", [](TSet &set, const QString &) { set.Prior(); }},
        {"move", [](TSet &set, const QString &by) { set.MoveBy(by.toLongLong()); }},
        {"recno", [](TSet &set, const QString &to) { set.SetRecNo(to.toLongLong()); }},
        {"edit", [](TSet &set, const QString &) { set.Edit(); }},
        {"insert", [](TSet &set, const QString &) { set.Insert(); }},
        {"append", [](TSet &set, const QString &) { set.Append(); }},
        {"post", [](TSet &set, const QString &) { set.Post(); }},
        {"cancel", [](TSet &set, const QString &) { set.Cancel(); }},
        {"delete", [](TSet &set, const QString &) { set.Delete(); }},
        {"refresh", [](TSet &set, const QString &) { set.Refresh(); }},
        {"revert", [](TSet &set, const QString &) { set.RevertRecord(); }},
        {"undo", [](TSet &set, const QString &) { set.UndoLastChange(false); }},
        {"undo-follow", [](TSet &set, const QString &) { set.UndoLastChange(true); }},
        {"cancelupdates", [](TSet &set, const QString &) { set.CancelUpdates(); }},
        {"merge", [](TSet &set, const QString &) { set.MergeChangeLog(); }},
        {"log", [](TSet &set, const QString &on) { set.SetLogChanges(on == QLatin1String("on")); }},
        {"index",
         [](TSet &set, const QString &names) { set.SetIndexFieldNames(QString(names).replace(u',', u';')); }},
        {"filter",
         [](TSet &set, const QString &text) {
             set.SetFilter(text);
             set.SetFiltered(!text.isEmpty());
         }},
    };
    return steps;
}

void DoStep(TCustomClientDataSet &set, const QString &step)
{
    const auto found = Steps().find(step.section(u' ', 0, 0));
    if (found != Steps().end())
        return found->second(set, step.section(u' ', 1));
    const qsizetype sign = step.indexOf(u'=');
    if (sign < 0)
        throw Exception(QStringLiteral("no step of a dataset: %1").arg(step));
    TField *const field = set.FieldByName(QStringView(step).left(sign));
    const QString value = step.mid(sign + 1);
    if (value == QLatin1String("~"))
        field->Clear();
    else
        field->SetAsString(value);
}

} // namespace

std::unique_ptr<TClientDataSet> DataSetOf(const QList<TPacketField> &fields, const QList<QVariantList> &rows)
{
    auto set = std::make_unique<TClientDataSet>();
    set->SetData(PacketOf(fields, rows));
    return set;
}

QString ViewOf(TDataSet &set)
{
    QString text;
    for (qsizetype i = 0; i < set.RecordCount(); ++i) {
        const QString mark = set.RecNo() == i + 1 ? QStringLiteral(">") : QString();
        const TDataSet::TPeek peek(set, i);
        text += mark + RowOf(set) + u'\n';
    }
    return text;
}

QString ViewOf(TDataSet &set, const QString &field)
{
    const TField *const shown = set.FieldByName(field);
    QStringList cells;
    for (qsizetype i = 0; i < set.RecordCount(); ++i) {
        const QString mark = set.RecNo() == i + 1 ? QStringLiteral(">") : QString();
        const TDataSet::TPeek peek(set, i);
        cells += mark + CellText(*shown);
    }
    return cells.join(u' ');
}

QString RowOf(const TDataSet &set)
{
    QStringList cells;
    for (const TField *field : set.Fields())
        cells += CellText(*field);
    return cells.join(u'|');
}

QString PlaceOf(const TDataSet &set)
{
    QString text = NameOf(set.State());
    if (!set.Active())
        return text;
    text += QStringLiteral(" %1/%2").arg(set.RecNo()).arg(set.RecordCount());
    if (set.State() == dsBrowse && set.Bof())
        text += QStringLiteral(" bof");
    if (set.State() == dsBrowse && set.Eof())
        text += QStringLiteral(" eof");
    if (set.Modified())
        text += QStringLiteral(" modified");
    return text;
}

QString DeltaText(const TDataPacket &delta)
{
    static const char *const names[] = {"unmodified ", "modified ", "inserted ", "deleted "};
    QString text;
    for (qsizetype row = 0; row < delta.RowCount(); ++row)
        text += QString::fromLatin1(names[delta.UpdateStatus(row)]) + TextOfRows(delta, {quint32(row)});
    return text;
}

QString DeltaOf(TCustomClientDataSet &set) { return DeltaText(set.Delta()); }

QString StatusesOf(TCustomClientDataSet &set)
{
    TClientDataSet clone;
    clone.CloneCursor(&set, false);
    QString text;
    for (clone.First(); !clone.Eof(); clone.Next())
        text += QStringLiteral("umid")[clone.UpdateStatus()];
    return text;
}

QString KindRaised(const std::function<void()> &call)
{
    try {
        call();
    } catch (const EAbort &) {
        return QStringLiteral("EAbort");
    } catch (const Exception &error) {
        return RaisedBy([&] { throw; }).section(u':', 0, 0);
    }
    return QStringLiteral("nothing");
}

void Do(TCustomClientDataSet &set, const QString &steps)
{
    for (const QString &step : steps.split(u';', Qt::SkipEmptyParts))
        DoStep(set, step.trimmed());
}

TDataSetRecorder::TDataSetRecorder(TDataSet &set) : FSet(set)
{
    for (const auto &[name, event] : Events)
        set.*event = [this, noted = QString::fromLatin1(name)](TDataSet *) { Note(noted); };
    for (const auto &[name, event] : FailureEvents)
        set.*event = [this, noted = QString::fromLatin1(name)](TDataSet *, const EDatabaseError &,
                                                               TDataAction &) { Note(noted); };
    FSource.SetDataSet(&set);
    FSource.OnStateChange = [this](TDataSource *source) { FEvents += u'=' + NameOf(source->State()); };
}

TDataSetRecorder::~TDataSetRecorder()
{
    FSource.OnStateChange = nullptr;
    for (const auto &[name, event] : Events)
        FSet.*event = nullptr;
    for (const auto &[name, event] : FailureEvents)
        FSet.*event = nullptr;
}

QString TDataSetRecorder::Take() { return std::exchange(FEvents, {}).join(u' '); }

void TDataSetRecorder::StopAt(const QString &event, const QString &message)
{
    FStop = event;
    FMessage = message;
}

void TDataSetRecorder::Note(const QString &event)
{
    FEvents += event;
    if (event != FStop)
        return;
    if (FMessage.isEmpty())
        Abort();
    throw EDatabaseError(FMessage);
}

TFirstRows TTestFeed::Begin(const std::shared_ptr<TTestFeed> &feed, qsizetype rows)
{
    TDataPacketBuilder builder(feed->FRows.Fields());
    builder.AppendRows(feed->FRows, 0, rows);
    return {std::move(builder).Build(), feed};
}

bool TTestFeed::Read(QDeadlineTimer deadline)
{
    if (!FMessage.isEmpty())
        throw EDatabaseError(FMessage);
    FReads = deadline.isForever() ? 0 : qMax(0, FReads - 1);
    return FReads == 0;
}

TLinkRecorder::TLinkRecorder(TDataSet &set)
{
    FSource.SetDataSet(&set);
    SetDataSource(&FSource);
    Take();
}

TLinkRecorder::~TLinkRecorder() { SetDataSource(nullptr); }

QString TLinkRecorder::Take() { return std::exchange(FNotes, {}).join(u' '); }

void TLinkRecorder::RecordChanged(TField *field)
{
    Note(field ? QStringLiteral("record(%1)").arg(field->FieldName()) : QStringLiteral("record"));
}

void TLinkRecorder::FocusControl(TField *field) { Note(QStringLiteral("focus(%1)").arg(field->FieldName())); }

} // namespace Korvane
