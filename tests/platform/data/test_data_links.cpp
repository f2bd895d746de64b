// SPDX-License-Identifier: MIT
#include "support/Packets.h"

#include "platform/data/dataset/ClientDataSet.h"
#include "platform/data/dataset/DataLink.h"

#include <gtest/gtest.h>

namespace Korvane {

namespace {

/// Writes down what it is told, and runs a hook after each entry.
class TLoggingLink : public TDataLink
{
public:
    TLoggingLink(QStringList &log, const QString &name) : FLog(log), FName(name) {}

    std::function<void(const QString &)> Hook;

protected:
    void ActiveChanged() override { Tell(Active() ? "active" : "inactive"); }
    void EditingChanged() override { Tell(Editing() ? "editing" : "not editing"); }
    void RecordChanged(TField *field) override { Tell("record " + (field ? field->FieldName() : "all")); }
    void DataSetChanged() override { Tell("dataset"); }
    void DataSetScrolled(qsizetype distance) override { Tell("scroll " + QString::number(distance)); }
    void LayoutChanged() override { Tell("layout"); }
    void UpdateData() override { Tell("update"); }
    void CheckBrowseMode() override { Tell("check"); }
    void FocusControl(TField *field) override { Tell("focus " + field->FieldName()); }
    void DataSourceChanged() override { Tell("source"); }

private:
    void Tell(const QString &what)
    {
        FLog += FName + what;
        if (const auto hook = Hook)
            hook(what); // may destroy the link
    }

    QStringList &FLog;
    const QString FName;
};

TDataPacket Rows()
{
    return PacketOf({{"CODE", ftString, 10}, {"QTY", ftInteger}}, {{"A", 1}, {"B", 2}, {"C", 3}});
}

QString Taken(QStringList &log) { return std::exchange(log, {}).join(", "); }

} // namespace

TEST(DataLinks, HearEachChangeInOrder)
{
    QStringList log;
    TClientDataSet set;
    TDataSource source;
    TLoggingLink link(log, {});
    link.SetDataSource(&source);
    source.SetDataSet(&set);
    source.OnStateChange = [&](TDataSource *s) { log += QStringLiteral("[state %1]").arg(s->State()); };
    source.OnDataChange = [&](TDataSource *, TField *field) {
        log += QStringLiteral("[data %1]").arg(field ? field->FieldName() : "all");
    };
    source.OnUpdateData = [&](TDataSource *) { log += "[update]"; };
    const struct
    {
        const char *Step;
        std::function<void()> Run;
        const char *Log;
    } steps[] = {
        {"joined", [] {}, "source"},
        {"open", [&] { set.SetData(Rows()); }, "active, [state 1]"},
        {"next", [&] { set.Next(); }, "check, scroll 1, [data all]"},
        {"edit", [&] { set.Edit(); }, "check, editing, [state 2], record all, [data all]"},
        {"write", [&] { set.FieldByName(u"QTY")->SetAsInteger(5); }, "record QTY, [data QTY]"},
        {"focus", [&] { set.FieldByName(u"QTY")->FocusControl(); }, "focus QTY"},
        {"look", [&] { set.FieldByName(u"QTY")->SetDisplayLabel("数量"); }, "layout, [data all]"},
        {"the same look", [&] { set.FieldByName(u"QTY")->SetDisplayLabel("数量"); }, ""},
        {"read-only", [&] { link.SetReadOnly(true); }, "not editing"},
        {"no more", [&] { link.SetReadOnly(false); }, "editing"},
        {"update", [&] { set.UpdateRecord(); }, "update, [update]"},
        {"cancel", [&] { set.Cancel(); }, "check, not editing, [state 1], dataset, [data all]"},
        {"disabled", [&] { source.SetEnabled(false); }, "inactive, [state 0]"},
        {"unheard", [&] { set.Next(); }, ""},
        {"enabled", [&] { source.SetEnabled(true); }, "active, [state 1]"},
        {"close", [&] { set.Close(); }, "inactive, [state 0]"},
    };
    for (const auto &step : steps) {
        step.Run();
        EXPECT_EQ(Taken(log), step.Log) << step.Step;
    }
}

TEST(DataLinks, HearASummaryWhenControlsAreEnabled)
{
    QStringList log;
    TClientDataSet set;
    set.SetData(Rows());
    TDataSource source;
    TLoggingLink link(log, {});
    link.SetDataSource(&source);
    source.SetDataSet(&set);
    log.clear();
    set.DisableControls();
    set.DisableControls();
    set.First();
    set.Edit();
    set.FieldByName(u"QTY")->SetAsInteger(9);
    set.EnableControls();
    EXPECT_FALSE(log.contains("record QTY"));
    log.clear();
    set.EnableControls();
    EXPECT_EQ(Taken(log), "editing, dataset");
}

TEST(DataLinks, SeeOneDatasetGoBeforeTheNextOneComes)
{
    QStringList log;
    TClientDataSet first, second;
    first.SetData(Rows());
    second.SetData(Rows());
    TDataSource source, other;
    TLoggingLink link(log, {});
    link.SetDataSource(&source);
    log.clear();
    source.SetDataSet(&first);
    source.SetDataSet(&second);
    EXPECT_EQ(Taken(log), "active, inactive, active");
    other.SetDataSet(&first);
    link.SetDataSource(&other);
    EXPECT_EQ(Taken(log), "inactive, active, source");
    EXPECT_EQ(link.DataSet(), &first);
    link.SetDataSource(nullptr);
    EXPECT_EQ(Taken(log), "inactive, source");
    EXPECT_EQ(link.DataSet(), nullptr);
}

TEST(DataLinks, BeginAnEditOnlyWhereTheyMay)
{
    const struct
    {
        bool AutoEdit, ReadOnly, SetReadOnly;
        const char *Result;
    } rows[] = {
        {true, false, false, "yes 2"},
        {false, false, false, "no 1"},
        {true, true, false, "no 1"},
        {true, false, true, "EDatabaseError: 数据集是只读的，不能修改"},
    };
    for (const auto &row : rows) {
        QStringList log;
        TClientDataSet set;
        set.SetData(Rows());
        set.SetReadOnly(row.SetReadOnly);
        TDataSource source;
        source.SetDataSet(&set);
        source.SetAutoEdit(row.AutoEdit);
        TLoggingLink link(log, {});
        link.SetDataSource(&source);
        link.SetReadOnly(row.ReadOnly);
        QString result;
        const QString raised = RaisedBy([&] {
            result = link.Edit() ? "yes" : "no";
            result += QStringLiteral(" %1").arg(set.State());
        });
        EXPECT_EQ(result.isEmpty() ? raised : result, row.Result);
        if (set.State() == dsBrowse) {
            set.SetReadOnly(false);
            set.Edit(); // by the program
            EXPECT_EQ(link.Edit(), !row.ReadOnly);
        }
    }
}

// Dataset, source and link die in every order, alone and while a notification is under way.
TEST(DataLinks, AnyOrderOfDeathIsSafe)
{
    enum class TDeath { DataSet, Source, Link };
    QList<TDeath> order = {TDeath::DataSet, TDeath::Source, TDeath::Link};
    const QString triggers[] = {{}, "active", "editing", "scroll 1", "check", "layout", "inactive"};
    do {
        for (const QString &trigger : triggers) {
            QStringList log;
            auto set = std::make_unique<TClientDataSet>();
            auto source = std::make_unique<TDataSource>();
            auto link = std::make_unique<TLoggingLink>(log, "1 ");
            TLoggingLink last(log, "2 ");
            link->SetDataSource(source.get());
            last.SetDataSource(source.get());
            source->SetDataSet(set.get());
            const auto kill = [&](TDeath death) {
                if (death == TDeath::Source)
                    source.reset();
                else if (death == TDeath::Link)
                    link.reset();
                else
                    set.reset();
            };
            // A dataset cannot be destroyed by what it is telling.
            link->Hook = [&](const QString &what) {
                if (what != trigger)
                    return;
                for (const TDeath death : order)
                    if (death != TDeath::DataSet)
                        kill(death);
            };
            set->SetData(Rows());
            set->Next();
            set->Edit();
            set->FieldByName(u"QTY")->SetAsInteger(1);
            set->FieldByName(u"QTY")->SetVisible(false);
            set->Post();
            set->Close();
            set->SetData(Rows());
            for (const TDeath death : order)
                kill(death);
            EXPECT_FALSE(last.Active());
            EXPECT_EQ(last.DataSource(), nullptr);
        }
    } while (std::next_permutation(order.begin(), order.end()));
}

TEST(DataLinks, AHandlerMayTurnToAnotherDataset)
{
    QStringList log;
    TClientDataSet first, second;
    first.SetData(Rows());
    second.SetData(Rows());
    TDataSource source;
    TLoggingLink one(log, "1 "), two(log, "2 ");
    one.SetDataSource(&source);
    two.SetDataSource(&source);
    source.SetDataSet(&first);
    log.clear();
    one.Hook = [&](const QString &what) {
        if (what == u"scroll 1") {
            one.Hook = nullptr;
            source.SetDataSet(&second);
        }
    };
    first.Next();
    EXPECT_EQ(source.DataSet(), &second);
    EXPECT_TRUE(one.Active() && two.Active());
    first.Next(); // nobody listens any more
    EXPECT_EQ(log.count("1 scroll 1"), 1);
    // Even while the old one is being left.
    TClientDataSet third;
    third.SetData(Rows());
    two.Hook = [&](const QString &what) {
        if (what == u"inactive") {
            two.Hook = nullptr;
            source.SetDataSet(&third);
        }
    };
    source.SetDataSet(&first);
    EXPECT_EQ(source.DataSet(), &third);
}

TEST(DataLinks, AllLearnOfTheStateWhateverOneRaises)
{
    QStringList log;
    TClientDataSet set;
    TDataSource source;
    source.SetDataSet(&set);
    TLoggingLink one(log, "1 "), two(log, "2 ");
    one.SetDataSource(&source);
    two.SetDataSource(&source);
    one.Hook = [](const QString &) { throw EDatabaseError("坏"); };
    EXPECT_EQ(RaisedBy([&] { set.SetData(Rows()); }), "EDatabaseError: 坏");
    EXPECT_TRUE(two.Active());
    one.Hook = nullptr;
}

// ---- TFieldDataLink -------------------------------------------------------------------

namespace {

/// A control of one field: what was typed, and a log of its events.
struct TControl
{
    explicit TControl(TDataSource *source, const QString &field)
    {
        Link.OnDataChange = [this] { Log += "data " + (Link.Field() ? Link.Field()->AsString() : "none"); };
        Link.OnEditingChange = [this] { Log += Link.Editing() ? "editing" : "not editing"; };
        Link.OnActiveChange = [this] { Log += Link.Active() ? "active" : "inactive"; };
        Link.OnUpdateData = [this] {
            Log += "update";
            Link.Field()->SetText(Typed);
        };
        Link.SetFieldName(field);
        Link.SetDataSource(source);
        Log.clear();
    }
    void Type(const QString &text)
    {
        ASSERT_TRUE(Link.Edit());
        Typed = text;
        Link.Modified();
    }

    QStringList Log;
    QString Typed;
    TFieldDataLink Link;
};

} // namespace

TEST(FieldDataLink, ShowsItsFieldAndWritesWhatWasTyped)
{
    TClientDataSet set;
    TDataSource source;
    source.SetDataSet(&set);
    TControl code(&source, "CODE"), quantity(&source, "QTY");
    const struct
    {
        const char *Step;
        std::function<void()> Run;
        const char *Code, *Quantity;
    } steps[] = {
        {"open", [&] { set.SetData(Rows()); }, "data A, active", "data 1, active"},
        {"next", [&] { set.Next(); }, "data B", "data 2"},
        {"type", [&] { quantity.Type("7"); }, "editing, data B", "editing, data 2"},
        {"another field", [&] { set.FieldByName(u"CODE")->SetAsString("X"); }, "data X", ""},
        {"update", [&] { set.UpdateRecord(); }, "", "update"},
        {"once only", [&] { set.UpdateRecord(); }, "", ""},
        {"drop", [&] { quantity.Type("8"), quantity.Link.Reset(); }, "", "data 7"},
        {"post", [&] { code.Type("Y"), set.Post(); }, "update, not editing, data Y", "not editing, data 7"},
        {"no such field", [&] { code.Link.SetFieldName("NONE"); }, "data none", ""},
        {"another name", [&] { code.Link.SetFieldName("qty"); }, "data 7", ""},
        {"close", [&] { set.Close(); }, "data none, inactive", "data none, inactive"},
    };
    for (const auto &step : steps) {
        step.Run();
        EXPECT_EQ(Taken(code.Log), step.Code) << step.Step;
        EXPECT_EQ(Taken(quantity.Log), step.Quantity) << step.Step;
    }
}

TEST(FieldDataLink, WhatIsRefusedStaysTyped)
{
    TClientDataSet set;
    set.SetData(Rows());
    TDataSource source;
    source.SetDataSet(&set);
    TControl quantity(&source, "QTY");
    quantity.Type("x");
    EXPECT_EQ(RaisedBy([&] { set.Next(); }), "EConvertError: 字段“QTY”的值“x”不是有效的整数");
    EXPECT_TRUE(quantity.Link.IsModified());
    set.FieldByName(u"CODE")->SetVisible(false); // a change of another field's look
    EXPECT_TRUE(quantity.Link.IsModified());
    quantity.Typed = "12";
    set.Next();
    set.First();
    EXPECT_EQ(quantity.Link.Field()->AsInteger(), 12);
    EXPECT_FALSE(quantity.Link.IsModified());
}

TEST(FieldDataLink, IsEditingOnlyWhereTheFieldCanBeWritten)
{
    TClientDataSet set;
    set.SetData(Rows());
    TDataSource source;
    source.SetDataSet(&set);
    TControl code(&source, "CODE");
    EXPECT_TRUE(code.Link.CanModify());
    set.FieldByName(u"CODE")->SetReadOnly(true);
    EXPECT_FALSE(code.Link.CanModify());
    EXPECT_FALSE(code.Link.Edit());
    EXPECT_EQ(set.State(), dsBrowse);
    set.Edit();
    EXPECT_FALSE(code.Link.Editing());
    set.FieldByName(u"CODE")->SetReadOnly(false);
    EXPECT_TRUE(code.Link.Editing());
}

TEST(FieldDataLink, AControlMayDieWhileItWrites)
{
    TClientDataSet set;
    set.SetData(Rows());
    TDataSource source;
    source.SetDataSet(&set);
    auto control = std::make_unique<TControl>(&source, "QTY");
    control->Type("7");
    control->Link.OnUpdateData = [&] { control.reset(); };
    set.FieldByName(u"CODE")->SetAsString("X");
    set.Post();
    EXPECT_FALSE(control);
    EXPECT_EQ(set.FieldByName(u"CODE")->AsString(), "X");
}

// ---- TMasterDataLink ------------------------------------------------------------------

TEST(MasterDataLink, TellsTheDetailOfItsMaster)
{
    QStringList log;
    TClientDataSet master, detail;
    TDataSource source;
    source.SetDataSet(&master);
    TMasterDataLink link(&detail);
    link.OnMasterChange = [&](TMasterDataLink *l) { log += "change " + l->Fields()[0]->AsString(); };
    link.OnMasterDisable = [&](TMasterDataLink *) { log += "disable"; };
    link.SetFieldNames("CODE");
    const struct
    {
        const char *Step;
        std::function<void()> Run;
        const char *Log;
    } steps[] = {
        {"the detail is closed", [&] { link.SetDataSource(&source), master.SetData(Rows()); }, ""},
        {"it opens by itself", [&] { detail.SetData(Rows()); }, ""},
        {"scroll", [&] { master.Next(); }, "change B"},
        {"write another field", [&] { master.Edit(), log.clear(), master.FieldByName(u"QTY")->Clear(); }, ""},
        {"write a linked one", [&] { master.FieldByName(u"CODE")->SetAsString("X"); }, "change X"},
        {"post", [&] { master.Post(); }, "change X"},
        {"no fields", [&] { link.SetFieldNames({}); }, "disable"},
        {"two fields", [&] { link.SetFieldNames("CODE;QTY"); }, "change X"},
        {"close", [&] { master.Close(); }, "disable"},
        {"open", [&] { master.SetData(Rows()); }, "change A"},
    };
    for (const auto &step : steps) {
        step.Run();
        EXPECT_EQ(Taken(log), step.Log) << step.Step;
    }
    EXPECT_EQ(RaisedBy([&] { link.SetFieldNames("CODE;NONE"); }), "EDatabaseError: 字段“NONE”没有找到");
    EXPECT_EQ(link.FieldNames(), "CODE;QTY");
    EXPECT_EQ(link.Fields().size(), 2);
}

TEST(MasterDataLink, LeavingTheMastersRowPostsTheDetail)
{
    TClientDataSet master, detail;
    master.SetData(Rows());
    detail.SetData(Rows());
    TDataSource source;
    source.SetDataSet(&master);
    TMasterDataLink link(&detail);
    link.SetDataSource(&source);
    detail.Edit();
    detail.FieldByName(u"QTY")->SetAsInteger(9);
    master.Next();
    EXPECT_EQ(detail.State(), dsBrowse);
    EXPECT_EQ(detail.FieldByName(u"QTY")->AsInteger(), 9);
}

namespace {

/// A dataset with a master, as a detail has it.
class TDetail : public TClientDataSet
{
public:
    TDataSource *DataSource() const override { return Master.DataSource(); }

    TMasterDataLink Master{this};
};

} // namespace

TEST(MasterDataLink, ACircleIsRefused)
{
    const QString circle = "EDatabaseError: 数据集不能通过主从关系跟随它自己";
    TDetail a, b;
    TDataSource ofA, ofB, free;
    ofA.SetDataSet(&a);
    ofB.SetDataSet(&b);
    EXPECT_EQ(RaisedBy([&] { a.Master.SetDataSource(&ofA); }), circle);
    b.Master.SetDataSource(&ofA);
    EXPECT_EQ(RaisedBy([&] { a.Master.SetDataSource(&ofB); }), circle);
    a.Master.SetDataSource(&free);
    EXPECT_EQ(RaisedBy([&] { free.SetDataSet(&a); }), circle);
    EXPECT_EQ(RaisedBy([&] { free.SetDataSet(&b); }), circle);
    EXPECT_EQ(free.DataSet(), nullptr);
    EXPECT_TRUE(ofB.IsLinkedTo(&b));
    EXPECT_TRUE(ofB.IsLinkedTo(&a));
    EXPECT_FALSE(ofA.IsLinkedTo(&b));
}

} // namespace Korvane
