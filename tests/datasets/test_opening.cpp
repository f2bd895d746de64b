// SPDX-License-Identifier: MIT
#include "DataSetTesting.h"

using namespace Korvane;
using namespace Korvane::Testing;

namespace {

class Opening : public DataSetTest
{
};

const QString PartFields = u"CODE;NAME;GRADE;QTY;DAYS;PRICE;RATE;MADE;SEEN;STOPPED;NOTE;PIC"_s;

TEST_P(Opening, AsksForFileThenSessionThenName)
{
    TExTable table;
    EXPECT_EQ(MessageOf([&] { table.Open(); }), "没有设置正确的DBDFile属性");
    table.SetDBDFile(&Design);
    EXPECT_EQ(MessageOf([&] { table.Open(); }), "没有设置正确的DBSession属性");
    table.SetDBSession(&Session);
    EXPECT_EQ(MessageOf([&] { table.Open(); }), "没有设置正确的Table属性");
    TExQuery query;
    Connect(query);
    EXPECT_EQ(MessageOf([&] { query.Open(); }), "没有设置正确的Query属性");
    EXPECT_FALSE(table.Active() || table.Actived() || query.Actived() || table.ControlsDisabled());
    EXPECT_EQ(Log(), QStringList());
}

TEST_P(Opening, OpensTheFileAndConnectsOnFirstUse)
{
    TDBDFile file;
    file.SetFileName(Design.FileName());
    Session.SetConnected(false);
    const auto table = Table(u"PART"_s);
    table->SetDBDFile(&file);
    table->Open();
    EXPECT_TRUE(file.Actived() && Session.Connected() && table->Actived());
}

TEST_P(Opening, StatementsOfAllWays)
{
    const auto part = Table(u"PART"_s);
    const auto query = Query(u"QPART"_s);
    const auto grade = Query(u"QGRADE"_s);
    const QString columns =
        u"select \r\n  PART.CODE as Code, \r\n  PART.NAME as Name, \r\n  PART.QTY as Amount, "
        "\r\n  PART.RATE*2 as Twice\r\nfrom\rPART"_s;
    const QString graded = u"select \r\n  PART.CODE as Code, \r\n  PART.QTY as Amount\r\nfrom\rPART where "
                           "PART.GRADE='B' and PART.NAME like '%%'"_s;
    const QString anything = GetParam() == dbtMSSQL ? u"%"_s : u"*"_s;
    const struct
    {
        std::function<void()> Open;
        QString Statement;
    } rows[] = {
        {[&] { part->Open(); }, u"select * from PART"_s},
        {[&] { part->OpenTable(u"CODE"_s, u"P1"_s, ooEqualAnd); }, u"select * from PART where CODE='P1'"_s},
        {[&] {
             part->OpenTable("CODE;QTY", VarArrayOf({"P1", 3}), ooEqualOr);
         },
         u"select * from PART where CODE='P1' or QTY=3"_s},
        {[&] { part->OpenTable("NAME", "a", ooLikeAnd); },
         u"select * from PART where NAME like '"_s + anything + 'a' + anything + '\''},
        {[&] { part->OpenTable("QTY=1", "NAME", 10); },
         u"select top 10 * from (select * from PART) ZZZ where QTY=1 order by NAME"_s},
        {[&] { part->OpenTable({}, {}, 0); }, u"select * from (select * from PART) ZZZ"_s},
        {[&] { part->OpenTable({}, "CODE desc", 0); },
         u"select * from (select * from PART) ZZZ order by CODE desc"_s},
        {[&] { query->Open(); }, columns},
        {[&] { query->OpenTable(u"Code"_s, u"P1"_s, ooEqualAnd); },
         u"select * from ("_s + columns + u") ZZZ where Code='P1'"_s},
        {[&] { query->OpenTable("Amount>1", {}, 2); },
         u"select top 2 * from ("_s + columns + u") ZZZ where Amount>1"_s},
        {[&] { grade->OpenTable({"B"}); }, graded},
        {[&] { grade->OpenTable({"B"}, u"Amount=1"_s, u"Code"_s); },
         u"select * from ("_s + graded + u") ZZZ where Amount=1 order by Code"_s},
    };
    for (const auto &row : rows) {
        row.Open();
        EXPECT_EQ(Log(), QStringList{row.Statement});
    }
    EXPECT_EQ(grade->LastSQL(), rows[11].Statement);
}

/// What reads on beside other work is the embedded engine; a server gives all rows at once.
TEST_P(Opening, ReadsTheFirstRowsAtOnceAndTheOthersWhenTheyAreWanted)
{
    AddParts({{u"P1"_s, u"a"_s, 1}, {u"P2"_s, u"b"_s, 2}, {u"P3"_s, u"c"_s, 3}, {u"P4"_s, u"d"_s, 4}});
    const auto part = Table(u"PART"_s);
    part->SetFirstRows(2);
    const auto open = [&] {
        Log();
        part->OpenTable({}, u"CODE"_s, 0);
        EXPECT_EQ(part->FetchedCount(), GetParam().IsEmbedded() ? 2 : 4);
        EXPECT_EQ(Log(), QStringList{part->LastSQL()});
        EXPECT_EQ(RowOf(*part, u"CODE"_s), "P1");
    };
    open();
    EXPECT_EQ(Shown(*part, u"CODE;QTY"_s), "P1|1 / P2|2 / P3|3 / P4|4");
    EXPECT_EQ(Log(), QStringList()) << "without another statement";

    // A change, of whose statement the rows that are not read yet know nothing.
    open();
    Fill((part->Edit(), *part), {{u"QTY"_s, u"7"_s}});
    part->Post();
    EXPECT_EQ(Shown(*part, u"CODE;QTY"_s), "P1|7 / P2|2 / P3|3 / P4|4");
    open();
    part->Delete();
    EXPECT_EQ(Shown(*part, u"CODE;QTY"_s), "P2|2 / P3|3 / P4|4");
    EXPECT_EQ(TextOfTable(u"select CODE from PART order by CODE"_s), "P2 / P3 / P4");

    // A save that replaces all rows, the first statement of which deletes them.
    part->SetCommitType(ctBatchCommit);
    part->SetUpdateType(utAll);
    part->SetFirstRows(1);
    part->OpenTable();
    part->Save();
    EXPECT_EQ(TextOfTable(u"select CODE from PART order by CODE"_s), "P2 / P3 / P4");
}

/// The rows of a detail that are changed and not saved are not read anew for the master's sake.
TEST_P(Opening, ADetailKeepsItsChangesWhenTheMasterHasAllRows)
{
    Run({u"insert into HEAD(BILLCODE, CUST) values('B1', 'x')"_s,
         u"insert into HEAD(BILLCODE, CUST) values('B2', 'y')"_s,
         u"insert into LINE(BILLCODE, NO, QTY) values('B1', '0001', 5)"_s});
    const auto head = Table(u"HEAD"_s), line = Table(u"LINE"_s);
    TDataSource source;
    source.SetDataSet(head.get());
    line->SetMasterDataSource(&source);
    line->SetMasterField(u"BILLCODE"_s);
    line->SetDetailField(u"BILLCODE"_s);
    head->SetFirstRows(1);
    head->Open();
    line->Open();
    Fill((line->Edit(), *line), {{u"QTY"_s, u"6"_s}});
    line->InterPost();
    head->FetchAll();
    EXPECT_EQ(head->RecordCount(), 2);
    EXPECT_EQ(line->ChangeCount(), 1);
    EXPECT_EQ(RowOf(*line, u"QTY"_s), "6");
}

TEST_P(Opening, SelectionAndAuditColumns)
{
    AddParts({{u"P1"_s, u"a"_s, 1}});
    const auto part = Table(u"PART"_s);
    part->SetAllowSelect(true);
    part->Open();
    EXPECT_EQ(Log(), QStringList{u"select 'N' as FSELECTED, * from PART"_s});
    EXPECT_EQ(RowOf(*part, u"FSELECTED;CODE"_s), "N|P1");
    EXPECT_EQ(part->FieldByName(u"FSELECTED")->DisplayLabel(), "选择");
    EXPECT_EQ(part->FieldByName(u"FSELECTED")->DisplayWidth(), 5);
    const auto query = Query(u"QPART"_s);
    query->SetSystemFields(true);
    query->Open();
    EXPECT_EQ(query->FieldCount(), 9);
    EXPECT_TRUE(query->FindField(u"CREATORGROUP"));
}

TEST_P(Opening, HowFieldsAreShown)
{
    const auto part = Table(u"PART"_s);
    part->Open();
    QStringList shown;
    for (const TField *field : part->GetFieldList(PartFields))
        shown += field->FieldName() + ' ' + field->DisplayLabel() + ' ' +
                 QString::number(field->DisplayWidth()) + ' ' + field->DisplayFormat();
    EXPECT_EQ(shown, (QStringList{u"CODE 编号 6 "_s, u"NAME 名称 40 "_s, u"GRADE 等级 12 "_s,
                                  u"QTY 数量 10 "_s, u"DAYS 天数 10 "_s, u"PRICE 单价 12 #,##0.00##"_s,
                                  u"RATE 折扣 10 "_s, u"MADE 日期 12 "_s, u"SEEN 时间 20 "_s,
                                  u"STOPPED 停用 6 "_s, u"NOTE 备注 40 "_s, u"PIC 图片 10 "_s}));
}

TEST_P(Opening, HiddenFields)
{
    const auto part = Table(u"PART"_s);
    const auto hidden = [&] {
        QStringList names;
        for (const TField *field : part->Fields())
            if (!field->Visible())
                names += field->FieldName();
        return names.join(u';');
    };
    part->SetHideFields(u"NAME;GRADE;NOWHERE"_s); // before the open
    part->Open();
    EXPECT_EQ(hidden(), "NAME;GRADE");
    part->SetHideFields(u"QTY"_s); // shows nothing again
    EXPECT_EQ(hidden(), "NAME;GRADE;QTY");
    EXPECT_TRUE(part->IsHideField(u"QTY"_s));
    EXPECT_FALSE(part->IsHideField(u"Qty"_s));
    EXPECT_FALSE(part->IsHideField(u"NAME"_s));
    part->FieldByName(u"PIC")->SetVisible(false);
    part->SetHideFields({});
    EXPECT_EQ(hidden(), "");
}

TEST_P(Opening, ActivedFollowsReadsAndClose)
{
    AddParts({{u"P1"_s, u"a"_s, 1}});
    const auto part = Table(u"PART"_s);
    part->SetActived(true);
    EXPECT_TRUE(part->Active() && part->Actived());
    EXPECT_EQ(part->ChangeCount(), 0);
    AddParts({{u"P2"_s, u"b"_s, 2}});
    part->SetActived(true); // reads again
    EXPECT_EQ(Shown(*part, u"CODE"_s), "P1 / P2");
    EXPECT_NE(MessageOf([&] { part->OpenTable("NOWHERE=1", {}, 0); }), "nothing");
    EXPECT_TRUE(part->Actived());
    EXPECT_EQ(part->LastSQL(), "select * from PART");
    EXPECT_FALSE(part->ControlsDisabled());
    part->Close();
    EXPECT_FALSE(part->Active() || part->Actived());
    part->SetActived(true);
    part->SetActived(false);
    EXPECT_FALSE(part->Active());
}

TEST_P(Opening, AFieldThatWasNotReadRaisesWithTheDatasetOpen)
{
    Run({u"alter table PART drop column RATE"_s});
    const auto part = Table(u"PART"_s);
    EXPECT_EQ(MessageOf([&] { part->Open(); }), "字段“RATE”没有找到");
    EXPECT_TRUE(part->Active());
    EXPECT_FALSE(part->Actived() || part->ControlsDisabled());
}

TEST_P(Opening, AnEmptyDatasetFromTheDefinition)
{
    TExTable part;
    part.SetTable(u"PART"_s);
    EXPECT_EQ(MessageOf([&] { part.CreateDataSet(); }), "没有设置正确的DBDFile属性");
    part.SetDBDFile(&Design);
    part.CreateDataSet();
    QStringList fields;
    for (const TFieldDef &def : std::as_const(part).FieldDefs())
        fields += def.Name + ' ' + NameOf(def.DataType) + ' ' + QString::number(def.Size);
    EXPECT_EQ(fields.join(u", "_s),
              "CODE string 6, NAME string 60, GRADE string 1, QTY integer 0, DAYS smallint 0, "
              "PRICE float 0, RATE float 0, MADE string 0, SEEN string 0, STOPPED string 0, "
              "NOTE memo 0, PIC blob 0");
    EXPECT_EQ(part.FieldByName(u"NAME")->DisplayLabel(), "名称");
    EXPECT_TRUE(part.Active());
    EXPECT_FALSE(part.Actived());
    part.SetTable({});
    EXPECT_NE(MessageOf([&] { part.CreateDataSet(); }), "nothing");
}

INSTANTIATE_TEST_SUITE_P(Places, Opening, testing::ValuesIn(AllPlaces()), PlaceName);

} // namespace
