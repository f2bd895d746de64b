// SPDX-License-Identifier: MIT
#include "DataSetTesting.h"

#include "platform/core/Cursor.h"

using namespace Korvane;
using namespace Korvane::Testing;

namespace {

const QString InTable = u"数据库中已存在相同的记录，请重新输入\r"_s;
const QString InMemory = u"当前数据中已存在相同的记录，请重新输入\r"_s;

class Validation : public DataSetTest
{
protected:
    Validation()
    {
        AddParts({{u"P1"_s, u"a"_s, 1}, {u"P2"_s, u"b"_s, 2}});
        Run({u"insert into LINE(BILLCODE, NO, CODE, QTY) values('B1', '0001', 'P1', 1)"_s,
             u"insert into LINE(BILLCODE, NO, CODE, QTY) values('B1', '0002', 'P2', 2)"_s});
    }
};

TEST_P(Validation, DefaultsOfANewRow)
{
    const auto part = Table(u"PART"_s);
    part->Open();
    part->Insert();
    EXPECT_EQ(RowOf(*part, u"CODE;NAME;GRADE;QTY;DAYS;PRICE;RATE;MADE;SEEN;STOPPED;NOTE;PIC"_s),
              "~|~|B|0|7|0|0|        |              |N|~|~");
    const auto line = Table(u"LINE"_s);
    line->Open();
    line->Insert();
    EXPECT_EQ(RowOf(*line, u"BILLCODE;NO;QTY"_s), "~|    |0");
}

TEST_P(Validation, RequiredFields)
{
    const auto part = Table(u"PART"_s);
    part->Open();
    part->Insert();
    EXPECT_EQ(MessageOf([&] { part->Post(); }), "[编号] 不可空白，请重新输入");
    Fill(*part, {{u"CODE"_s, u"P3"_s}, {u"NAME"_s, u"  "_s}});
    EXPECT_EQ(MessageOf([&] { part->Post(); }), "[名称] 不可空白，请重新输入");
    EXPECT_EQ(part->State(), dsInsert);
    EXPECT_EQ(RowOf(*part, u"CODE"_s), "P3");
    Fill(*part, {{u"NAME"_s, u"c"_s}, {u"GRADE"_s, u""_s}}); // a default excuses GRADE
    part->ValidValue();
    EXPECT_EQ(part->GetIsNotNullFields(), (QStringList{u"Code"_s, u"Name"_s, u"GRADE"_s}));
    part->Cancel();
    part->ValidValue(); // nothing at rest
}

TEST_P(Validation, DuplicatesInTheDatabase)
{
    const auto part = Table(u"PART"_s);
    const auto line = Table(u"LINE"_s);
    part->Open();
    line->Open();
    part->Insert();
    Fill(*part, {{u"CODE"_s, u"P2"_s}, {u"NAME"_s, u"c"_s}});
    SetScreenCursor(crHourGlass);
    EXPECT_EQ(MessageOf([&] { part->Post(); }), InTable + u"CODE:P2"_s);
    EXPECT_EQ(ScreenCursor(), crDefault);
    Fill(*part, {{u"CODE"_s, u"P3"_s}, {u"NAME"_s, u"a"_s}}); // the unique index
    EXPECT_EQ(MessageOf([&] { part->Post(); }), InTable + u"NAME:a"_s);
    part->SetIgnoreCheck(true);
    EXPECT_NE(MessageOf([&] { part->Post(); }).left(4), "数据库中"); // the database's own words
    line->Append();
    Fill(*line, {{u"BILLCODE"_s, u"B1"_s}, {u"NO"_s, u"0002"_s}});
    EXPECT_EQ(MessageOf([&] { line->Post(); }), InTable + u"BILLCODE;NO:B1"_s); // of two values the first
    EXPECT_EQ(MessageOf([&] { line->ValidKeyField(u"QTY"_s, 2); }), InTable + u"QTY:2"_s);
    line->ValidKeyField(u"QTY"_s, 3);
}

TEST_P(Validation, AnEditAsksOnlyForKeysThatChanged)
{
    const auto part = Table(u"PART"_s);
    part->Open();
    const struct
    {
        QString Code, Name, Statements;
    } rows[] = {
        {u"P1"_s, u"a"_s, {}},
        {u"p1"_s, u"A"_s, {}}, // capitals alone are no change
        {u"P7"_s, u"a"_s, u"select * from PART where CODE='P7'"_s},
        {u"P1"_s, u"z"_s, u"select * from PART where NAME='z'"_s},
    };
    for (const auto &row : rows) {
        part->Edit();
        Fill(*part, {{u"CODE"_s, row.Code}, {u"NAME"_s, row.Name}});
        Log();
        part->ValidValue();
        EXPECT_EQ(Log().join(u" / "_s), row.Statements);
        part->Cancel();
    }
    // A part that was empty does not count as changed.
    Run({u"insert into PART(CODE, NAME, GRADE) values('', 'e', 'B')"_s});
    part->OpenTable({}, "CODE", 0);
    Log();
    part->Edit();
    Fill(*part, {{u"CODE"_s, u"P2"_s}});
    part->ValidValue();
    EXPECT_EQ(Log(), QStringList());
}

TEST_P(Validation, DuplicatesInMemory)
{
    const auto part = Batch(u"PART"_s);
    part->SetFilter(u"CODE='P1'"_s); // the check sees what the filter hides
    part->SetFiltered(true);
    part->Append();
    Fill(*part, {{u"CODE"_s, u"p2"_s}, {u"NAME"_s, u"c"_s}});
    Log();
    EXPECT_EQ(MessageOf([&] { part->Post(); }), InMemory + u"CODE:p2"_s);
    EXPECT_EQ(part->State(), dsInsert);
    Fill(*part, {{u"CODE"_s, u"P3"_s}, {u"NAME"_s, u"B"_s}});
    EXPECT_EQ(MessageOf([&] { part->Post(); }), InMemory + u"NAME:B"_s);
    Fill(*part, {{u"NAME"_s, u"c"_s}});
    part->Post();
    part->SetFiltered(false);
    part->Last();
    part->Edit();
    Fill(*part, {{u"CODE"_s, u"P1"_s}});
    EXPECT_EQ(MessageOf([&] { part->Post(); }), InMemory + u"CODE:P1"_s);
    part->Cancel();
    // What only the table knows is not looked at.
    part->First();
    part->Delete();
    part->Append();
    Fill(*part, {{u"CODE"_s, u"P1"_s}, {u"NAME"_s, u"a"_s}});
    part->Post();
    EXPECT_EQ(Shown(*part, u"CODE"_s), "P2 / P3 / P1");
    EXPECT_EQ(Log(), QStringList());
}

TEST_P(Validation, TheMastersFieldsTellNothing)
{
    const auto line = Batch(u"LINE"_s);
    line->SetDetailField(u"BILLCODE"_s);
    line->Append();
    Fill(*line, {{u"BILLCODE"_s, u"B7"_s}, {u"NO"_s, u"0002"_s}});
    EXPECT_EQ(MessageOf([&] { line->Post(); }), InMemory + u"NO:0002"_s);
    Fill(*line, {{u"NO"_s, u"0003"_s}});
    line->Post();
    line->SetDetailField(u"BILLCODE;NO"_s); // nothing of the key is left to check
    line->Append();
    Fill(*line, {{u"BILLCODE"_s, u"B7"_s}, {u"NO"_s, u"0003"_s}});
    line->Post();
    EXPECT_EQ(line->RecordCount(), 4);
}

TEST_P(Validation, ADetailsMasterFieldsAreNotRequired)
{
    const auto head = Table(u"HEAD"_s);
    const auto line = Table(u"LINE"_s);
    TExDataSource source;
    source.SetDataSet(head.get());
    head->Open();
    line->Open();
    line->SetCommitType(ctBatchCommit);
    line->Append();
    Fill(*line, {{u"NO"_s, u"0009"_s}});
    EXPECT_EQ(MessageOf([&] { line->ValidValue(); }), "[BILLCODE] 不可空白，请重新输入");
    line->SetMasterDataSource(&source);
    line->SetDetailField(u"BILLCODE"_s);
    EXPECT_EQ(MessageOf([&] { line->ValidValue(); }), "nothing");
}

TEST_P(Validation, AskingTwiceForAnEditDoesNothing)
{
    const auto part = Table(u"PART"_s);
    part->Open();
    const auto calls = {&TExCustomDataSet::Edit, &TExCustomDataSet::Insert, &TExCustomDataSet::Append};
    for (const TDataSetState state : {dsEdit, dsInsert}) {
        state == dsEdit ? part->Edit() : part->Insert();
        Fill(*part, {{u"NAME"_s, u"typed"_s}});
        for (const auto call : calls)
            ((*part).*call)();
        EXPECT_EQ(part->State(), state);
        EXPECT_EQ(RowOf(*part, u"NAME"_s), "typed");
        part->Cancel();
    }
    const auto empty = Table(u"HEAD"_s);
    empty->Open();
    empty->Edit();
    EXPECT_EQ(empty->State(), dsBrowse);
}

TEST_P(Validation, WhatHasChanged)
{
    const auto part = Batch(u"PART"_s);
    EXPECT_FALSE(part->IsChanged());
    part->Edit();
    EXPECT_FALSE(part->IsChanged());
    Fill(*part, {{u"NAME"_s, u"z"_s}});
    EXPECT_TRUE(part->IsChanged());
    EXPECT_TRUE(part->IsChanged(u"CODE;NAME"_s));
    EXPECT_FALSE(part->IsChanged(u"CODE; QTY"_s));
    EXPECT_EQ(MessageOf([&] { part->IsChanged(u"NOWHERE"_s); }), "字段“NOWHERE”没有找到");
    part->Post();
    part->Next();
    EXPECT_TRUE(part->IsChanged());
    EXPECT_FALSE(part->IsChanged(u"NAME"_s)); // the change count plays no part
    part->MergeChangeLog();
    EXPECT_FALSE(part->IsChanged());
}

INSTANTIATE_TEST_SUITE_P(Places, Validation, testing::ValuesIn(AllPlaces()), PlaceName);

} // namespace
