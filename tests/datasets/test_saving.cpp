// SPDX-License-Identifier: MIT
#include "DataSetTesting.h"

using namespace Korvane;
using namespace Korvane::Testing;

namespace {

const QString NewAudit =
    u"CREATOR='u1', CREATEDATE='<time>', MODIFIER='u1', MODIFYDATE='<time>', CREATORGROUP='g1'"_s;
const QString OldAudit = u"MODIFIER='u1', MODIFYDATE='<time>'"_s;

class Saving : public DataSetTest
{
protected:
    static QString InsertLine(const QString &values)
    {
        return u"insert into LINE(BILLCODE, NO, CODE, QTY) values("_s + values + ')';
    }
    void AddLines()
    {
        Run({InsertLine(u"'B1', '0001', 'P1', 1"_s), InsertLine(u"'B1', '0002', 'P2', 2"_s),
             InsertLine(u"'B2', '0001', 'P3', 3"_s)});
    }
    QString Lines()
    {
        return TextOfTable(
            u"select BILLCODE, NO, CODE, QTY, CREATOR, MODIFIER from LINE order by BILLCODE, NO"_s);
    }
};

TEST_P(Saving, PostOfANewRow)
{
    const auto part = Table(u"PART"_s);
    part->Open();
    part->Insert();
    Fill(*part, {{u"CODE"_s, u"P1"_s}, {u"NAME"_s, u"轴承"_s}, {u"QTY"_s, u"5"_s}, {u"PRICE"_s, u"1.5"_s}});
    Log();
    part->Post();
    EXPECT_EQ(
        LinesOf(Log()),
        LinesOf(
            {u"select * from PART where CODE='P1'"_s, u"select * from PART where NAME='轴承'"_s,
             u"insert into PART(CODE, NAME, GRADE, QTY, DAYS, PRICE, RATE, MADE, SEEN, STOPPED, NOTE, PIC) "
             "values('P1', '轴承', 'B', 5, 7, 1.5, 0, '', '', 'N', '', :PIC)"_s,
             u"<clock>"_s, u"update PART set "_s + NewAudit + u" where CODE='P1'"_s}));
    EXPECT_EQ(part->State(), dsBrowse);
    EXPECT_EQ(PartRows(), "P1|轴承|5|u1|t|u1|t|g1");
    EXPECT_EQ(Shown(*part, u"CODE;QTY"_s), "P1|5");
}

TEST_P(Saving, PostOfAChangedKeyFindsTheRowByTheOldOne)
{
    AddParts({{u"P1"_s, u"a"_s, 1}, {u"P2"_s, u"b"_s, 2}});
    const auto part = Table(u"PART"_s);
    part->Open();
    part->Edit();
    Fill(*part, {{u"CODE"_s, u"P7"_s}});
    Log();
    part->Post();
    EXPECT_EQ(
        LinesOf(Log()),
        LinesOf(
            {u"select * from PART where CODE='P7'"_s,
             u"update PART set CODE='P7', NAME='a', GRADE='B', QTY=1, DAYS=7, PRICE=0, RATE=1.5, MADE='', "
             "SEEN='', STOPPED='N', NOTE='', PIC=:PIC where CODE='P1'"_s,
             u"<clock>"_s, u"update PART set "_s + OldAudit + u" where CODE='P7'"_s}));
    EXPECT_EQ(PartRows(), "P2|b|2|~|~|~|~|~ / P7|a|1|~|~|u1|t|~");
}

TEST_P(Saving, QueriesWriteTheirMainTable)
{
    AddParts({{u"P1"_s, u"a"_s, 1}});
    const auto query = Query(u"QPART"_s);
    query->Open();
    query->Edit();
    Fill(*query, {{u"Name"_s, u"x"_s}, {u"Amount"_s, u"8"_s}});
    Log();
    query->Post();
    EXPECT_EQ(LinesOf(Log()),
              LinesOf({query->GetSelectSQL(u"Name"_s, u"x"_s, ooEqualAnd),
                       u"update PART set CODE='P1', NAME='x', QTY=8 where CODE='P1'"_s, u"<clock>"_s,
                       u"update PART set "_s + OldAudit + u" where CODE='P1'"_s}));
    query->Delete();
    EXPECT_EQ(Log(), QStringList{u"delete from PART where CODE='P1'"_s});
    EXPECT_EQ(PartRows(), "");
}

TEST_P(Saving, DeleteInBothModes)
{
    AddParts({{u"P1"_s, u"a"_s, 1}, {u"P2"_s, u"b"_s, 2}});
    for (const TCommitType mode : {ctBatchCommit, ctCommit}) {
        const auto part = Table(u"PART"_s);
        part->SetCommitType(mode);
        part->Open();
        Log();
        part->Delete();
        EXPECT_EQ(Log(),
                  mode == ctCommit ? QStringList{u"delete from PART where CODE='P1'"_s} : QStringList());
        EXPECT_EQ(Shown(*part, u"CODE"_s), "P2");
        EXPECT_EQ(TextOfTable(u"select CODE from PART order by CODE"_s), mode == ctCommit ? "P2" : "P1 / P2");
    }
    const auto empty = Table(u"HEAD"_s);
    empty->Open();
    Log();
    empty->Delete();
    EXPECT_EQ(Log(), QStringList());
}

TEST_P(Saving, PostNeedsAnEditAndInterPostNoStatement)
{
    AddParts({{u"P1"_s, u"a"_s, 1}});
    const auto part = Table(u"PART"_s);
    part->Open();
    EXPECT_EQ(MessageOf([&] { part->Post(); }), "非新增或修改状态，无法执行此操作");
    part->Edit();
    Fill(*part, {{u"NAME"_s, u""_s}}); // which Post would refuse
    Log();
    part->InterPost();
    EXPECT_EQ(Log(), QStringList());
    EXPECT_EQ(RowOf(*part, u"CODE;NAME"_s), "P1|");
    part->Save(); // nothing in direct mode, not even checks
    part->SetDBSession(nullptr);
    part->Save();
    EXPECT_EQ(Log(), QStringList());
}

TEST_P(Saving, ChangesInTheOrderOfTheLog)
{
    AddLines();
    const auto line = Batch(u"LINE"_s);
    const auto add = [&](const QString &no) {
        line->Append();
        Fill(*line, {{u"BILLCODE"_s, u"B3"_s}, {u"NO"_s, no}});
        line->Post();
    };
    line->Locate(u"CODE"_s, u"P3"_s);
    line->Delete();
    add(u"0001"_s);
    line->Edit(); // inserted and edited: one insert
    Fill(*line, {{u"QTY"_s, u"4"_s}});
    line->Post();
    add(u"0002"_s); // inserted and deleted: nothing
    line->Delete();
    line->Locate(u"CODE"_s, u"P1"_s);
    line->Edit();
    Fill(*line, {{u"QTY"_s, u"6"_s}});
    line->Post();
    line->Edit(); // NULL cannot be told from unchanged
    line->FieldByName(u"CODE")->Clear();
    line->Post();
    Log();
    line->Save();
    EXPECT_EQ(
        LinesOf(Log()),
        LinesOf(
            {u"delete from LINE where BILLCODE='B2' and NO='0001'"_s, u"<clock>"_s,
             u"update LINE set "_s + OldAudit + u" where BILLCODE='B2' and NO='0001'"_s,
             InsertLine(u"'B3', '0001', '', 4"_s), u"<clock>"_s,
             u"update LINE set "_s + NewAudit + u" where BILLCODE='B3' and NO='0001'"_s,
             u"update LINE set BILLCODE='B1', NO='0001', CODE='P1', QTY=6 where BILLCODE='B1' and NO='0001'"_s,
             u"<clock>"_s, u"update LINE set "_s + OldAudit + u" where BILLCODE='B1' and NO='0001'"_s}));
    EXPECT_EQ(Lines(), "B1|0001|P1|6|~|u1 / B1|0002|P2|2|~|~ / B3|0001||4|u1|u1");
    EXPECT_EQ(line->ChangeCount(), 0);
    Log();
    line->Save();
    EXPECT_EQ(Log(), QStringList());
}

TEST_P(Saving, AChangedKeyInABatchKeepsItsAuditColumns)
{
    AddLines();
    const auto line = Batch(u"LINE"_s);
    line->Edit();
    Fill(*line, {{u"NO"_s, u"0009"_s}});
    line->Post();
    line->Save();
    EXPECT_EQ(Lines(), "B1|0002|P2|2|~|~ / B1|0009|P1|1|~|~ / B2|0001|P3|3|~|~");
}

TEST_P(Saving, AllRowsReplaceThoseThatWereRead)
{
    AddLines();
    const auto line = Table(u"LINE"_s);
    line->SetCommitType(ctBatchCommit);
    line->SetUpdateType(utAll);
    line->OpenTable("BILLCODE", "B1", ooEqualAnd);
    line->Append();
    Fill(*line, {{u"BILLCODE"_s, u"B1"_s}, {u"NO"_s, u"0003"_s}, {u"QTY"_s, u"9"_s}});
    line->Post();
    line->SetFilter(u"QTY<>2"_s); // what is filtered out is written too
    line->SetFiltered(true);
    Log();
    line->Save();
    EXPECT_EQ(LinesOf(Log()),
              LinesOf({u"delete from LINE where BILLCODE='B1'"_s, InsertLine(u"'B1', '0001', 'P1', 1"_s),
                       InsertLine(u"'B1', '0002', 'P2', 2"_s), InsertLine(u"'B1', '0003', '', 9"_s),
                       u"<clock>"_s, u"update LINE set "_s + NewAudit + u" where BILLCODE='B1'"_s}));
    EXPECT_EQ(Lines(), "B1|0001|P1|1|u1|u1 / B1|0002|P2|2|u1|u1 / B1|0003||9|u1|u1 / B2|0001|P3|3|~|~");
    EXPECT_TRUE(line->Filtered());
    EXPECT_EQ(line->ChangeCount(), 3); // the log stays
    EXPECT_TRUE(line->IsChanged());
    EXPECT_FALSE(line->ControlsDisabled());
}

TEST_P(Saving, AllRowsOfAPlainReadReplaceTheTable)
{
    AddLines();
    const auto line = Batch(u"LINE"_s);
    line->SetUpdateType(utAll);
    line->Delete();
    Log();
    line->Save();
    EXPECT_EQ(LinesOf(Log()), LinesOf({u"delete from LINE"_s, InsertLine(u"'B1', '0002', 'P2', 2"_s),
                                       InsertLine(u"'B2', '0001', 'P3', 3"_s), u"<clock>"_s,
                                       u"update LINE set "_s + NewAudit}));
    EXPECT_EQ(Lines(), "B1|0002|P2|2|u1|u1 / B2|0001|P3|3|u1|u1");
}

TEST_P(Saving, DetailsTakeTheMastersKeyAsItIsNow)
{
    AddLines();
    Run({u"insert into HEAD(BILLCODE, CUST) values('B1', 'c')"_s});
    for (const TUpdateType type : {utChanged, utAll}) {
        const auto head = Table(u"HEAD"_s);
        const auto line = Table(u"LINE"_s);
        TExDataSource source;
        source.SetDataSet(head.get());
        line->SetMasterDataSource(&source);
        line->SetMasterField(u"BILLCODE"_s);
        line->SetDetailField(u"BILLCODE"_s);
        line->SetUpdateType(type);
        head->Open();
        line->Open();
        line->Append();
        Fill(*line, {{u"NO"_s, type == utAll ? u"0005"_s : u"0004"_s}});
        line->Post();
        if (type == utAll) { // behind the detail's back: what was read before belongs to the new key
            head->DisableControls();
            head->Edit();
            Fill(*head, {{u"BILLCODE"_s, u"B9"_s}});
            head->InterPost();
        }
        Log();
        line->Save();
        if (type == utChanged)
            EXPECT_EQ(LinesOf(Log()),
                      LinesOf({InsertLine(u"'B1', '0004', '', 0"_s), u"<clock>"_s,
                               u"update LINE set "_s + NewAudit + u" where BILLCODE='B1' and NO='0004'"_s}));
        else
            EXPECT_EQ(Lines(),
                      "B2|0001|P3|3|~|~ / B9|0001|P1|1|u1|u1 / B9|0002|P2|2|u1|u1 / B9|0004||0|u1|u1 / "
                      "B9|0005||0|u1|u1");
        if (head->ControlsDisabled())
            head->EnableControls();
    }
}

TEST_P(Saving, BlobsOfAPostABatchAndAReplacement)
{
    const auto part = Table(u"PART"_s);
    part->Open();
    const auto add = [&](const QString &code, const QByteArray &bytes) {
        part->Append();
        Fill(*part, {{u"CODE"_s, code}, {u"NAME"_s, code}});
        part->FieldByName(u"PIC")->SetAsBytes(bytes);
        part->Post();
    };
    const auto pictures = [&] { return TextOfTable(u"select CODE, PIC from PART order by CODE"_s); };
    add(u"P1"_s, "a"_ba);
    part->Edit();
    Fill(*part, {{u"QTY"_s, u"1"_s}});
    part->Post();
    EXPECT_EQ(pictures(), "P1|0x61");
    // A new row of a batch is mapped twice; a changed picture stands behind the stored one.
    part->SetCommitType(ctBatchCommit);
    part->Open();
    part->Edit();
    part->FieldByName(u"PIC")->SetAsBytes("b"_ba);
    part->Post();
    add(u"P2"_s, "c"_ba);
    part->Save();
    EXPECT_EQ(pictures(), "P1|0x6162 / P2|0x6363");
}

TEST_P(Saving, APercentSignInAKey)
{
    const auto part = Table(u"PART"_s);
    part->Open();
    part->Insert();
    Fill(*part, {{u"CODE"_s, u"5%s"_s}, {u"NAME"_s, u"a"_s}});
    EXPECT_NE(MessageOf([&] { part->Post(); }), "nothing"); // in the audit update
    EXPECT_EQ(part->State(), dsInsert);
    EXPECT_EQ(PartRows(), "5%s|a|0|~|~|~|~|~");
    EXPECT_EQ(MessageOf([&] { part->Post(); }), "数据库中已存在相同的记录，请重新输入\rCODE:5%s");
}

TEST_P(Saving, ATransactionOfTheApplicationHoldsTheWholeSave)
{
    AddLines();
    const auto line = Batch(u"LINE"_s);
    line->Edit();
    Fill(*line, {{u"QTY"_s, u"5"_s}});
    line->Post();
    const QString before = Lines();
    Session.BeginTrans();
    line->SaveChanged();
    Session.RollbackTrans();
    EXPECT_EQ(Lines(), before);
}

INSTANTIATE_TEST_SUITE_P(Places, Saving, testing::ValuesIn(AllPlaces()), PlaceName);

} // namespace
