// SPDX-License-Identifier: MIT
#include "DataSetTesting.h"

using namespace Korvane;
using namespace Korvane::Testing;

namespace {

class Services : public DataSetTest
{
protected:
    Services()
    {
        AddParts({{u"P1"_s, u"a"_s, 1}, {u"P2"_s, u"b"_s, 2}, {u"P3"_s, u"c"_s, 3}});
        Run({u"insert into HEAD(BILLCODE, CUST) values('B1', 'c')"_s,
             u"insert into HEAD(BILLCODE, CUST) values('B2', 'd')"_s,
             u"insert into LINE(BILLCODE, NO, QTY) values('B1', '0001', 1)"_s,
             u"insert into LINE(BILLCODE, NO, QTY) values('B2', '0001', 2)"_s});
    }
};

class MasterDetail : public Services
{
protected:
    MasterDetail()
    {
        if (IsSkipped())
            return;
        Source.SetDataSet(Head.get());
        Line->SetMasterDataSource(&Source);
        Line->SetMasterField(u"BILLCODE"_s);
        Line->SetDetailField(u"BILLCODE"_s);
        Head->Open();
        Line->Open();
        Log();
    }

    const std::unique_ptr<TExTable> Head = Table(u"HEAD"_s);
    TExDataSource Source;
    const std::unique_ptr<TExTable> Line = Table(u"LINE"_s);
};

TEST_P(MasterDetail, EachMoveReadsTheDetail)
{
    EXPECT_EQ(Shown(*Line, u"BILLCODE;QTY"_s), "B1|1");
    Head->Next();
    EXPECT_EQ(Log(), QStringList{u"select * from LINE where BILLCODE='B2'"_s});
    EXPECT_EQ(Shown(*Line, u"BILLCODE;QTY"_s), "B2|2");
    EXPECT_EQ(Line->GetMasterFieldValues(), VarArrayOf({"B2"}));
}

TEST_P(MasterDetail, TypingIntoTheMasterReadsOnceAndNoMore)
{
    Head->Append();
    EXPECT_EQ(Line->RecordCount(), 0);
    Log();
    for (const QString &key : {u"B8"_s, u"B9"_s})
        Fill(*Head, {{u"BILLCODE"_s, key}});
    EXPECT_EQ(Log(), QStringList());
    Head->Cancel();
    Line->Open(); // in dsBrowse the detail follows again
    Log();
    Head->First();
    EXPECT_EQ(Log(), QStringList{u"select * from LINE where BILLCODE='B1'"_s});
}

TEST_P(MasterDetail, NewRowsAndRecordsHaveTheMastersKey)
{
    Head->Last();
    Line->Append();
    EXPECT_EQ(RowOf(*Line, u"BILLCODE;NO"_s), "B2|    ");
    Head->Edit();
    Fill(*Head, {{u"BILLCODE"_s, u"B7"_s}});
    Line->First();
    EXPECT_EQ(RowText(*Line->GetCurrentObject()).left(3), "B7|");
    Line->SetDetailField(u"BILLCODE;CODE"_s);
    Line->SetMasterField(u"BILLCODE;CUST"_s);
    EXPECT_EQ(MessageOf([&] { Line->GetCurrentObject(); }), "类TLineRecord没有属性“CUST”");
    Line->SetDetailField(u"BILLCODE"_s);
    EXPECT_EQ(MessageOf([&] { Line->SetDetailFieldValues(); }),
              "DetailField“BILLCODE”的字段少于MasterField“BILLCODE;CUST”");
}

TEST_P(MasterDetail, ADetailIsSavedByItsOwner)
{
    EXPECT_EQ(Line->CommitType(), ctBatchCommit);
    Line->SetCommitType(ctCommit);
    EXPECT_EQ(Line->CommitType(), ctBatchCommit);
    Line->DeleteTable();
    EXPECT_EQ(Log(), QStringList{u"delete from LINE where BILLCODE='B1'"_s});
    Line->SetMasterDataSource(nullptr);
    EXPECT_EQ(Line->CommitType(), ctCommit);
    EXPECT_EQ(Line->MasterField() + Line->DetailField(), "");
    Line->Open();
    EXPECT_EQ(Line->LastSQL(), "select * from LINE");
}

TEST_P(MasterDetail, NoDatasetFollowsItself)
{
    TExDataSource lines;
    lines.SetDataSet(Line.get());
    EXPECT_EQ(RaisedBy([&] { Head->SetMasterDataSource(&lines); }),
              "EDatabaseError: 数据集不能通过主从关系跟随它自己");
    EXPECT_EQ(Head->MasterDataSource(), nullptr);
    EXPECT_EQ(Head->CommitType(), ctCommit);
}

TEST_P(Services, Selection)
{
    const auto part = Table(u"PART"_s);
    part->Open();
    part->SelectAll(); // nothing without the column
    EXPECT_FALSE(part->IsSelectAll() || part->IsSelected());
    part->Next();
    ASSERT_EQ(part->GetSelected().size(), 1);
    EXPECT_EQ(RowText(*part->GetSelected()[0]).left(2), "P2");
    part->SetAllowSelect(true);
    part->SetCommitType(ctBatchCommit);
    part->Open();
    EXPECT_EQ(part->GetSelected().size(), 0);
    part->SelectAll();
    EXPECT_TRUE(part->IsSelectAll() && part->Eof());
    EXPECT_EQ(part->GetSelected().size(), 3);
    part->First();
    part->SetSelected(false);
    EXPECT_TRUE(part->IsSelectAll());
    EXPECT_EQ(Shown(*part, u"FSELECTED"_s), "N / Y / Y");
    EXPECT_EQ(part->GetSelected().size(), 2);
    part->UnSelectAll();
    EXPECT_FALSE(part->IsSelectAll());
    EXPECT_EQ(part->GetSelected().size(), 0);
    // Marks stand in the change log, so that a save writes the rows, with nothing changed.
    part->MergeChangeLog();
    part->First();
    part->SetSelected(true);
    Log();
    part->SaveChanged();
    EXPECT_EQ(Log().size(), 3);
    EXPECT_EQ(PartRows().left(27), "P1|a|1|~|~|u1|t|~ / P2|b|2|");
}

TEST_P(Services, MovingRowsInTheirOrder)
{
    const struct
    {
        int Row;
        bool IsDown;
        QString Shown;
        qsizetype Place;
    } rows[] = {
        {1, true, u"P2|1 / P1|2 / P3|3"_s, 2},  {2, true, u"P1|1 / P3|2 / P2|3"_s, 3},
        {3, true, u"P1|1 / P2|2 / P3|3"_s, 3},  {1, false, u"P1|1 / P2|2 / P3|3"_s, 1},
        {2, false, u"P2|1 / P1|2 / P3|3"_s, 1},
    };
    for (const auto &row : rows) {
        const auto part = Batch(u"PART"_s);
        part->SetIndexFieldNames(u"QTY"_s);
        part->SetRecNo(row.Row);
        row.IsDown ? part->MoveDown() : part->MoveUp();
        EXPECT_EQ(part->RecNo(), row.Place);
        EXPECT_EQ(Shown(*part, u"CODE;QTY"_s), row.Shown) << row.Row;
    }
    const auto direct = Table(u"PART"_s);
    direct->Open();
    direct->SetIndexFieldNames(u"QTY"_s);
    direct->Last();
    direct->MoveUp();
    EXPECT_EQ(Shown(*direct, u"CODE"_s), "P1 / P2 / P3");
    EXPECT_EQ(direct->ChangeCount(), 0);
    const auto unordered = Batch(u"PART"_s);
    unordered->MoveDown();
    EXPECT_EQ(unordered->ChangeCount(), 0);
}

TEST_P(Services, ClicksOnAHead)
{
    AddParts({{u"P0"_s, u"B1"_s, 9}}); // blind to capitals downwards
    const auto part = Table(u"PART"_s);
    part->Open();
    part->DoSorting(u"NOTE"_s);
    EXPECT_EQ(part->IndexFieldNames() + part->IndexName(), "");
    for (int i = 0; i < 2; ++i) {
        part->DoSorting(u"NAME"_s);
        EXPECT_EQ(Shown(*part, u"NAME"_s), "B1 / a / b / c");
        part->DoSorting(u"NAME"_s);
        EXPECT_EQ(part->IndexFieldNames() + part->IndexName(), "INDEX01");
        EXPECT_EQ(Shown(*part, u"NAME"_s), "c / B1 / b / a");
    }
    part->DoSortingDesc(u"GRADE"_s, u"CODE"_s);
    EXPECT_EQ(Shown(*part, u"CODE"_s), "P0 / P1 / P2 / P3");
    part->DoSortingDesc(u"CODE"_s, u"GRADE"_s);
    EXPECT_EQ(Shown(*part, u"CODE"_s), "P3 / P2 / P1 / P0");
    EXPECT_EQ(part->IndexDefs().size(), 1);
    const auto empty = Batch(u"NUMBERED"_s);
    empty->DoSorting(u"ID"_s);
    EXPECT_EQ(empty->IndexFieldNames(), "");
}

TEST_P(Services, MarksOutliveARead)
{
    const auto part = Table(u"PART"_s);
    part->SetMark(); // nothing while it was not read
    part->Open();
    part->Next();
    part->SetMark();
    part->Open();
    EXPECT_EQ(RowOf(*part, u"CODE"_s), "P1");
    part->GotoMark();
    EXPECT_EQ(RowOf(*part, u"CODE"_s), "P2");
    part->Close();
    part->GotoMark();
}

TEST_P(Services, Sums)
{
    const auto part = Table(u"PART"_s);
    part->Open();
    part->Next();
    part->SetFilter(u"QTY<"_s); // off, and half typed
    EXPECT_EQ(part->GetSumValue(u"QTY"_s), "6");
    EXPECT_EQ(part->GetSumValue(u"RATE"_s), "4.5");
    EXPECT_EQ(part->GetSumValue(u"QTY"_s, u"QTY>1"_s), "5");
    EXPECT_EQ(part->GetSumValue(u"QTY"_s, u"QTY>9"_s), "0");
    EXPECT_EQ(part->GetGroupValue(u"NAME"_s, u"QTY"_s), "6");
    EXPECT_NE(MessageOf([&] { part->GetSumValue(u"NAME"_s); }), "nothing");
    EXPECT_NE(MessageOf([&] { part->GetSumValue(u"QTY"_s, u"QTY>"_s); }), "nothing");
    EXPECT_EQ(part->Filter(), "QTY<");
    EXPECT_FALSE(part->Filtered() || part->ControlsDisabled());
    EXPECT_EQ(part->Aggregates().Count(), 0);
    const auto empty = Batch(u"NUMBERED"_s);
    EXPECT_EQ(empty->GetSumValue(u"ID"_s), "0");
}

TEST_P(Services, FindingByKeyAndText)
{
    const auto line = Table(u"LINE"_s);
    line->OpenTable({}, "BILLCODE", 0);
    EXPECT_TRUE(line->LocateA(u"b2;0001"_s));
    EXPECT_EQ(line->RecNo(), 2);
    EXPECT_FALSE(line->LocateA(u"B2;0009"_s));
    EXPECT_EQ(line->RecNo(), 2);
    line->SetFilter(u"QTY=2"_s);
    line->SetFiltered(true);
    EXPECT_TRUE(line->FindText(u"BILLCODE;QTY"_s, VarArrayOf({"b1", 1}))); // behind the filter too
    EXPECT_FALSE(line->FindText(u"QTY"_s, 7));
    EXPECT_EQ(RowOf(*line, u"QTY"_s), "2");
}

INSTANTIATE_TEST_SUITE_P(Places, Services, testing::ValuesIn(AllPlaces()), PlaceName);
INSTANTIATE_TEST_SUITE_P(Places, MasterDetail, testing::ValuesIn(AllPlaces()), PlaceName);

} // namespace
