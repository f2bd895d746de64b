// SPDX-License-Identifier: MIT
#include "support/DataSets.h"

#include "platform/core/Variants.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

namespace Korvane {

namespace {

const QVariant Null;

std::unique_ptr<TClientDataSet> ThreeParts()
{
    return DataSetOf({{"CODE", ftString, 10}, {"QTY", ftInteger}}, {{"A1", 1}, {"A2", 2}, {"A3", Null}});
}

TEST(ChangeLog, TheDeltaHoldsOneEntryPerRecord)
{
    const struct
    {
        const char *Steps;
        int Changes;
        const char *Delta;
    } cases[] = {
        {"", 0, ""},
        {"edit; QTY=7; post", 1, "unmodified A1|1\nmodified ~|7\n"},
        {"edit; QTY=7; CODE=B; post", 1, "unmodified A1|1\nmodified B|7\n"},
        {"last; edit; QTY=0; post", 1, "unmodified A3|~\nmodified ~|0\n"},
        {"edit; QTY=~; post", 1, "unmodified A1|1\nmodified ~|~\n"},
        {"insert; CODE=N; post", 1, "inserted N|~\n"},
        {"next; delete", 1, "deleted A2|2\n"},
        // cancelled and left changes are none
        {"edit; QTY=7; cancel", 0, ""},
        {"append; CODE=N; cancel; edit; next", 0, ""},
        // several changes of one record
        {"edit; QTY=7; post; edit; CODE=B; post", 1, "unmodified A1|1\nmodified B|7\n"},
        {"edit; QTY=7; post; edit; QTY=8; post", 1, "unmodified A1|1\nmodified ~|8\n"},
        {"insert; CODE=N; post; edit; QTY=5; post", 1, "inserted N|5\n"},
        {"insert; CODE=N; post; delete", 0, ""},
        {"edit; QTY=7; post; delete", 1, "deleted A1|1\n"},
        // equal values are a change, too: what was posted is to be saved
        {"edit; QTY=1; post", 1, "unmodified A1|1\nmodified ~|~\n"},
        {"edit; post", 1, "unmodified A1|1\nmodified ~|~\n"},
        {"edit; QTY=7; post; edit; QTY=1; post", 1, "unmodified A1|1\nmodified ~|~\n"},
        // in the order of the records' first changes
        {"last; edit; QTY=3; post; first; edit; QTY=7; post; last; edit; QTY=4; post", 2,
         "unmodified A3|~\nmodified ~|4\nunmodified A1|1\nmodified ~|7\n"},
        {"edit; QTY=7; post; append; CODE=N; post; first; delete; delete", 3,
         "deleted A1|1\ninserted N|~\ndeleted A2|2\n"},
        // a row that is being edited is posted first
        {"edit; QTY=7", 1, "unmodified A1|1\nmodified ~|7\n"},
    };
    for (const auto &[steps, changes, delta] : cases) {
        const auto set = ThreeParts();
        Do(*set, steps);
        EXPECT_EQ(DeltaOf(*set), delta) << steps;
        EXPECT_EQ(set->ChangeCount(), changes) << steps;
    }
}

TEST(ChangeLog, ADeltaIsWalkedRowByRow)
{
    const auto set = ThreeParts();
    Do(*set, "edit; QTY=7; post; next; delete; append; CODE=N; post");
    TClientDataSet delta;
    delta.SetData(set->Delta());
    EXPECT_EQ(ViewOf(delta), ">A1|1\n~|7\nA2|2\nN|~\n");
    QList<TUpdateStatus> statuses;
    for (delta.First(); !delta.Eof(); delta.Next())
        statuses += delta.UpdateStatus();
    EXPECT_EQ(statuses, QList({usUnmodified, usModified, usDeleted, usInserted}));
    EXPECT_EQ(delta.ChangeCount(), 0);
    EXPECT_EQ(TextOf(set->Delta()).section(u'\n', 0, 0), TextOf(set->Data()).section(u'\n', 0, 0));
}

TEST(ChangeLog, TellsTheStatusOfEachRow)
{
    const auto set = ThreeParts();
    Do(*set, "edit; QTY=7; post; next; insert; CODE=N; post; last; delete");
    EXPECT_EQ(ViewOf(*set, "CODE"), "A1 N >A2");
    EXPECT_EQ(StatusesOf(*set), "miu");
    Do(*set, "insert");
    EXPECT_EQ(set->UpdateStatus(), usInserted);
    Do(*set, "delete; delete; delete; delete");
    EXPECT_EQ(set->UpdateStatus(), usUnmodified); // of no row
}

TEST(ChangeLog, FiltersByStatus)
{
    const struct
    {
        TUpdateStatusSet Statuses;
        const char *View;
    } cases[] = {
        {{}, ">A1 N A2"},
        {usfUnmodified, ">A2"},
        {usfModified, ">A1"},
        {usfInserted, ">N"},
        {usfDeleted, ">A3"},
        {usfDeleted | usfInserted, ">N A3"},
        {usfUnmodified | usfModified | usfInserted | usfDeleted, ">A1 N A2 A3"},
    };
    const auto set = ThreeParts();
    Do(*set, "edit; QTY=7; post; next; insert; CODE=N; post; last; delete");
    for (const auto &[statuses, view] : cases) {
        set->SetStatusFilter(statuses);
        EXPECT_EQ(ViewOf(*set, "CODE"), view) << statuses.toInt();
    }
    set->SetStatusFilter(usfUnmodified);
    Do(*set, "edit; QTY=0; post");
    EXPECT_EQ(PlaceOf(*set), "browse 0/0 bof eof");
    set->SetStatusFilter(usfInserted | usfDeleted);
    Do(*set, "index CODE");
    EXPECT_EQ(ViewOf(*set, "CODE"), "A3 >N");
    set->MergeChangeLog();
    EXPECT_EQ(ViewOf(*set, "CODE"), "");
    set->SetStatusFilter({});
    EXPECT_EQ(ViewOf(*set, "CODE"), ">A1 A2 N");
}

TEST(ChangeLog, BringsDeletedRowsBack)
{
    for (const auto statuses : {TUpdateStatusSet(usfDeleted), TUpdateStatusSet(usfDeleted | usfUnmodified)}) {
        for (const char *step : {"revert", "undo", "cancelupdates"}) {
            const auto set = ThreeParts();
            Do(*set, "next; delete");
            set->SetStatusFilter(statuses);
            EXPECT_EQ(set->Locate("CODE", "A2"), true);
            Do(*set, step);
            EXPECT_EQ(ViewOf(*set, "CODE"), statuses & usfUnmodified ? "A1 >A2 A3" : "") << step;
            EXPECT_EQ(set->ChangeCount(), 0);
        }
    }
    const auto set = ThreeParts();
    Do(*set, "next; delete");
    set->SetStatusFilter(usfDeleted);
    EXPECT_EQ(KindRaised([&] { Do(*set, "edit; QTY=1; post"); }), "EDatabaseError");
    Do(*set, "cancel");
    EXPECT_EQ(DeltaOf(*set), "deleted A2|2\n");
}

TEST(ChangeLog, ADeletedRowShowsItsStoredValues)
{
    const auto set = ThreeParts();
    set->SetStatusFilter(usfUnmodified | usfModified | usfDeleted);
    Do(*set, "index CODE; next; edit; CODE=Z; post");
    EXPECT_EQ(ViewOf(*set, "CODE"), "A1 A3 >Z");
    Do(*set, "delete");
    EXPECT_EQ(ViewOf(*set, "CODE"), "A1 A2 >A3");
    Do(*set, "prior; revert");
    EXPECT_EQ(ViewOf(*set, "CODE"), "A1 >A2 A3");
    EXPECT_EQ(StatusesOf(*set), "uuu");
    EXPECT_TRUE(set->FindKey({"A3"}));
}

TEST(ChangeLog, TakesChangesBack)
{
    const char *const changes = "edit; QTY=7; post; next; insert; CODE=N; post; last; delete; first; edit; "
                                "CODE=B; post";
    const struct
    {
        const char *Steps;
        const char *View;
        const char *Delta;
    } cases[] = {
        {"", ">B|7\nN|~\nA2|2\n", "unmodified A1|1\nmodified B|7\ninserted N|~\ndeleted A3|~\n"},
        {"undo", ">B|7\nN|~\nA2|2\nA3|~\n", "unmodified A1|1\nmodified B|7\ninserted N|~\n"},
        {"undo-follow", "B|7\nN|~\nA2|2\n>A3|~\n", "unmodified A1|1\nmodified B|7\ninserted N|~\n"},
        {"undo; undo", ">B|7\nA2|2\nA3|~\n", "unmodified A1|1\nmodified B|7\n"},
        {"undo; undo; undo", ">A1|1\nA2|2\nA3|~\n", ""},
        {"undo; undo; undo; undo", ">A1|1\nA2|2\nA3|~\n", ""},
        {"revert", ">A1|1\nN|~\nA2|2\n", "inserted N|~\ndeleted A3|~\n"},
        {"next; revert", "B|7\n>A2|2\n", "unmodified A1|1\nmodified B|7\ndeleted A3|~\n"},
        {"last; revert", "B|7\nN|~\n>A2|2\n", "unmodified A1|1\nmodified B|7\ninserted N|~\ndeleted A3|~\n"},
        {"edit; QTY=9; revert", ">A1|1\nN|~\nA2|2\n", "inserted N|~\ndeleted A3|~\n"},
        {"insert; QTY=9; revert", ">B|7\nN|~\nA2|2\n",
         "unmodified A1|1\nmodified B|7\ninserted N|~\ndeleted A3|~\n"},
        {"revert; edit; QTY=8; post", ">A1|8\nN|~\nA2|2\n",
         "inserted N|~\ndeleted A3|~\nunmodified A1|1\nmodified ~|8\n"},
        {"cancelupdates", ">A1|1\nA2|2\nA3|~\n", ""},
        {"next; cancelupdates", "A1|1\n>A2|2\nA3|~\n", ""},
        {"merge", ">B|7\nN|~\nA2|2\n", ""},
        {"merge; undo", ">B|7\nN|~\nA2|2\n", ""},
        {"merge; cancelupdates; edit; QTY=1; post", ">B|1\nN|~\nA2|2\n", "unmodified B|7\nmodified ~|1\n"},
        {"merge; next; delete", "B|7\n>A2|2\n", "deleted N|~\n"},
    };
    for (const auto &[steps, view, delta] : cases) {
        const auto set = ThreeParts();
        Do(*set, changes);
        Do(*set, steps);
        EXPECT_EQ(ViewOf(*set), view) << steps;
        EXPECT_EQ(DeltaOf(*set), delta) << steps;
    }
    const auto set = ThreeParts();
    EXPECT_FALSE(set->UndoLastChange(true));
    Do(*set, "delete");
    EXPECT_TRUE(set->UndoLastChange(true));
    EXPECT_EQ(ViewOf(*set, "CODE"), ">A1 A2 A3");
}

TEST(ChangeLog, KnowsTheOldValues)
{
    const auto set = ThreeParts();
    const TField &quantity = *set->FieldByName(u"QTY");
    EXPECT_EQ(quantity.OldValue(), QVariant(1));
    Do(*set, "edit; QTY=2");
    EXPECT_EQ(quantity.OldString(), "1");
    Do(*set, "post");
    EXPECT_EQ(quantity.OldString(), "1"); // before the logged change
    Do(*set, "edit; QTY=3");
    EXPECT_EQ(quantity.OldString(), "1");
    Do(*set, "cancel; append; QTY=4");
    EXPECT_TRUE(VarIsNull(quantity.OldValue()));
    Do(*set, "post");
    EXPECT_TRUE(VarIsNull(quantity.OldValue()));
    Do(*set, "merge");
    EXPECT_EQ(quantity.OldString(), "4");
}

TEST(ChangeLog, IsNotKeptWhenSwitchedOff)
{
    const auto set = ThreeParts();
    Do(*set, "edit; QTY=7; post; log off; append; CODE=N; post; first; next; delete; edit; QTY=3; post");
    EXPECT_FALSE(set->LogChanges());
    EXPECT_EQ(ViewOf(*set), "A1|7\n>A3|3\nN|~\n");
    EXPECT_EQ(DeltaOf(*set), "unmodified A1|1\nmodified ~|7\n");
    Do(*set, "log on; edit; QTY=4; post; cancelupdates");
    EXPECT_EQ(ViewOf(*set), "A1|1\n>A3|3\nN|~\n");

    TClientDataSet clone;
    clone.CloneCursor(set.get(), true);
    set->SetLogChanges(false);
    EXPECT_FALSE(clone.LogChanges());
    Do(clone, "delete");
    EXPECT_EQ(set->ChangeCount(), 0);
}

TEST(ChangeLog, EmptyingDropsIt)
{
    const auto set = ThreeParts();
    Do(*set, "edit; QTY=7; post; next; delete");
    set->EmptyDataSet();
    EXPECT_EQ(set->ChangeCount(), 0);
    EXPECT_EQ(TextOf(set->Data()), "CODE:string(10)|QTY:integer\n");
    Do(*set, "append; CODE=N; post");
    EXPECT_EQ(DeltaOf(*set), "inserted N|~\n");
}

TEST(ChangeLog, AppendedDataAreNoChanges)
{
    const auto set = ThreeParts();
    Do(*set, "next; edit; QTY=7; post; append; CODE=N; post; first; next");
    const auto other = DataSetOf({{"qty", ftInteger}, {"CODE", ftString, 10}}, {{4, "A4"}, {Null, "A5"}});
    Do(*other, "edit; qty=9; post");
    set->AppendData(other->Data());
    EXPECT_EQ(ViewOf(*set), "A1|1\n>A2|7\nA3|~\nN|~\nA4|4\nA5|~\n");
    EXPECT_EQ(DeltaOf(*set), "unmodified A2|2\nmodified ~|7\ninserted N|~\n");
    set->AppendData(PacketOf({{"CODE", ftString, 10}}, {{"A6"}}), false);
    EXPECT_EQ(ViewOf(*set, "CODE"), "A1 >A2 A3 N A4 A5 A6");

    for (const QList<TPacketField> &fields :
         {QList<TPacketField>{{"NAME", ftString, 10}},
          QList<TPacketField>{{"CODE", ftString, 10}, {"QTY", ftString}}}) {
        const TDataPacket packet =
            fields.size() == 1 ? PacketOf(fields, {{"X"}}) : PacketOf(fields, {{"X", "1"}});
        EXPECT_EQ(KindRaised([&] { set->AppendData(packet); }), "EDatabaseError");
    }
    EXPECT_EQ(set->RecordCount(), 7);
    TClientDataSet closed;
    closed.AppendData(set->Data());
    EXPECT_EQ(DeltaOf(closed), DeltaOf(*set));
}

TEST(ChangeLog, GoesWithTheData)
{
    const auto set = ThreeParts();
    Do(*set,
       "next; insert; CODE=N1; post; edit; QTY=5; post; last; edit; QTY=7; post; first; delete; append; "
       "CODE=N2; post");
    const QString view = ViewOf(*set);
    const QString delta = "inserted N1|5\nunmodified A3|~\nmodified ~|7\ndeleted A1|1\ninserted N2|~\n";
    EXPECT_EQ(view, "N1|5\nA2|2\nA3|7\n>N2|~\n");

    const QTemporaryDir folder;
    const QString file = folder.filePath("parts.kvp");
    set->SaveToFile(file);
    TClientDataSet loaded;
    loaded.LoadFromFile(file);
    TClientDataSet given;
    given.SetData(set->Data());
    for (TClientDataSet *copy : {&loaded, &given}) {
        EXPECT_EQ(ViewOf(*copy), ">N1|5\nA2|2\nA3|7\nN2|~\n");
        EXPECT_EQ(DeltaOf(*copy), delta);
        EXPECT_EQ(copy->ChangeCount(), 4);
        EXPECT_EQ(StatusesOf(*copy), "iumi");
        Do(*copy, "undo; undo; undo");
        EXPECT_EQ(ViewOf(*copy), "A1|1\n>N1|5\nA2|2\nA3|~\n");
        EXPECT_EQ(DeltaOf(*copy), "inserted N1|5\n");
        Do(*copy, "edit; CODE=N3; post; cancelupdates");
        EXPECT_EQ(ViewOf(*copy, "CODE"), "A1 >A2 A3");
    }
    EXPECT_EQ(DeltaOf(*set), delta); // what copies do is theirs alone

    set->SetFilter("QTY>6");
    set->SetFiltered(true);
    EXPECT_EQ(set->Data().RowCount(), 7); // of all rows, whatever is shown
    set->MergeChangeLog();
    EXPECT_EQ(TextOf(set->Data()), "CODE:string(10)|QTY:integer\nN1|5\nA2|2\nA3|7\nN2|~\n");
    EXPECT_EQ(KindRaised([&] { set->SaveToFile(folder.filePath("no/such.kvp")); }), "EFileError");
    EXPECT_EQ(KindRaised([&] { set->LoadFromFile(folder.filePath("none.kvp")); }), "EFileError");
    EXPECT_EQ(ViewOf(*set, "CODE"), ">A3");
}

TEST(ChangeLog, IsSharedByClones)
{
    const auto set = ThreeParts();
    TClientDataSet clone;
    clone.CloneCursor(set.get(), true);
    TLinkRecorder link(clone);
    Do(*set, "next; edit; QTY=7");
    EXPECT_EQ(ViewOf(clone), ">A1|1\nA2|2\nA3|~\n");
    Do(*set, "post");
    EXPECT_EQ(link.Take(), "dataset");
    EXPECT_EQ(ViewOf(clone), ">A1|1\nA2|7\nA3|~\n");
    Do(clone, "last; delete; first; insert; CODE=N; post");
    EXPECT_EQ(ViewOf(*set), "N|~\nA1|1\n>A2|7\n");
    EXPECT_EQ(DeltaOf(*set), "unmodified A2|2\nmodified ~|7\ndeleted A3|~\ninserted N|~\n");
    EXPECT_EQ(DeltaOf(clone), DeltaOf(*set));
    Do(clone, "undo; undo; undo");
    EXPECT_EQ(ViewOf(*set), "A1|1\n>A2|2\nA3|~\n");

    // a row that the other one edits
    Do(*set, "edit; QTY=8");
    Do(clone, "first; delete");
    EXPECT_EQ(PlaceOf(*set), "edit 1/2 modified");
    EXPECT_EQ(RowOf(*set), "A2|8");
    Do(clone, "delete");
    EXPECT_EQ(KindRaised([&] { set->Post(); }), "EDatabaseError");
    EXPECT_EQ(RowOf(*set), "A2|8");
    Do(*set, "cancel");
    EXPECT_EQ(ViewOf(*set, "CODE"), ">A3");
}

TEST(ChangeLog, ACloneAtTheEndSeesRowsComeBehind)
{
    for (const char *order : {"index", "index CODE"}) {
        const auto set = ThreeParts();
        TClientDataSet clone;
        clone.CloneCursor(set.get(), true);
        Do(clone, order);
        Do(clone, "last");
        Do(*set, "append; CODE=B; post");
        EXPECT_EQ(PlaceOf(clone), "browse 3/4") << order;
        Do(clone, "next; next");
        EXPECT_EQ(PlaceOf(clone), "browse 4/4 eof") << order;
        Do(*set, "first; delete; delete; delete; delete");
        EXPECT_EQ(PlaceOf(clone), "browse 0/0 bof eof") << order;
        Do(*set, "append; CODE=N; post");
        EXPECT_EQ(PlaceOf(clone), "browse 1/1") << order;
    }
}

TEST(ChangeLog, RowsOutliveTheSourceOfAClone)
{
    auto set = ThreeParts();
    TClientDataSet clone;
    TClientDataSet second;
    clone.CloneCursor(set.get(), true);
    second.CloneCursor(&clone, true);
    Do(*set, "edit; QTY=7; post");
    set->Close();
    Do(clone, "next; delete");
    set.reset();
    EXPECT_EQ(ViewOf(second), ">A1|7\nA3|~\n");
    clone.SetData(PacketOf({{"CODE", ftString}}, {}));
    Do(second, "cancelupdates");
    EXPECT_EQ(ViewOf(second), ">A1|1\nA2|2\nA3|~\n");
    EXPECT_EQ(ViewOf(clone), "");
}

} // namespace

} // namespace Korvane
