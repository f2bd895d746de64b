// SPDX-License-Identifier: MIT
// Every statement of every way to save is made to fail once: what stands in memory and in the
// table then, and whether the same call succeeds when the cause is gone.
#include "DataSetTesting.h"

#include "support/FailingDriver.h"

using namespace Korvane;
using namespace Korvane::Testing;

namespace {

const QString Failure = u"连接已断开"_s;
const QString Duplicate = u"数据库中已存在相同的记录，请重新输入"_s;

class FailedSaves : public DataSetTest
{
protected:
    FailedSaves()
    {
        if (IsSkipped())
            return;
        Session.SetConnected(false);
        Session.SetConnected(true);
    }
    ~FailedSaves() override { Session.SetConnected(false); }

    /// P1, P2 and P3 alone.
    void Reset()
    {
        Run({u"delete from PART"_s});
        AddParts({{u"P1"_s, u"a"_s, 1}, {u"P2"_s, u"b"_s, 2}, {u"P3"_s, u"c"_s, 3}});
        Server.Ran.clear();
        Server.Failed.clear();
    }
    /// The first line of what a call raises when its number-th statement fails.
    QString FailureAt(int number, const std::function<void()> &call)
    {
        Server.FailAt(number);
        const QString message = FirstLine(call);
        Server.FailAt(0);
        return message;
    }
    static QString FirstLine(const std::function<void()> &call)
    {
        return MessageOf(call).section(u'\r', 0, 0);
    }
    QString Codes() { return TextOfTable(u"select CODE, NAME, QTY, MODIFIER from PART order by CODE"_s); }

    FailingServer Server;
};

const QString Stored = u"P1|a|1|~ / P2|b|2|~ / P3|c|3|~"_s;

TEST_P(FailedSaves, PostOfANewRow)
{
    // Two questions, the insert, the clock, the audit update.
    for (int k = 1; k <= 5; ++k) {
        SCOPED_TRACE(k);
        Reset();
        const auto part = Table(u"PART"_s);
        part->Open();
        part->Append();
        Fill(*part, {{u"CODE"_s, u"P4"_s}, {u"NAME"_s, u"d"_s}, {u"QTY"_s, u"4"_s}});
        EXPECT_EQ(FailureAt(k, [&] { part->Post(); }), Failure);
        EXPECT_EQ(part->State(), dsInsert);
        EXPECT_EQ(RowOf(*part, u"CODE;NAME;QTY"_s), "P4|d|4");
        EXPECT_EQ(part->RecordCount(), 3);
        EXPECT_EQ(part->ChangeCount(), 0);
        const bool isIn = k > 3;
        EXPECT_EQ(Codes(), isIn ? Stored + u" / P4|d|4|~"_s : Stored);
        EXPECT_EQ(FirstLine([&] { part->Post(); }), isIn ? Duplicate : u"nothing"_s);
        EXPECT_EQ(part->State(), isIn ? dsInsert : dsBrowse);
        EXPECT_EQ(Codes(), Stored + (isIn ? u" / P4|d|4|~"_s : u" / P4|d|4|u1"_s));
        if (isIn)
            part->Cancel();
        EXPECT_EQ(Shown(*part, u"CODE"_s), isIn ? "P1 / P2 / P3" : "P1 / P2 / P3 / P4");
    }
}

TEST_P(FailedSaves, PostOfAnEditedRow)
{
    // The update, the clock, the audit update.
    for (int k = 1; k <= 3; ++k) {
        SCOPED_TRACE(k);
        Reset();
        const auto part = Table(u"PART"_s);
        part->Open();
        part->Edit();
        Fill(*part, {{u"QTY"_s, u"8"_s}});
        EXPECT_EQ(FailureAt(k, [&] { part->Post(); }), Failure);
        EXPECT_EQ(part->State(), dsEdit);
        EXPECT_EQ(RowOf(*part, u"CODE;QTY"_s), "P1|8");
        EXPECT_EQ(part->ChangeCount(), 0);
        EXPECT_EQ(Codes(), k == 1 ? Stored : u"P1|a|8|~ / P2|b|2|~ / P3|c|3|~"_s);
        EXPECT_EQ(FirstLine([&] { part->Post(); }), "nothing");
        EXPECT_EQ(Codes(), "P1|a|8|u1 / P2|b|2|~ / P3|c|3|~");
        EXPECT_EQ(Shown(*part, u"CODE;QTY"_s), "P1|8 / P2|2 / P3|3");
    }
}

TEST_P(FailedSaves, PostOfAChangedKey)
{
    // The question, the update, the clock, the audit update.
    for (int k = 1; k <= 4; ++k) {
        SCOPED_TRACE(k);
        Reset();
        const auto part = Table(u"PART"_s);
        part->Open();
        part->Edit();
        Fill(*part, {{u"CODE"_s, u"P0"_s}});
        EXPECT_EQ(FailureAt(k, [&] { part->Post(); }), Failure);
        EXPECT_EQ(part->State(), dsEdit);
        EXPECT_EQ(RowOf(*part, u"CODE"_s), "P0");
        const bool isIn = k > 2;
        EXPECT_EQ(Codes().left(2), isIn ? "P0" : "P1");
        EXPECT_EQ(FirstLine([&] { part->Post(); }), isIn ? Duplicate : u"nothing"_s);
        part->Cancel();
        EXPECT_EQ(Shown(*part, u"CODE"_s), isIn ? "P1 / P2 / P3" : "P0 / P2 / P3");
    }
}

TEST_P(FailedSaves, Delete)
{
    Reset();
    const auto part = Table(u"PART"_s);
    part->Open();
    EXPECT_EQ(FailureAt(1, [&] { part->Delete(); }), Failure);
    EXPECT_EQ(Shown(*part, u"CODE"_s), "P1 / P2 / P3");
    EXPECT_EQ(Codes(), Stored);
    part->Delete();
    EXPECT_EQ(Shown(*part, u"CODE"_s), "P2 / P3");
    EXPECT_EQ(Codes(), "P2|b|2|~ / P3|c|3|~");
}

/// An edited, a deleted and a new row, in memory.
void ChangeThree(TExTable &part)
{
    part.Edit();
    Fill(part, {{u"QTY"_s, u"8"_s}});
    part.Post();
    part.Next();
    part.Delete();
    part.Append();
    Fill(part, {{u"CODE"_s, u"P4"_s}, {u"NAME"_s, u"d"_s}, {u"QTY"_s, u"4"_s}});
    part.Post();
}

const QString Saved = u"P1|a|8|u1 / P3|c|3|~ / P4|d|4|u1"_s;

TEST_P(FailedSaves, SaveOfChanges)
{
    // Of each change the statement, the clock, the audit update.
    const QString tables[] = {Stored,
                              u"P1|a|8|~ / P2|b|2|~ / P3|c|3|~"_s,
                              u"P1|a|8|~ / P2|b|2|~ / P3|c|3|~"_s,
                              u"P1|a|8|u1 / P2|b|2|~ / P3|c|3|~"_s,
                              u"P1|a|8|u1 / P3|c|3|~"_s,
                              u"P1|a|8|u1 / P3|c|3|~"_s,
                              u"P1|a|8|u1 / P3|c|3|~"_s,
                              u"P1|a|8|u1 / P3|c|3|~ / P4|d|4|~"_s,
                              u"P1|a|8|u1 / P3|c|3|~ / P4|d|4|~"_s};
    for (int k = 1; k <= 9; ++k) {
        SCOPED_TRACE(k);
        Reset();
        const auto part = Batch(u"PART"_s);
        ChangeThree(*part);
        EXPECT_EQ(FailureAt(k, [&] { part->Save(); }), Failure);
        EXPECT_EQ(part->ChangeCount(), 3);
        EXPECT_EQ(Shown(*part, u"CODE;QTY"_s), "P1|8 / P3|3 / P4|4");
        EXPECT_EQ(Codes(), tables[k - 1]);
        // It begins again with the first change, so that an insert that ran meets itself.
        const bool isIn = k > 7;
        EXPECT_EQ(FirstLine([&] { part->Save(); }) == u"nothing"_s, !isIn);
        EXPECT_EQ(part->ChangeCount(), isIn ? 3 : 0);
        EXPECT_EQ(Codes(), isIn ? tables[k - 1] : Saved);
    }
}

TEST_P(FailedSaves, SaveOfChangesInATransaction)
{
    for (int k = 1; k <= 9; ++k) {
        SCOPED_TRACE(k);
        Reset();
        const auto part = Batch(u"PART"_s);
        ChangeThree(*part);
        Session.BeginTrans();
        EXPECT_EQ(FailureAt(k, [&] { part->Save(); }), Failure);
        Session.RollbackTrans();
        EXPECT_EQ(Codes(), Stored);
        Session.BeginTrans();
        part->Save();
        Session.CommitTrans();
        EXPECT_EQ(part->ChangeCount(), 0);
        EXPECT_EQ(Codes(), Saved);
    }
}

TEST_P(FailedSaves, SaveOfAllRows)
{
    // The delete, three inserts, the clock, the audit update.
    const QString tables[] = {Stored,
                              u""_s,
                              u"P1|a|8|~"_s,
                              u"P1|a|8|~ / P3|c|3|~"_s,
                              u"P1|a|8|~ / P3|c|3|~ / P4|d|4|~"_s,
                              u"P1|a|8|~ / P3|c|3|~ / P4|d|4|~"_s};
    for (const bool inTransaction : {false, true})
        for (int k = 1; k <= 6; ++k) {
            SCOPED_TRACE(k);
            Reset();
            const auto part = Batch(u"PART"_s);
            part->SetUpdateType(utAll);
            ChangeThree(*part);
            part->SetFilter(u"QTY>3"_s);
            part->SetFiltered(true);
            if (inTransaction)
                Session.BeginTrans();
            EXPECT_EQ(FailureAt(k, [&] { part->Save(); }), Failure);
            Session.RollbackTrans();
            EXPECT_EQ(Codes(), inTransaction ? Stored : tables[k - 1]);
            EXPECT_EQ(part->Filtered(), k == 1 || k > 4); // off while the rows are written
            EXPECT_FALSE(part->ControlsDisabled());
            part->SetFiltered(false);
            EXPECT_EQ(Shown(*part, u"CODE;QTY"_s), "P1|8 / P3|3 / P4|4");
            part->Save();
            EXPECT_EQ(Codes(), "P1|a|8|u1 / P3|c|3|u1 / P4|d|4|u1");
        }
}

TEST_P(FailedSaves, ANumberOrADetailThatCannotBeRead)
{
    Reset();
    Run({u"insert into HEAD(BILLCODE) values('B1')"_s, u"insert into HEAD(BILLCODE) values('B2')"_s});
    const auto head = Table(u"HEAD"_s);
    const auto line = Table(u"LINE"_s);
    TExDataSource source;
    source.SetDataSet(head.get());
    line->SetMasterDataSource(&source);
    line->SetMasterField(u"BILLCODE"_s);
    line->SetDetailField(u"BILLCODE"_s);
    head->Open();
    line->Open();
    EXPECT_EQ(FailureAt(1, [&] { head->Next(); }), Failure);
    EXPECT_FALSE(line->ControlsDisabled() || head->ControlsDisabled());
    TExDataSource other;
    other.SetDataSet(head.get());
    line->SetMasterDataSource(nullptr);
    line->SetMasterField(u"BILLCODE"_s);
    line->SetDetailField(u"BILLCODE"_s);
    EXPECT_EQ(FailureAt(1, [&] { line->SetMasterDataSource(&other); }), Failure);
    EXPECT_EQ(line->CommitType(), ctBatchCommit);
    head->Prior();
    head->Next();
    EXPECT_EQ(line->LastSQL(), "select * from LINE where BILLCODE='B2'");
    head->SetAutoField(u"CUST"_s);
    EXPECT_EQ(FailureAt(1, [&] { head->Insert(); }), Failure);
    EXPECT_EQ(head->State(), dsBrowse);
    head->Insert();
    EXPECT_EQ(RowOf(*head, u"CUST"_s), "0000000001");
}

INSTANTIATE_TEST_SUITE_P(Places, FailedSaves, testing::ValuesIn(AllPlaces()), PlaceName);

} // namespace
