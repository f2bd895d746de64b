// SPDX-License-Identifier: MIT
// Datasets that are opened on their first rows.
#include "platform/core/Variants.h"
#include "support/DataSets.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace Korvane {

namespace {

const QList<TPacketField> Fields = {{"CODE", ftString, 4}, {"QTY", ftInteger}};
const QString Shown = u">A B C D E"_s;

TDataPacket Rows() { return PacketOf(Fields, {{"A", 5}, {"B", 4}, {"C", 3}, {"D", 2}, {"E", 1}}); }

/// A dataset open on the first two of five rows.
struct TFetching
{
    explicit TFetching(const TDataPacket &rows = Rows()) : Feed(std::make_shared<TTestFeed>(rows))
    {
        Set.SetData(TTestFeed::Begin(Feed, 2));
    }

    std::shared_ptr<TTestFeed> Feed;
    TClientDataSet Set;
};

} // namespace

TEST(Fetching, WhatOnlyNeedsTheFirstRowsFetchesNoOthers)
{
    TFetching fetching;
    TClientDataSet &set = fetching.Set;
    const auto check = [&](const char *what) {
        EXPECT_FALSE(set.IsFetched()) << what;
        EXPECT_EQ(set.FetchedCount(), 2) << what;
    };
    check("open");
    EXPECT_FALSE(set.IsEmpty() || set.Eof());
    EXPECT_EQ(set.RecNo(), 1);
    EXPECT_EQ(set.MoveBy(1), 1);
    EXPECT_FALSE(set.Eof());
    set.SetRecNo(2);
    set.First();
    EXPECT_EQ(RowOf(set), u"A|5"_s);
    set.GotoBookmark(set.BookmarkAt(1));
    EXPECT_EQ(set.FieldByName(u"CODE")->OldValue(), "B");
    set.Prior();
    set.Refresh();
    set.CheckBrowseMode();
    set.MergeChangeLog();
    set.CancelUpdates();
    EXPECT_EQ(set.Delta().RowCount() + set.ChangeCount(), 0);
    {
        const TDataSet::TPeek peek(set, 3);
        EXPECT_TRUE(set.FieldByName(u"CODE")->IsNull()) << "what is not there is not read";
    }
    check("reading");
    set.FetchNext(QDeadlineTimer(0));
    check("reading on");
    set.Close();
    EXPECT_TRUE(set.IsFetched());
}

TEST(Fetching, WhatDependsOnAllRowsFetchesThem)
{
    const struct
    {
        const char *What;
        std::function<void(TClientDataSet &)> Do;
        QString Rows = Shown;
    } rows[] = {
        {"RecordCount", [](auto &set) { EXPECT_EQ(set.RecordCount(), 5); }},
        {"FetchAll", [](auto &set) { set.FetchAll(); }},
        {"Last", [](auto &set) { set.Last(); }, u"A B C D >E"_s},
        {"Next",
         [](auto &set) {
             set.Next();
             set.Next();
             EXPECT_FALSE(set.Eof());
         },
         u"A B >C D E"_s},
        {"MoveBy",
         [](auto &set) {
             EXPECT_EQ(set.MoveBy(std::numeric_limits<qsizetype>::max()), 4);
             EXPECT_TRUE(set.Eof());
         },
         u"A B C D >E"_s},
        {"SetRecNo", [](auto &set) { set.SetRecNo(3); }, u"A B >C D E"_s},
        {"Locate", [](auto &set) { EXPECT_TRUE(set.Locate(u"CODE"_s, u"D"_s)); }, u"A B C >D E"_s},
        {"Lookup", [](auto &set) { EXPECT_EQ(set.Lookup(u"CODE"_s, u"D"_s, u"QTY"_s), 2); }},
        {"an order", [](auto &set) { set.SetIndexFieldNames(u"QTY"_s); }, u"E D C B >A"_s},
        {"a unique index", [](auto &set) { set.AddIndex(u"X"_s, u"CODE"_s, ixUnique); }},
        {"a filter", [](auto &set) { Do(set, u"filter QTY<4"_s); }, u">C D E"_s},
        {"a status", [](auto &set) { set.SetStatusFilter(usfUnmodified); }},
        {"an edit", [](auto &set) { Do(set, u"edit;QTY=9;post"_s); }},
        {"an insertion", [](auto &set) { Do(set, u"insert;CODE=N;post"_s); }, u">N A B C D E"_s},
        {"an addition", [](auto &set) { Do(set, u"append;CODE=N;post"_s); }, u"A B C D E >N"_s},
        {"a deletion", [](auto &set) { set.Delete(); }, u">B C D E"_s},
        {"Data", [](auto &set) { EXPECT_EQ(TextOf(set.Data()), TextOf(Rows())); }},
        {"AppendData",
         [](auto &set) {
             set.AppendData(PacketOf(Fields, {{"F", 0}}));
         },
         u">A B C D E F"_s},
        {"SaveToFile",
         [](auto &set) {
             const QTemporaryDir folder;
             set.SaveToFile(folder.filePath(u"a"_s));
             EXPECT_EQ(TDataPacket::LoadFromFile(folder.filePath(u"a"_s)).RowCount(), 5);
         }},
        {"CloneCursor",
         [](auto &set) {
             TClientDataSet clone;
             clone.CloneCursor(&set, true);
             EXPECT_EQ(ViewOf(clone, u"CODE"_s), Shown);
         }},
        {"a sum",
         [](auto &set) {
             TAggregate *sum = set.Aggregates().Add();
             sum->SetExpression(u"sum(QTY)"_s);
             sum->SetActive(true);
             EXPECT_EQ(VarToInt(sum->Value()), 15);
         }},
    };
    for (const auto &row : rows) {
        TFetching fetching;
        row.Do(fetching.Set);
        EXPECT_TRUE(fetching.Set.IsFetched()) << row.What;
        EXPECT_EQ(fetching.Set.FetchedCount(), row.Rows.count(u' ') + 1) << row.What;
        EXPECT_EQ(ViewOf(fetching.Set, u"CODE"_s), row.Rows) << row.What;
    }
    TFetching emptied;
    emptied.Set.EmptyDataSet();
    EXPECT_TRUE(emptied.Set.IsFetched() && emptied.Set.RecordCount() == 0);
}

TEST(Fetching, AnOrderOrAFilterThatWaitsHasAllRowsFetchedAtOnce)
{
    for (const QString &steps : {u"index QTY"_s, u"filter QTY<4"_s}) {
        TFetching fetching;
        fetching.Set.Close();
        Do(fetching.Set, steps);
        fetching.Set.SetData(TTestFeed::Begin(fetching.Feed, 2));
        EXPECT_TRUE(fetching.Set.IsFetched());
        EXPECT_EQ(RowOf(fetching.Set), steps.startsWith(u"index") ? u"E|1"_s : u"C|3"_s);
    }
    // A handler of the opening may want them too, by a filter or by asking.
    TFetching fetching;
    fetching.Set.Close();
    fetching.Set.BeforeOpen = [](TDataSet *set) {
        set->SetFilter(u"QTY<3"_s);
        set->SetFiltered(true);
    };
    qsizetype count = 0;
    fetching.Set.AfterOpen = [&](TDataSet *set) { count = set->RecordCount(); };
    fetching.Set.SetData(TTestFeed::Begin(fetching.Feed, 2));
    EXPECT_EQ(count, 2);
    EXPECT_EQ(ViewOf(fetching.Set, u"CODE"_s), u">D E"_s);
}

TEST(Fetching, TellsLinksOnceAndLeavesTheRowWhereItIs)
{
    TFetching fetching;
    TClientDataSet &set = fetching.Set;
    set.Next();
    TLinkRecorder link(set);
    TDataSetRecorder events(set);
    const TBookmark bookmark = set.GetBookmark();
    set.FetchNext(QDeadlineTimer(0));
    set.FetchNext(QDeadlineTimer(0));
    EXPECT_EQ(link.Take(), "");
    set.FetchNext(QDeadlineTimer(0));
    EXPECT_EQ(link.Take(), "fetched") << "no change of the dataset, for which a detail would be read anew";
    EXPECT_EQ(events.Take(), "");
    EXPECT_EQ(PlaceOf(set), u"browse 2/5"_s);
    EXPECT_EQ(set.PlaceOf(bookmark), 1);

    // Who is told may close the dataset.
    TFetching closed;
    struct TCloser : TDataLink
    {
        void RowsFetched() override { DataSet()->Close(); }
    } closer;
    TDataSource source;
    source.SetDataSet(&closed.Set);
    closer.SetDataSource(&source);
    closed.Set.FetchAll();
    EXPECT_FALSE(closed.Set.Active());
}

TEST(Fetching, WhatFailsIsToldWhereverAllRowsAreNeededAndNothingIsLost)
{
    TFetching fetching;
    TClientDataSet &set = fetching.Set;
    fetching.Feed->Break(u"断线"_s);
    const QString failure = u"EDatabaseError: 断线"_s;
    for (const auto &call :
         {std::function<void()>([&] { set.FetchNext(QDeadlineTimer(0)); }),
          std::function<void()>([&] { set.Last(); }), std::function<void()>([&] { set.Edit(); }),
          std::function<void()>([&] { set.Append(); }), std::function<void()>([&] { set.Delete(); }),
          std::function<void()>([&] { set.SetIndexFieldNames(u"QTY"_s); }),
          std::function<void()>([&] { set.Locate(u"CODE"_s, u"E"_s); }),
          std::function<void()>([&] { set.RecordCount(); })}) {
        EXPECT_EQ(RaisedBy(call), failure);
        EXPECT_EQ(set.State(), dsBrowse);
        EXPECT_FALSE(set.IsFetched());
        EXPECT_EQ(set.IndexFieldNames(), "");
    }
    EXPECT_EQ(RowOf(set), u"A|5"_s);

    // A value that its column cannot hold: the fields stand already.
    TFetching other(PacketOf(Fields, {{"A", 1}, {"B", 2}, {"C", u"many"_s}}));
    TClientDataSet narrow;
    TFirstRows rows = TTestFeed::Begin(other.Feed, 2);
    rows.Rows = PacketOf(Fields, {{"A", 1}, {"B", 2}});
    narrow.SetData(rows);
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(RaisedBy([&] { narrow.FetchAll(); }),
                  u"EDatabaseError: 字段“QTY”后面的值与前面的记录类型不同，不能分步读取"_s);
    EXPECT_EQ(narrow.FetchedCount(), 2);
}

} // namespace Korvane
