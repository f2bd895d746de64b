// SPDX-License-Identifier: MIT
#include "support/DataSets.h"

#include "platform/data/dataset/Fields.h"

#include <gtest/gtest.h>

namespace Korvane {

namespace {

const QVariant Null;

std::unique_ptr<TClientDataSet> ThreeParts()
{
    return DataSetOf({{"CODE", ftString, 10}, {"QTY", ftInteger}}, {{"A1", 1}, {"A2", 2}, {"A3", 3}});
}

TDataPacket ThreePartsPacket() { return ThreeParts()->Data(); }

/// Fails on demand where the machine works on its rows.
class TFailingSet : public TClientDataSet
{
public:
    using TClientDataSet::TClientDataSet;

    mutable int Failures = 0;

protected:
    const TRowReader &RowOf(quint32 record) const override
    {
        FailOnDemand();
        return TClientDataSet::RowOf(record);
    }
    void InternalDelete(quint32 record) override
    {
        FailOnDemand();
        TClientDataSet::InternalDelete(record);
    }
    void InternalModify(quint32 record, const TRowValues &row) override
    {
        FailOnDemand();
        TClientDataSet::InternalModify(record, row);
    }

private:
    void FailOnDemand() const
    {
        if (Failures > 0 && Failures-- > 0)
            throw EDatabaseError(QStringLiteral("磁盘已满"));
    }
};

// ---- events ---------------------------------------------------------------------------

TEST(DataSetStates, OpensAndClosesWithEvents)
{
    TClientDataSet set;
    TDataSetRecorder recorder(set);
    EXPECT_EQ(PlaceOf(set), "inactive");
    set.SetData(ThreePartsPacket());
    EXPECT_EQ(recorder.Take(), "BeforeOpen =browse AfterOpen AfterScroll");
    EXPECT_EQ(PlaceOf(set), "browse 1/3 bof");
    set.SetData(ThreePartsPacket());
    EXPECT_EQ(recorder.Take(), "BeforeClose =inactive AfterClose BeforeOpen =browse AfterOpen AfterScroll");
    set.Open();
    EXPECT_EQ(recorder.Take(), "");
    set.Close();
    EXPECT_EQ(recorder.Take(), "BeforeClose =inactive AfterClose");
    set.Close();
    EXPECT_EQ(recorder.Take(), "");
    EXPECT_EQ(set.FieldCount(), 0);
    set.SetData(PacketOf({{"CODE", ftString, 10}}, {}));
    EXPECT_EQ(PlaceOf(set), "browse 0/0 bof eof");
}

TEST(DataSetStates, FiresEventsInOrder)
{
    const struct
    {
        const char *Before;
        const char *Step;
        const char *Events;
        const char *Place;
    } cases[] = {
        {"next", "first", "BeforeScroll AfterScroll", "browse 1/3 bof"},
        {"", "last", "BeforeScroll AfterScroll", "browse 3/3 eof"},
        {"", "next", "BeforeScroll AfterScroll", "browse 2/3"},
        {"last", "prior", "BeforeScroll AfterScroll", "browse 2/3"},
        {"", "move 2", "BeforeScroll AfterScroll", "browse 3/3"},
        {"", "move 9", "BeforeScroll AfterScroll", "browse 3/3 eof"},
        {"last", "move -9", "BeforeScroll AfterScroll", "browse 1/3 bof"},
        {"", "recno 3", "BeforeScroll AfterScroll", "browse 3/3"},
        {"next", "edit", "BeforeEdit =edit AfterEdit", "edit 2/3"},
        {"next; edit", "edit", "", "edit 2/3"},
        {"next", "insert", "BeforeInsert BeforeScroll =insert OnNewRecord AfterInsert AfterScroll",
         "insert 0/3"},
        {"next", "append", "BeforeInsert BeforeScroll =insert OnNewRecord AfterInsert AfterScroll",
         "insert 0/3"},
        {"next; edit", "post", "BeforePost =browse AfterPost", "browse 2/3"},
        {"next; insert", "post", "BeforePost =browse AfterPost", "browse 2/4"},
        {"next; append", "post", "BeforePost =browse AfterPost", "browse 4/4"},
        {"next; edit; QTY=9", "cancel", "BeforeCancel =browse AfterCancel", "browse 2/3"},
        {"next; insert", "cancel", "BeforeCancel BeforeScroll =browse AfterCancel AfterScroll", "browse 2/3"},
        {"next; append", "cancel", "BeforeCancel BeforeScroll =browse AfterCancel AfterScroll", "browse 2/3"},
        {"next", "cancel", "", "browse 2/3"},
        {"next", "delete", "BeforeDelete BeforeScroll AfterDelete AfterScroll", "browse 2/2"},
        {"last", "delete", "BeforeDelete BeforeScroll AfterDelete AfterScroll", "browse 2/2"},
        {"next; edit", "delete", "BeforeDelete BeforeScroll =browse AfterDelete AfterScroll", "browse 2/2"},
        {"next; insert; QTY=9", "delete", "BeforeCancel BeforeScroll =browse AfterCancel AfterScroll",
         "browse 2/3"},
        // the row is left: posted when something was written, or else cancelled
        {"next; edit; QTY=9", "next", "BeforePost =browse AfterPost BeforeScroll AfterScroll", "browse 3/3"},
        {"next; edit", "next", "BeforeCancel =browse AfterCancel BeforeScroll AfterScroll", "browse 3/3"},
        {"next; insert; QTY=9", "last", "BeforePost =browse AfterPost BeforeScroll AfterScroll",
         "browse 4/4 eof"},
        {"next; insert", "first",
         "BeforeCancel BeforeScroll =browse AfterCancel AfterScroll BeforeScroll AfterScroll",
         "browse 1/3 bof"},
        {"edit; QTY=9", "insert",
         "BeforePost =browse AfterPost BeforeInsert BeforeScroll =insert OnNewRecord AfterInsert AfterScroll",
         "insert 0/3"},
        {"edit; QTY=9", "filter QTY>1", "BeforePost =browse AfterPost BeforeScroll AfterScroll",
         "browse 1/3 bof"},
        {"next; edit; QTY=9", "index CODE", "BeforePost =browse AfterPost", "browse 2/3"},
        {"next; edit; QTY=9", "merge", "BeforePost =browse AfterPost", "browse 2/3"},
        {"next; edit; QTY=9", "refresh", "BeforePost =browse AfterPost", "browse 2/3"},
    };
    for (const auto &[before, step, events, place] : cases) {
        const auto set = ThreeParts();
        Do(*set, before);
        TDataSetRecorder recorder(*set);
        Do(*set, step);
        EXPECT_EQ(recorder.Take(), events) << before << " / " << step;
        EXPECT_EQ(PlaceOf(*set), place) << before << " / " << step;
    }
}

TEST(DataSetStates, RefusesWhatTheStateDoesNotAllow)
{
    TClientDataSet closed;
    for (const char *step : {"first", "next", "edit", "insert", "append", "delete", "post", "recno 1",
                             "revert", "undo", "merge", "cancelupdates", "open"})
        EXPECT_EQ(KindRaised([&] { Do(closed, step); }), "EDatabaseError") << step;
    EXPECT_EQ(closed.RecordCount(), 0);
    EXPECT_EQ(closed.RecNo(), 0);

    const auto set = ThreeParts();
    for (const char *step : {"post", "recno 0", "recno 4", "CODE=X"})
        EXPECT_EQ(KindRaised([&] { Do(*set, step); }), "EDatabaseError") << step;
    EXPECT_EQ(ViewOf(*set, "CODE"), ">A1 A2 A3");
    Do(*set, "delete; delete; delete");
    EXPECT_EQ(PlaceOf(*set), "browse 0/0 bof eof");
    EXPECT_EQ(KindRaised([&] { set->Delete(); }), "EDatabaseError");
    set->Edit(); // of nothing is an insertion
    EXPECT_EQ(PlaceOf(*set), "insert 0/0");
}

TEST(DataSetStates, AReadOnlyOneIsNotChanged)
{
    const auto set = ThreeParts();
    set->SetReadOnly(true);
    TDataSetRecorder recorder(*set);
    for (const char *step : {"edit", "insert", "append", "delete"})
        EXPECT_EQ(KindRaised([&] { Do(*set, step); }), "EDatabaseError") << step;
    EXPECT_EQ(recorder.Take(), "");
    EXPECT_EQ(PlaceOf(*set), "browse 1/3 bof");
    set->SetReadOnly(false);
    Do(*set, "edit; QTY=7; post");
    EXPECT_EQ(ViewOf(*set, "QTY"), ">7 2 3");
}

TEST(DataSetStates, ABeforeEventStopsWhatItAnnounces)
{
    const struct
    {
        const char *Before;
        const char *Step;
        const char *StopAt;
        const char *Events;
        const char *Place;
        const char *Row = "A2|2";
    } cases[] = {
        {"next", "edit", "BeforeEdit", "BeforeEdit", "browse 2/3"},
        {"next", "insert", "BeforeInsert", "BeforeInsert", "browse 2/3"},
        {"next", "append", "BeforeScroll", "BeforeInsert BeforeScroll", "browse 2/3"},
        {"next", "insert", "OnNewRecord", "BeforeInsert BeforeScroll =insert OnNewRecord =browse",
         "browse 2/3"},
        {"next; edit; QTY=9", "post", "BeforePost", "BeforePost", "edit 2/3 modified", "A2|9"},
        {"next; insert; QTY=9", "post", "BeforePost", "BeforePost", "insert 0/3 modified", "~|9"},
        {"next; edit; QTY=9", "next", "BeforePost", "BeforePost", "edit 2/3 modified", "A2|9"},
        {"next; edit; QTY=9", "next", "BeforeScroll", "BeforePost =browse AfterPost BeforeScroll",
         "browse 2/3", "A2|9"},
        {"next; edit; QTY=9", "cancel", "BeforeCancel", "BeforeCancel", "edit 2/3 modified", "A2|9"},
        {"next; insert; QTY=9", "cancel", "BeforeScroll", "BeforeCancel BeforeScroll", "insert 0/3 modified",
         "~|9"},
        {"next", "delete", "BeforeDelete", "BeforeDelete", "browse 2/3"},
        {"next", "delete", "BeforeScroll", "BeforeDelete BeforeScroll", "browse 2/3"},
        {"next", "next", "BeforeScroll", "BeforeScroll", "browse 2/3"},
        {"next", "first", "BeforeScroll", "BeforeScroll", "browse 2/3"},
        {"next", "last", "BeforeScroll", "BeforeScroll", "browse 2/3"},
        {"next", "recno 1", "BeforeScroll", "BeforeScroll", "browse 2/3"},
        {"next", "close", "BeforeClose", "BeforeClose", "browse 2/3"},
    };
    for (const auto &[before, step, stopAt, events, place, row] : cases) {
        for (const char *message : {"", "不允许"}) {
            const auto set = ThreeParts();
            Do(*set, before);
            TDataSetRecorder recorder(*set);
            recorder.StopAt(stopAt, message);
            EXPECT_EQ(KindRaised([&] { Do(*set, step); }), *message ? "EDatabaseError" : "EAbort")
                << step << " / " << stopAt;
            EXPECT_EQ(recorder.Take(), events) << step << " / " << stopAt;
            EXPECT_EQ(PlaceOf(*set), place) << step << " / " << stopAt;
            EXPECT_EQ(RowOf(*set), row) << step << " / " << stopAt;
        }
    }
}

TEST(DataSetStates, BeforeOpenStopsTheOpening)
{
    TClientDataSet set;
    TDataSetRecorder recorder(set);
    recorder.StopAt("BeforeOpen");
    EXPECT_EQ(KindRaised([&] { set.SetData(ThreePartsPacket()); }), "EAbort");
    EXPECT_EQ(PlaceOf(set), "inactive");
    recorder.StopAt({});
    set.SetData(ThreePartsPacket());
    EXPECT_EQ(PlaceOf(set), "browse 1/3 bof");
}

// ---- new rows -------------------------------------------------------------------------

TEST(DataSetStates, ANewRowBeginsWithDefaults)
{
    const auto set = ThreeParts();
    set->FieldByName(u"QTY")->SetDefaultExpression("5");
    set->OnNewRecord = [](TDataSet *source) {
        source->FieldByName(u"CODE")->SetAsString("N" + source->FieldByName(u"QTY")->AsString());
    };
    set->Insert();
    EXPECT_EQ(RowOf(*set), "N5|5");
    EXPECT_EQ(PlaceOf(*set), "insert 0/3"); // what a row begins with is nothing written
    set->Next();
    EXPECT_EQ(ViewOf(*set, "CODE"), "A1 >A2 A3");
    Do(*set, "insert; post");
    EXPECT_EQ(ViewOf(*set), "A1|1\n>N5|5\nA2|2\nA3|3\n");

    set->FieldByName(u"QTY")->SetDefaultExpression("five");
    EXPECT_EQ(KindRaised([&] { set->Append(); }), "EConvertError");
    EXPECT_EQ(PlaceOf(*set), "browse 2/4");
    EXPECT_EQ(RowOf(*set), "N5|5");
}

TEST(DataSetStates, ARequiredFieldMustHaveAValue)
{
    const auto set = ThreeParts();
    set->FieldByName(u"CODE")->SetRequired(true);
    TDataSetRecorder recorder(*set);
    Do(*set, "insert; QTY=4");
    recorder.Take();
    EXPECT_EQ(KindRaised([&] { set->Post(); }), "EDatabaseError");
    EXPECT_EQ(PlaceOf(*set), "insert 0/3 modified");
    Do(*set, "CODE=A0; post");
    EXPECT_EQ(ViewOf(*set, "CODE"), ">A0 A1 A2 A3");
}

// ---- failures -------------------------------------------------------------------------

TEST(DataSetStates, AnErrorHandlerChooses)
{
    const struct
    {
        TDataAction Action;
        int Failures;
        const char *Raised;
        const char *EditPlace;
        const char *View;
        int Asked;
    } cases[] = {
        {daFail, 1, "EDatabaseError", "edit 1/3 modified", ">9 2 3", 1},
        {daAbort, 1, "EAbort", "edit 1/3 modified", ">9 2 3", 1},
        {daRetry, 2, "nothing", "browse 1/3", ">9 2 3", 2},
        {daRetry, 0, "nothing", "browse 1/3", ">9 2 3", 0},
    };
    for (const auto &[action, failures, raised, editPlace, view, asked] : cases) {
        TFailingSet set;
        set.SetData(ThreePartsPacket());
        QStringList asks;
        const auto handler = [&asks, chosen = action](TDataSet *, const EDatabaseError &error,
                                                      TDataAction &choice) {
            asks += error.Message();
            EXPECT_EQ(choice, daFail);
            choice = chosen;
        };
        set.OnEditError = handler;
        set.Failures = failures;
        EXPECT_EQ(KindRaised([&] { set.Edit(); }), raised);
        EXPECT_EQ(PlaceOf(set), raised == QLatin1String("nothing") ? "edit 1/3" : "browse 1/3 bof");
        EXPECT_EQ(asks.size(), asked);

        set.OnPostError = handler;
        set.Failures = 0;
        Do(set, "edit; QTY=9");
        set.Failures = failures;
        EXPECT_EQ(KindRaised([&] { set.Post(); }), raised);
        EXPECT_EQ(PlaceOf(set), editPlace);
        EXPECT_EQ(ViewOf(set, "QTY"), view);
        EXPECT_EQ(asks.size(), 2 * asked);

        set.Failures = 0;
        Do(set, "cancel; next");
        set.OnDeleteError = handler;
        set.Failures = failures;
        EXPECT_EQ(KindRaised([&] { set.Delete(); }), raised);
        EXPECT_EQ(ViewOf(set, "CODE"), raised == QLatin1String("nothing") ? "A1 >A3" : "A1 >A2 A3");
        EXPECT_EQ(PlaceOf(set), raised == QLatin1String("nothing") ? "browse 2/2" : "browse 2/3");
        EXPECT_EQ(asks.size(), 3 * asked);
    }
}

// ---- moving ---------------------------------------------------------------------------

TEST(DataSetStates, MovesWithinTheRows)
{
    const struct
    {
        const char *Before;
        qsizetype Distance;
        qsizetype Moved;
        const char *Place;
    } cases[] = {
        {"", 1, 1, "browse 2/3"},
        {"", 2, 2, "browse 3/3"},
        {"", 3, 2, "browse 3/3 eof"},
        {"", -1, 0, "browse 1/3 bof"},
        {"", 0, 0, "browse 1/3 bof"},
        {"move 2", 1, 0, "browse 3/3 eof"},
        {"last", 1, 0, "browse 3/3 eof"},
        {"last", -1, -1, "browse 2/3"},
        {"last", -2, -2, "browse 1/3"},
        {"last", -3, -2, "browse 1/3 bof"},
        {"delete; delete; delete", 1, 0, "browse 0/0 bof eof"},
        {"delete; delete", 1, 0, "browse 1/1 eof"},
    };
    for (const auto &[before, distance, moved, place] : cases) {
        const auto set = ThreeParts();
        Do(*set, before);
        EXPECT_EQ(set->MoveBy(distance), moved) << before << " / " << distance;
        EXPECT_EQ(PlaceOf(*set), place) << before << " / " << distance;
    }
}

TEST(DataSetStates, AWalkSeesEachRowOnce)
{
    const auto set = ThreeParts();
    QString seen;
    for (set->First(); !set->Eof(); set->Next()) {
        seen += set->FieldByName(u"CODE")->AsString() + u' ';
        Do(*set, "edit; QTY=0; post");
    }
    for (set->Last(); !set->Bof(); set->Prior())
        seen += set->FieldByName(u"CODE")->AsString() + u' ';
    EXPECT_EQ(seen, "A1 A2 A3 A3 A2 A1 ");
}

TEST(DataSetStates, BookmarksStayWithTheirRows)
{
    const auto set = ThreeParts();
    Do(*set, "next");
    const TBookmark second = set->GetBookmark();
    for (const char *steps : {"first; insert; CODE=A0; post", "index QTY", "recno 1; edit; QTY=8; post",
                              "filter QTY<>1", "index CODE", "filter"}) {
        Do(*set, steps);
        set->First();
        ASSERT_TRUE(set->BookmarkValid(second)) << steps;
        set->GotoBookmark(second);
        EXPECT_EQ(set->FieldByName(u"CODE")->AsString(), "A2") << steps;
        EXPECT_EQ(set->GetBookmark(), second) << steps;
    }
    Do(*set, "filter CODE='A1'");
    EXPECT_FALSE(set->BookmarkValid(second));
    EXPECT_EQ(KindRaised([&] { set->GotoBookmark(second); }), "EDatabaseError");
    EXPECT_EQ(ViewOf(*set, "CODE"), ">A1");
    Do(*set, "filter");
    set->SetData(ThreePartsPacket());
    EXPECT_FALSE(set->BookmarkValid(second));
    Do(*set, "insert");
    EXPECT_TRUE(set->GetBookmark().IsNull());
}

TEST(DataSetStates, EmptyingEndsBookmarks)
{
    const auto set = ThreeParts();
    const TBookmark first = set->GetBookmark();
    set->EmptyDataSet();
    EXPECT_EQ(PlaceOf(*set), "browse 0/0 bof eof");
    Do(*set, "append; CODE=N; post");
    EXPECT_FALSE(set->BookmarkValid(first));
}

// ---- controls -------------------------------------------------------------------------

TEST(DataSetStates, TellsLinks)
{
    const struct
    {
        const char *Before;
        const char *Step;
        const char *Told;
    } cases[] = {
        {"", "next", "leave scroll(1)"},
        {"last", "move -2", "leave scroll(-2)"},
        {"next", "first", "leave dataset"},
        {"", "edit", "leave editing record"},
        {"edit", "QTY=7", "record(QTY)"},
        {"edit; QTY=7", "post", "update leave editing dataset"},
        {"", "index CODE", "leave dataset"},
        {"", "delete", "leave dataset"},
        {"", "close", "active"},
    };
    for (const auto &[before, step, told] : cases) {
        const auto set = ThreeParts();
        Do(*set, before);
        TLinkRecorder link(*set);
        Do(*set, step);
        EXPECT_EQ(link.Take(), told) << before << " / " << step;
    }
}

TEST(DataSetStates, DisabledControlsGetOneSummary)
{
    const auto set = ThreeParts();
    TLinkRecorder link(*set);
    set->DisableControls();
    set->DisableControls();
    Do(*set, "next; edit; QTY=9; post; index QTY; append; post");
    set->EnableControls();
    EXPECT_TRUE(set->ControlsDisabled());
    link.Take();
    set->EnableControls();
    EXPECT_FALSE(set->ControlsDisabled());
    EXPECT_EQ(link.Take(), "dataset");
    set->EnableControls(); // one too many does no harm
    EXPECT_FALSE(set->ControlsDisabled());

    set->DisableControls();
    set->Close(); // takes the fields with it, and is told at once
    EXPECT_EQ(link.Take(), "active");
    set->EnableControls();
    EXPECT_EQ(link.Take(), "");
}

TEST(DataSetStates, PeeksAtRowsWithoutMoving)
{
    const auto set = ThreeParts();
    Do(*set, "next; edit; QTY=9");
    TDataSetRecorder recorder(*set);
    const TField &code = *set->FieldByName(u"CODE");
    const TField &quantity = *set->FieldByName(u"QTY");
    {
        const TDataSet::TPeek third(*set, 2);
        EXPECT_EQ(code.AsString(), "A3");
        EXPECT_EQ(PlaceOf(*set), "edit 2/3 modified");
        {
            const TDataSet::TPeek second(*set, 1);
            EXPECT_EQ(quantity.AsInteger(), 9);
            const TDataSet::TPeek beyond(*set, 3);
            EXPECT_TRUE(code.IsNull());
        }
        EXPECT_EQ(code.AsString(), "A3");
    }
    EXPECT_EQ(code.AsString(), "A2");
    EXPECT_EQ(recorder.Take(), "");
    Do(*set, "cancel; insert; CODE=N");
    const TDataSet::TPeek second(*set, 1);
    EXPECT_EQ(RowOf(*set), "A2|2");
}

} // namespace

} // namespace Korvane
