// SPDX-License-Identifier: MIT
#include "DataSetTesting.h"

using namespace Korvane;
using namespace Korvane::Testing;

namespace {

class Mapping : public DataSetTest
{
protected:
    void AddFullPart(const QString &code, const QString &stopped)
    {
        Run({u"insert into PART(CODE, NAME, GRADE, QTY, DAYS, PRICE, RATE, MADE, SEEN, STOPPED, NOTE) "
             u"values('%1', "
             "'轴承 %1', 'A', 12, 3, 1.25, 0.5, '20240131', '20240131120000', '%2', '附注')"_s.arg(code,
                                                                                                   stopped)});
    }
};

TEST_P(Mapping, EveryTypeFromRowToObject)
{
    AddFullPart(u"P1"_s, u"Y"_s);
    Run({u"insert into PART(CODE, NAME, GRADE) values('P2', 'b', 'B')"_s});
    const auto part = Table(u"PART"_s);
    part->Open();
    EXPECT_EQ(RowText(*part->GetCurrentObject()),
              "P1|轴承 P1|A|12|3|1.25|0.5|20240131|20240131120000|True|附注|:PIC");
    part->Next(); // NULLs read as 0 and empty; DAYS has a default
    EXPECT_EQ(RowText(*part->GetCurrentObject()), "P2|b|B|0|7|0|0|||False||:PIC");
}

TEST_P(Mapping, OnlyYesInAnyCaseIsTrue)
{
    const QStringList texts{u"Y"_s, u"y"_s, u"N"_s, u""_s, u"T"_s};
    for (qsizetype i = 0; i < texts.size(); ++i)
        AddFullPart(u"P%1"_s.arg(i), texts[i]);
    const auto part = Table(u"PART"_s);
    part->OpenTable({}, "CODE", 0);
    QStringList found;
    for (const auto &object : part->GetDBObjects())
        found += RowText(*object).section(u'|', 9, 9);
    EXPECT_EQ(found.join(u' '), "True True False False False");
    EXPECT_TRUE(part->Eof());
    EXPECT_EQ(part->GetValues(u"CODE"_s).join(u' '), "P0 P1 P2 P3 P4");
    EXPECT_TRUE(part->Eof());
}

TEST_P(Mapping, ARefusedValueIsToldWithClassPropertyAndValue)
{
    Run({u"insert into WRONG(CODE, QTY) values('a''c', 5)"_s,
         u"insert into WRONG(CODE, QTY) values('7', 5)"_s});
    const auto wrong = Table(u"WRONG"_s);
    wrong->OpenTable({}, "CODE desc", 0);
    EXPECT_EQ(MessageOf([&] { wrong->GetCurrentObject(); }),
              "TWrongRecord属性Code赋值时出错，可能是数据类型不匹配\rCode = 'a''c'");
    wrong->Next();
    EXPECT_EQ(MessageOf([&] { wrong->GetCurrentObject(); }),
              "TWrongRecord属性Missing赋值时出错，可能是数据类型不匹配\rMissing = '5'");
    EXPECT_EQ(MessageOf([&] { wrong->Edit(); }).left(12), "TWrongRecord");
    EXPECT_EQ(wrong->State(), dsBrowse);
    const auto nobody = Table(u"NOBODY"_s);
    EXPECT_EQ(MessageOf([&] { nobody->GetDBObject(); }), "没有找到类TNobody");
}

TEST_P(Mapping, FollowsFieldsAndDefinitions)
{
    AddParts({{u"P1"_s, u"a"_s, 1}});
    Run({u"insert into LINE(BILLCODE, NO, CODE, QTY) values('B1', '0001', 'P1', 9)"_s});
    const auto part = Table(u"PART"_s);
    const auto line = Table(u"LINE"_s);
    part->Open();
    line->Open();
    // The file's one definition is aimed at either by turns.
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(RowText(*part->GetCurrentObject()), "P1|a|B|1|7|0|1.5|||False||:PIC");
        EXPECT_EQ(RowText(*line->GetCurrentObject()), "B1|0001|P1|9");
    }
    // Other rows, another layout, another class, and fields that the rows lack.
    part->SetAllowSelect(true);
    part->Open();
    EXPECT_EQ(RowText(*part->GetCurrentObject()), "P1|a|B|1|7|0|1.5|||False||:PIC");
    part->SetTable(u"LINE"_s);
    part->Open();
    EXPECT_EQ(RowText(*part->GetCurrentObject()), "B1|0001|P1|9");
    TLineRecord other;
    part->SetData(PacketOf({{u"QTY"_s, ftInteger},
                            {u"NO"_s, ftString, 4},
                            {u"BILLCODE"_s, ftString, 8},
                            {u"CODE"_s, ftString, 6}},
                           {{4, u"0002"_s, u"B2"_s, u"P2"_s}}));
    part->SetCurrentObject(other);
    EXPECT_EQ(RowText(other), "B2|0002|P2|4");
    part->Close();
    part->SetTable({}); // no definition, no set-up
    part->SetData(PacketOf({{u"QTY"_s, ftInteger}}, {{6}}));
    part->SetTable(u"LINE"_s);
    part->SetCurrentObject(other);
    EXPECT_EQ(RowText(other), "B2|0002|P2|6");
}

TEST_P(Mapping, FromObjectToRow)
{
    const auto part = Batch(u"PART"_s);
    TPartRecord record;
    record.Code = u"P9"_s;
    record.Name = u"九"_s;
    record.Qty = 4;
    record.Price = 2.5;
    record.Stopped = true;
    part->AppendObject(record);
    EXPECT_EQ(RowOf(*part, u"CODE;NAME;GRADE;QTY;DAYS;PRICE;STOPPED;MADE"_s), "P9|九||4|0|2.5|Y|");
    record.Stopped = false;
    part->Edit();
    part->AddObject(record);
    EXPECT_EQ(RowOf(*part, u"CODE;STOPPED"_s), "P9|N");
    // One field, by name.
    part->SetFieldValue(u"CODE"_s, u"P8"_s);
    EXPECT_EQ(RowOf(*part, u"CODE"_s), "P9");
    part->Edit();
    part->SetFieldValue(u"CODE"_s, u"P8"_s);
    part->SetFieldValue(u"NOWHERE"_s, u"P8"_s);
    EXPECT_EQ(RowOf(*part, u"CODE"_s), "P8");
    part->Cancel();
    EXPECT_EQ(MessageOf([&] { part->SetFieldValue(record); }), "数据集不在编辑或新增状态");
}

TEST_P(Mapping, AutoFieldAndPartsOfDetailFieldAreLeftOut)
{
    const auto line = Batch(u"LINE"_s);
    line->SetAutoField(u"No"_s);         // the property's name, exactly
    line->SetDetailField(u"BILLCODE"_s); // CODE is a part of it
    TLineRecord record;
    record.BillCode = u"B1"_s;
    record.No = u"0009"_s;
    record.CODE = u"P1"_s;
    record.Qty = 3;
    line->AppendObject(record);
    EXPECT_EQ(RowOf(*line, u"BILLCODE;NO;CODE;QTY"_s), "B1|0001|~|3");
}

TEST_P(Mapping, WhereObjectsLand)
{
    Run({u"insert into NUMBERED(ID, TEXT1) values(1, 'a')"_s,
         u"insert into NUMBERED(ID, TEXT1) values(2, 'b')"_s});
    const auto numbered = Batch(u"NUMBERED"_s);
    TNumberedRecord record;
    record.Id = 9;
    record.Text = u"x"_s;
    numbered->SetIndexFieldNames(u"TEXT1"_s);
    numbered->Last();
    numbered->InsertObject(record);
    EXPECT_EQ(numbered->IndexFieldNames(), "TEXT1");
    numbered->SetIndexFieldNames({});
    EXPECT_EQ(Shown(*numbered, u"ID"_s), "1 / 9 / 2");
    record.Id = 8;
    numbered->AppendObject(record);
    EXPECT_EQ(Shown(*numbered, u"ID"_s), "1 / 9 / 2 / 8");
    EXPECT_EQ(numbered->ChangeCount(), 2);
    // One that does not fit leaves no row behind, in memory or elsewhere.
    const auto refuse = [](TField *) { throw Exception(u"不行"_s); };
    numbered->SetIndexFieldNames(u"TEXT1"_s);
    numbered->FieldByName(u"ID")->OnValidate = refuse;
    Log();
    EXPECT_EQ(MessageOf([&] { numbered->InsertObject(record); }), "不行");
    EXPECT_EQ(numbered->State(), dsBrowse);
    EXPECT_EQ(numbered->IndexFieldNames(), "TEXT1");
    EXPECT_EQ(numbered->RecordCount(), 4);
    EXPECT_EQ(Log(), QStringList());
}

TEST_P(Mapping, KeyValues)
{
    const auto text = [](const QVariant &values) {
        QStringList cells;
        for (const QVariant &value : values.toList())
            cells += VarIsEmpty(value) ? u"-"_s : VarToStr(value);
        return cells.join(u'|');
    };
    AddParts({{u"P1"_s, u"a"_s, 1}});
    Run({u"insert into LINE(BILLCODE, NO) values('B1', '0001')"_s,
         u"insert into LINE(BILLCODE, NO) values('', '0002')"_s});
    const auto part = Table(u"PART"_s);
    const auto line = Table(u"LINE"_s);
    const auto query = Query(u"QPART"_s);
    EXPECT_EQ(line->GetKeyValueStr(u"-"_s), "");
    part->Open();
    line->OpenTable({}, "NO", 0);
    query->Open();
    EXPECT_TRUE(VarIsArray(part->GetKeyValues()));
    EXPECT_EQ(text(part->GetKeyValues()), "P1");
    EXPECT_EQ(text(line->GetKeyValues()), "B1|0001");
    EXPECT_EQ(text(query->GetKeyValues()), "P1");
    EXPECT_EQ(line->GetKeyValueStr({}), "B1;0001");
    EXPECT_EQ(line->GetKeyValueStr(u"-"_s), "B1-0001");
    line->Next();
    EXPECT_EQ(line->GetKeyValueStr(u"-"_s), "0002"); // no leading separator
    // Of another dataset, and of an object.
    TClientDataSet source;
    source.SetData(PacketOf({{u"NO"_s, ftString, 4}}, {{u"0007"_s}}));
    EXPECT_EQ(MessageOf([&] { line->GetKeyValues(source); }),
              "字段“BillCode”没有找到"); // it is among the own ones
    line->Close();
    EXPECT_EQ(text(line->GetKeyValues(source)), "-|0007");
    TLineRecord record;
    record.No = u"0003"_s;
    EXPECT_EQ(text(line->GetKeyValues(record)), "-|0003");
}

TEST_P(Mapping, BlobsAreParkedOneBehindTheOther)
{
    const auto part = Batch(u"PART"_s);
    part->Append();
    part->FieldByName(u"PIC")->SetAsBytes("ab"_ba);
    EXPECT_EQ(part->GetBlobString(*part->FieldByName(u"PIC")), ":PIC");
    part->InterPost();
    Log();
    part->SaveAll(); // GetBlobString, the edit's snapshot and the mapping of the row
    EXPECT_EQ(TextOfTable(u"select PIC from PART"_s), "0x616261626162");
}

TEST_P(Mapping, CopiesAndCursors)
{
    AddParts({{u"P1"_s, u"a"_s, 1}, {u"P2"_s, u"b"_s, 2}, {u"P3"_s, u"c"_s, 3}});
    const auto part = Batch(u"PART"_s);
    part->SetIndexFieldNames(u"QTY"_s);
    part->SetFilter(u"QTY>1"_s);
    part->SetFiltered(true);
    part->Edit();
    Fill(*part, {{u"NAME"_s, u"typed"_s}});
    const auto copy = part->CloneData();
    EXPECT_EQ(part->State(), dsEdit);
    EXPECT_EQ(Shown(*copy, u"CODE;NAME"_s), "P1|a / P2|b / P3|c");
    part->Cancel();
    copy->Edit();
    Fill(*copy, {{u"NAME"_s, u"z"_s}});
    copy->Post();
    EXPECT_EQ(RowOf(*part, u"NAME"_s), "b");
    // A cursor shows the fields as its source does.
    part->FieldByName(u"NAME")->SetDisplayLabel(u"品名"_s);
    part->FieldByName(u"NAME")->OnGetText = [](TField *, QString &text, bool) { text = u"shown"_s; };
    TExTable cursor;
    cursor.CloneCursor(part.get(), false);
    EXPECT_EQ(Shown(cursor, u"CODE"_s), "P2 / P3");
    EXPECT_EQ(cursor.FieldByName(u"NAME")->DisplayLabel(), "品名");
    EXPECT_EQ(cursor.FieldByName(u"NAME")->DisplayText(), "shown");
    TExTable closed;
    cursor.CloneCursor(&closed, true);
    EXPECT_TRUE(cursor.Active());
}

TEST_P(Mapping, RowsDeletedInTheDatabaseByCondition)
{
    AddParts({{u"P1"_s, u"a"_s, 1}, {u"P2"_s, u"b"_s, 2}});
    const auto part = Table(u"PART"_s);
    part->Open();
    Log();
    part->DeleteTable(); // without a master nothing
    EXPECT_EQ(Log(), QStringList());
    part->DeleteTable(u"CODE"_s, u"P1"_s);
    EXPECT_EQ(Log(), QStringList{u"delete from PART where CODE='P1'"_s});
    EXPECT_EQ(Shown(*part, u"CODE"_s), "P1 / P2");
    EXPECT_EQ(TextOfTable(u"select CODE from PART"_s), "P2");
}

INSTANTIATE_TEST_SUITE_P(Places, Mapping, testing::ValuesIn(AllPlaces()), PlaceName);

} // namespace
