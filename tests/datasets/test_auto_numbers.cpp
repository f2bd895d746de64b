// SPDX-License-Identifier: MIT
#include "DataSetTesting.h"

using namespace Korvane;
using namespace Korvane::Testing;

namespace {

class AutoNumbers : public DataSetTest
{
};

TEST_P(AutoNumbers, TextOfANumber)
{
    const auto line = Table(u"LINE"_s);
    const auto part = Table(u"PART"_s);
    const auto query = Query(u"QPART"_s);
    const struct
    {
        TExCustomDataSet *DataSet;
        QString Field;
        QString Text;
    } rows[] = {
        {line.get(), {}, u"42"_s},
        {line.get(), u"NO"_s, u"0042"_s},
        {line.get(), u"QTY"_s, u"42"_s},      // "int" stays plain
        {part.get(), u"CODE"_s, u"000042"_s}, // varchar(6)
        {part.get(), u"DAYS"_s, u"42"_s},     // "smallint" is filled to its width, which is 0
        {query.get(), u"Code"_s, u"000042"_s},
    };
    for (const auto &row : rows) {
        row.DataSet->SetAutoField(row.Field);
        EXPECT_EQ(row.DataSet->FormatAutoValue(42), row.Text) << row.Field.toStdString();
    }
}

TEST_P(AutoNumbers, DirectModeAsksTheWholeTable)
{
    const auto line = Table(u"LINE"_s);
    line->SetAutoField(u"NO"_s);
    line->OpenTable("BILLCODE", "B1", ooEqualAnd);
    EXPECT_EQ(line->GetAutoValue(), "0001");
    Run({u"insert into LINE(BILLCODE, NO) values('B2', '0041')"_s});
    EXPECT_EQ(line->GetAutoValue(), "0042");
    EXPECT_EQ(Log(), QStringList{u"select max(NO) from LINE"_s});
    Run({u"insert into LINE(BILLCODE, NO) values('B2', 'X')"_s});
    EXPECT_NE(MessageOf([&] { line->GetAutoValue(); }), "nothing");
    // Of a query, the main table's column.
    AddParts({{u"8"_s, u"a"_s, 1}});
    const auto query = Query(u"QPART"_s);
    query->SetAutoField(u"Code"_s);
    EXPECT_EQ(query->GetAutoValue(), "000009");
    EXPECT_EQ(Log(), QStringList{u"select max(CODE) from PART"_s});
    Run({u"insert into NUMBERED(ID) values(2147483647)"_s});
    const auto numbered = Table(u"NUMBERED"_s);
    numbered->SetAutoField(u"ID"_s);
    EXPECT_EQ(MessageOf([&] { numbered->GetAutoValue(); }), "编号已达到最大值 2147483647，无法自动编号");
}

TEST_P(AutoNumbers, BatchModeLooksAtTheRowsInMemory)
{
    Run({u"insert into NUMBERED(ID, TEXT1) values(7, 'b')"_s,
         u"insert into NUMBERED(ID, TEXT1) values(5, 'a')"_s});
    const auto numbered = Batch(u"NUMBERED"_s);
    EXPECT_EQ(numbered->GetAutoValue(), "");
    numbered->SetAutoField(u"ID"_s);
    numbered->SetIndexFieldNames(u"TEXT1"_s);
    Log();
    numbered->First();
    EXPECT_EQ(numbered->GetAutoValue(), "8");
    EXPECT_EQ(RowOf(*numbered, u"TEXT1"_s), "a");
    EXPECT_EQ(numbered->IndexFieldNames(), "TEXT1");
    for (const QString &text : {u"c"_s, u"d"_s}) {
        numbered->Append();
        Fill(*numbered, {{u"TEXT1"_s, text}});
        numbered->Post();
    }
    EXPECT_EQ(Shown(*numbered, u"ID;TEXT1"_s), "5|a / 7|b / 8|c / 9|d");
    EXPECT_EQ(Log(), QStringList());
}

TEST_P(AutoNumbers, AnEmptyTableBeginsWithOneInBothModes)
{
    for (const TCommitType mode : {ctCommit, ctBatchCommit}) {
        const auto numbered = Table(u"NUMBERED"_s);
        const auto line = Table(u"LINE"_s);
        numbered->SetAutoField(u"ID"_s);
        line->SetAutoField(u"NO"_s);
        for (TExTable *table : {numbered.get(), line.get()}) {
            table->SetCommitType(mode);
            table->Open();
            table->Insert();
        }
        EXPECT_EQ(RowOf(*numbered, u"ID"_s), "1");
        EXPECT_EQ(RowOf(*line, u"NO"_s), "0001");
    }
}

TEST_P(AutoNumbers, ANewRowHasTheNumberOnlyAfterAfterInsert)
{
    const auto line = Batch(u"LINE"_s);
    line->SetAutoField(u"NO"_s);
    QStringList seen;
    line->BeforeInsert = [&](TDataSet *) { seen += u"before"_s; };
    line->OnNewRecord = [&](TDataSet *set) { seen += u"new "_s + RowOf(*set, u"NO"_s); };
    line->AfterInsert = [&](TDataSet *set) { seen += u"after "_s + RowOf(*set, u"NO"_s); };
    line->Insert();
    seen += RowOf(*line, u"NO"_s);
    EXPECT_EQ(seen, (QStringList{u"before"_s, u"new     "_s, u"after     "_s, u"0001"_s}));
}

TEST_P(AutoNumbers, NumberingAnew)
{
    Run({u"insert into LINE(BILLCODE, NO, QTY) values('B1', '0009', 3)"_s,
         u"insert into LINE(BILLCODE, NO, QTY) values('B1', '0003', 1)"_s,
         u"insert into LINE(BILLCODE, NO, QTY) values('B1', '0005', 2)"_s});
    const auto line = Batch(u"LINE"_s);
    line->ResetAutoField();
    EXPECT_EQ(line->ChangeCount(), 0);
    line->SetAutoField(u"QTY"_s);
    line->SetIndexFieldNames(u"NO"_s);
    line->First();
    Log();
    line->ResetAutoField();
    EXPECT_EQ(line->IndexFieldNames(), "NO");
    EXPECT_EQ(line->RecNo(), 2);
    line->SetIndexFieldNames({});
    EXPECT_EQ(Shown(*line, u"NO;QTY"_s), "0009|1 / 0003|2 / 0005|3"); // in natural order
    EXPECT_EQ(line->ChangeCount(), 3);
    EXPECT_EQ(Log(), QStringList());
    line->Last();
    line->ResetAutoField();
    EXPECT_EQ(line->RecNo(), 3);
    // Of a text the terminator counts too, so that the number is one digit too long for it.
    TExTable texts;
    texts.SetTable(u"LINE"_s);
    texts.SetDBDFile(&Design);
    texts.CreateDataSet();
    TLineRecord record;
    texts.AppendObject(record);
    texts.AppendObject(record);
    texts.SetAutoField(u"CODE"_s);
    texts.ResetAutoField();
    EXPECT_EQ(Shown(texts, u"CODE"_s), "000000 / 000000");
}

INSTANTIATE_TEST_SUITE_P(Places, AutoNumbers, testing::ValuesIn(AllPlaces()), PlaceName);

} // namespace
