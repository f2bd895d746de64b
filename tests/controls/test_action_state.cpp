// SPDX-License-Identifier: MIT
#include "controls/ActionState.h"

#include "platform/forms/Action.h"
#include "support/DataSets.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

namespace Korvane {

namespace {

/// The actions by what is told of them together; Print stands in the fifth place.
const QList<QStringList> Groups = {
    {"First", "Prior"},
    {"Next", "Last"},
    {"Up", "Down"},
    {"Export", "Attach"},
    {"Print"},
    {"Search", "Locate", "Refresh", "Insert", "Detail", "Lists"},
    {"Update", "Delete", "Copy", "Check", "UnCheck", "Avoid"},
    {"Save", "Cancel"},
};

/// A component with all its actions, which are set and found as properties.
class TForm
{
public:
    explicit TForm(const QStringList &without = {})
    {
        for (const QStringList &names : Groups)
            for (const QString &name : names)
                if (!without.contains(name)) {
                    auto *action = new TAction(&FActions);
                    FByName[name] = action;
                    EXPECT_TRUE(State.setProperty(Property(name).constData(), QVariant::fromValue(action)))
                        << name.toStdString();
                }
        State.SetDataSource(&Source);
    }

    TAction *operator[](const QString &name) const { return FByName[name]; }

    void SetAll(bool enabled)
    {
        for (TAction *action : FByName)
            action->SetEnabled(enabled);
    }

    /// A sign per group: "+" on, "-" off, "?" for both.
    QString Text() const
    {
        QString text;
        for (const QStringList &names : Groups) {
            qsizetype on = 0;
            for (const QString &name : names)
                on += FByName[name]->Enabled();
            text += on == 0 ? '-' : on == names.size() ? '+' : '?';
        }
        return text;
    }

    QStringList Enabled() const
    {
        QStringList names;
        for (auto it = FByName.begin(); it != FByName.end(); ++it)
            if ((*it)->Enabled())
                names += it.key();
        return names;
    }

    /// What the component says that it is linked to.
    TAction *Linked(const QString &name) const
    {
        return State.property(Property(name).constData()).value<TAction *>();
    }

    static QByteArray Property(const QString &name) { return "Action" + name.toLatin1(); }

    TDataSource Source;
    TActionState State;

private:
    QObject FActions;
    QMap<QString, TAction *> FByName;
};

std::unique_ptr<TClientDataSet> Rows(int count)
{
    QList<QVariantList> rows;
    for (int i = 1; i <= count; ++i)
        rows.append(QVariantList{QStringLiteral("A%1").arg(i), i});
    return DataSetOf({{"CODE", ftString, 10}, {"QTY", ftInteger}}, rows);
}

} // namespace

TEST(ActionState, IsReckonedFromTheDataset)
{
    const struct
    {
        const char *What;
        int Rows;
        const char *Steps;
        bool ReadOnly;
        const char *Result; // "k": as it was before
    } cases[] = {
        {"closed", 3, "close", false, "--------"},
        {"between the ends", 3, "first;move 1", false, "++++k++-"},
        {"at the first row", 3, "first", false, "-+++k++-"},
        {"at the last row", 3, "last", false, "+-++k++-"},
        {"no rows", 0, "first", false, "-----+--"},
        {"editing", 3, "first;move 1;edit", false, "-------+"},
        {"inserting", 3, "insert", false, "-------+"},
        {"inserting the first row", 0, "append", false, "-------+"},
        {"read-only", 3, "first;move 1", true, "---+k---"},
        {"read-only without rows", 0, "first", true, "--------"},
        {"read-only while editing", 3, "edit;QTY=7", true, "--------"},
    };
    for (const auto &test : cases)
        for (const bool before : {false, true}) {
            SCOPED_TRACE(testing::Message() << test.What << (before ? ", on before" : ", off before"));
            const auto set = Rows(test.Rows);
            Do(*set, test.Steps);
            TForm form;
            form.Source.SetDataSet(set.get());
            set->SetReadOnly(test.ReadOnly);
            form.SetAll(before);
            form.State.DataChanged();
            EXPECT_EQ(form.Text(), QString(test.Result).replace('k', before ? '+' : '-'));
            form.State.SetDataSource(nullptr);
            form.SetAll(before);
            form.State.ActiveChanged();
            EXPECT_EQ(form.Text(), "--------");
        }
}

TEST(ActionState, FollowsWhatTheDataTell)
{
    const auto set = Rows(3);
    TForm form;
    form.SetAll(true);
    const auto print = [&] { form["Print"]->SetEnabled(true); };
    const struct
    {
        const char *What;
        std::function<void()> Run;
        const char *Result;
    } steps[] = {
        {"joined", [&] { form.Source.SetDataSet(set.get()); }, "-++++++-"},
        {"next", [&] { set->Next(); }, "+++++++-"},
        {"last", [&] { set->Last(); }, "+-+++++-"},
        {"edit", [&] { set->Edit(); }, "-------+"},
        {"write", [&] { Do(*set, "QTY=9"); }, "-------+"},
        {"post; print stays off", [&] { set->Post(); }, "++++-++-"},
        {"print switched on by the application", print, "+++++++-"},
        {"append", [&] { set->Append(); }, "-------+"},
        {"cancel", [&] { set->Cancel(); }, "++++-++-"},
        {"off the source", [&] { form.Source.SetEnabled(false); }, "--------"},
        {"on again", [&] { form.Source.SetEnabled(true); }, "++++-++-"},
        {"all rows deleted", [&] { Do(*set, "delete;delete;delete"); }, "-----+--"},
        {"a row comes", [&] { Do(*set, "append;CODE=B;post"); }, "++++-++-"},
        {"print again", print, "+++++++-"},
        {"nothing is told", [&] { set->DisableControls(), set->Edit(); }, "+++++++-"},
        {"it is told at the end", [&] { set->EnableControls(); }, "-------+"},
        {"close", [&] { set->Close(); }, "--------"},
    };
    for (const auto &step : steps) {
        step.Run();
        EXPECT_EQ(form.Text(), step.Result) << step.What;
    }
}

TEST(ActionState, KeepsWhatMovesOffFromTheEndOfAnEditToTheNextNewsOfRows)
{
    const auto set = Rows(3);
    TForm form;
    form.Source.SetDataSet(set.get());
    Do(*set, "move 1;edit;QTY=5");
    QString between;
    form.Source.OnStateChange = [&](TDataSource *) { between = form.Text(); };
    set->Post();
    form.Source.OnStateChange = nullptr;
    EXPECT_EQ(between, "-----++-");
    EXPECT_EQ(form.Text(), "++++-++-");
}

TEST(ActionState, LetsDetailRowsChangeOnlyWhileTheMasterIsEdited)
{
    const QStringList guarded = {"Insert", "Update", "Delete", "Up", "Down"};
    const struct
    {
        const char *Steps;
        bool ReadOnly, Allows;
    } masters[] = {
        {"close", false, false}, {"first", false, false}, {"edit", false, true},
        {"append", false, true}, {"edit", true, false},
    };
    for (const auto &master : masters)
        for (const char *detail : {"close", "first", "last", "first;move 1", "edit", "append"})
            for (const int count : {0, 3}) {
                SCOPED_TRACE(testing::Message() << master.Steps << (master.ReadOnly ? " read-only" : "")
                                                << " / " << detail << " of " << count);
                const auto set = Rows(count);
                Do(*set, detail);
                TForm form;
                form.Source.SetDataSet(set.get());
                form.SetAll(true);
                form.State.DataChanged();
                QStringList expected = form.Enabled();
                const auto masterSet = Rows(2);
                Do(*masterSet, master.Steps);
                masterSet->SetReadOnly(master.ReadOnly);
                TDataSource masterSource;
                masterSource.SetDataSet(masterSet.get());
                if (!master.Allows)
                    for (const QString &name : guarded)
                        expected.removeOne(name);
                form.SetAll(true);
                form.State.SetMasterDataSource(&masterSource);
                form.State.DataChanged();
                EXPECT_EQ(form.Enabled(), expected);
            }
}

TEST(ActionState, FollowsTheMaster)
{
    const auto set = Rows(3), master = Rows(1);
    Do(*set, "move 1");
    TForm form;
    form.Source.SetDataSet(set.get());
    master->Close();
    TDataSource masterSource;
    masterSource.SetDataSet(master.get());
    const auto text = [&] {
        return QString("insert%1 update%2 copy%3 up%4")
            .arg(form["Insert"]->Enabled())
            .arg(form["Update"]->Enabled())
            .arg(form["Copy"]->Enabled())
            .arg(form["Up"]->Enabled());
    };
    EXPECT_EQ(text(), "insert1 update1 copy1 up1");
    form.State.SetMasterDataSource(&masterSource);
    EXPECT_EQ(text(), "insert0 update0 copy1 up0") << "a closed master counts at once";
    master->SetData(Rows(1)->Data());
    EXPECT_EQ(text(), "insert0 update0 copy1 up0");
    master->Edit();
    EXPECT_EQ(text(), "insert1 update1 copy1 up0") << "rows move again with the next news of rows";
    set->Prior();
    EXPECT_EQ(text(), "insert1 update1 copy1 up1");
    master->Cancel();
    EXPECT_EQ(text(), "insert0 update0 copy1 up0");
    form.State.SetMasterDataSource(nullptr);
    EXPECT_EQ(text(), "insert1 update1 copy1 up1");
}

TEST(ActionState, SkipsActionsThatAreNotSetAndForgetsThoseThatGo)
{
    for (const QStringList &names : Groups)
        for (const QString &name : names) {
            SCOPED_TRACE(name.toStdString());
            const auto set = Rows(3);
            TForm lacking({name});
            lacking.Source.SetDataSet(set.get());
            EXPECT_EQ(lacking.Linked(name), nullptr);
            TForm form;
            EXPECT_EQ(form.Linked(name), form[name]);
            delete form[name];
            EXPECT_EQ(form.Linked(name), nullptr);
            form.Source.SetDataSet(set.get());
            Do(*set, "move 1;edit;cancel;close");
        }
}

TEST(ActionState, LivesThroughTheEndOfItsPartsInAnyOrder)
{
    enum { State, Source, MasterSource, Set, MasterSet, Action, Count };
    std::array<int, Count> order;
    std::iota(order.begin(), order.end(), 0);
    do {
        std::array<std::unique_ptr<QObject>, Count> parts;
        const auto add = [&](int place, auto part) {
            auto *plain = part.get();
            parts[size_t(place)] = std::move(part);
            return plain;
        };
        auto *state = add(State, std::make_unique<TActionState>());
        auto *source = add(Source, std::make_unique<TDataSource>());
        auto *masterSource = add(MasterSource, std::make_unique<TDataSource>());
        auto *set = add(Set, Rows(3));
        auto *action = add(Action, std::make_unique<TAction>(nullptr));
        auto *master = add(MasterSet, Rows(1));
        source->SetDataSet(set);
        masterSource->SetDataSet(master);
        state->SetActionInsert(action);
        state->SetDataSource(source);
        state->SetMasterDataSource(masterSource);
        master->Edit();
        ASSERT_TRUE(action->Enabled());
        std::array<bool, Count> gone = {};
        for (const int part : order) {
            parts[size_t(part)].reset();
            gone[size_t(part)] = true;
            if (gone[State])
                continue;
            EXPECT_EQ(state->DataSource(), gone[Source] ? nullptr : source);
            EXPECT_EQ(state->MasterDataSource(), gone[MasterSource] ? nullptr : masterSource);
            EXPECT_EQ(state->ActionInsert(), gone[Action] ? nullptr : action);
            if (!gone[Action]) {
                EXPECT_EQ(action->Enabled(),
                          !gone[Source] && !gone[Set] && (gone[MasterSource] || !gone[MasterSet]));
            }
            state->DataChanged();
        }
    } while (std::next_permutation(order.begin(), order.end()));
}

TEST(ActionState, TakesOneSourceForBothParts)
{
    TForm form;
    auto set = Rows(3);
    form.Source.SetDataSet(set.get());
    form.State.SetMasterDataSource(&form.Source);
    EXPECT_FALSE(form["Insert"]->Enabled());
    set->Edit();
    EXPECT_EQ(form.Text(), "-------+");
    set.reset();
    EXPECT_EQ(form.Text(), "--------");
}

} // namespace Korvane
