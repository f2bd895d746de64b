// SPDX-License-Identifier: MIT
// The state of a design file and of the definitions made from it: what is cached, what a
// refresh sees, and what a failed aim leaves.
#include "DesignTesting.h"

#include <QMetaProperty>

using namespace Korvane;
using namespace Korvane::Testing;

namespace {

class Definitions : public DesignTest
{
protected:
    Definitions()
    {
        Store.Table("A", "TA", "甲").Field("F1", "int", {.Key = true}).Index("IA", "F1");
        Store.Table("B").Field("F2", "int");
        Store.Query("QA", "A|", "A").Column("A.F1", "One", "A.F1");
        Store.Query("QB", "B|", "B");
        Store.Command("CA", "ca").Command("CB", "cb").Change(1, "c1").Change(2, "c2");
        Open();
    }

    /// A row more in each of the seven tables.
    void Grow()
    {
        Store.Table("NEW").Field("X", "int").Index("INEW", "X");
        Store.Query("QNEW", "NEW|", "NEW").Column("NEW.X", "X", "NEW.X");
        Store.Command("CNEW", "x").Change(3, "c3");
    }

    /// Which of the new rows the file knows, a letter each.
    QString Known()
    {
        const auto known = [](auto call, const char *letter) {
            return MessageOf(call) == "nothing" ? QString(letter) : QString();
        };
        return known([&] { File.GetTable("NEW"); }, "t") + known([&] { File.GetField("NEW", "X"); }, "f") +
               (File.GetTableIndexs("NEW").isEmpty() ? "" : "i") +
               (Joined(File.GetQuerys(), &TQuerysObject::QueryCode).contains("QNEW") ? "q" : "") +
               known([&] { File.GetCommand("CNEW"); }, "c") + (File.GetMaxChangeNo() == 3 ? "h" : "");
    }
};

} // namespace

TEST_F(Definitions, a_new_file_is_inactive_and_unset)
{
    TDBDFile file;
    EXPECT_FALSE(file.Actived());
    EXPECT_EQ(file.FileName(), "");
    file.SetActived(false);
    EXPECT_FALSE(file.Actived());
}

TEST_F(Definitions, nothing_is_seen_before_a_refresh_of_its_kind)
{
    Grow();
    EXPECT_EQ(Known(), "");
    const struct
    {
        TRefreshType Type;
        const char *Known;
    } rows[] = {
        {rtChanges, "h"}, {rtCommands, "ch"}, {rtQuerys, "qch"}, {rtTables, "tfiqch"}, {rtAll, "tfiqch"}};
    for (const auto &row : rows) {
        File.Refresh(row.Type);
        EXPECT_EQ(Known(), row.Known) << row.Type;
    }
    Store.Run("delete from Changes where ChangeNo=3").Run("delete from Tables where TableCode='NEW'");
    File.Refresh(TRefreshType(99));
    EXPECT_EQ(Known(), "tfiqch") << "no such kind";
    File.Refresh(rtAll);
    EXPECT_EQ(Known(), "fiqc");
}

TEST_F(Definitions, activating_again_reads_everything_again)
{
    Grow();
    File.SetActived(true);
    EXPECT_EQ(Known(), "tfiqch");
}

TEST_F(Definitions, a_refresh_of_an_inactive_file_opens_what_it_reopens)
{
    File.SetActived(false);
    File.Refresh(rtTables);
    EXPECT_FALSE(File.Actived());
    EXPECT_EQ(File.GetTables().size(), 2);
    EXPECT_EQ(MessageOf([&] { File.GetChanges(); }), ClosedMessage);
}

TEST_F(Definitions, a_changed_file_name_waits_for_the_next_activation)
{
    DesignStore other(Dir.filePath("other.dbd"));
    other.Table("OTHER");
    File.SetFileName(other.FileName());
    EXPECT_EQ(File.FileName(), other.FileName());
    EXPECT_EQ(Joined(File.GetTables(), &TTablesObject::TableCode), "A;B");
    File.Refresh(rtAll);
    EXPECT_EQ(Joined(File.GetTables(), &TTablesObject::TableCode), "A;B");
    File.SetActived(true);
    EXPECT_EQ(Joined(File.GetTables(), &TTablesObject::TableCode), "OTHER");
}

TEST_F(Definitions, a_failed_activation_keeps_the_property)
{
    File.SetFileName(Dir.filePath("nowhere.dbd"));
    EXPECT_THROW(File.SetActived(true), Exception);
    EXPECT_TRUE(File.Actived());
    File.SetActived(false);
    EXPECT_THROW(File.SetActived(true), Exception);
    EXPECT_FALSE(File.Actived());
    File.SetFileName(Store.FileName());
    File.SetActived(true);
    EXPECT_EQ(File.GetTables().size(), 2);
}

TEST_F(Definitions, an_inactive_file_answers_nothing)
{
    TDBDFile fresh;
    File.SetActived(false);
    for (TDBDFile *file : {&fresh, &File}) {
        EXPECT_EQ(MessageOf([&] { file->GetTables(); }), ClosedMessage);
        EXPECT_EQ(MessageOf([&] { file->GetQuerys(); }), ClosedMessage);
        EXPECT_EQ(MessageOf([&] { file->GetCommands(); }), ClosedMessage);
        EXPECT_EQ(MessageOf([&] { file->GetChanges(); }), ClosedMessage);
        EXPECT_EQ(MessageOf([&] { file->GetTableNames(); }), ClosedMessage);
        EXPECT_EQ(MessageOf([&] { file->GetTable("A"); }), ClosedMessage);
        EXPECT_EQ(MessageOf([&] { file->GetTableFields("A"); }), ClosedMessage);
        EXPECT_EQ(MessageOf([&] { file->GetTableIndexs("A"); }), ClosedMessage);
        EXPECT_EQ(MessageOf([&] { file->GetField("A", "F1"); }), ClosedMessage);
        EXPECT_EQ(MessageOf([&] { file->GetQuery("QA"); }), ClosedMessage);
        EXPECT_EQ(MessageOf([&] { file->GetQueryColumns("QA"); }), ClosedMessage);
        EXPECT_EQ(MessageOf([&] { file->GetCommand("CA"); }), ClosedMessage);
        EXPECT_EQ(MessageOf([&] { file->GetChange(1); }), ClosedMessage);
        EXPECT_EQ(MessageOf([&] { file->GetMaxChangeNo(); }), ClosedMessage);
        EXPECT_EQ(MessageOf([&] { file->CreateScript(dbtAccess, false, false, false); }), ClosedMessage);
        EXPECT_EQ(MessageOf([&] { file->GetUpgradeSQL(dbtAccess, 0, 1); }), ClosedMessage);
        EXPECT_EQ(MessageOf([&] { file->GetDBDTable("B"); }), ClosedMessage);
        EXPECT_EQ(MessageOf([&] { file->GetDBDQuery("QB"); }), ClosedMessage);
        EXPECT_EQ(MessageOf([&] { file->GetDBDCommand("CB"); }), ClosedMessage);
        EXPECT_EQ(MessageOf([&] { file->GetDBDChange(2); }), ClosedMessage);
    }
    EXPECT_THROW(fresh.GetCheckSQL(), Exception);
    EXPECT_THROW(fresh.GetRepairSQL(), Exception);
}

TEST_F(Definitions, the_shared_definitions_are_aimed_anew)
{
    TDBDTable *a = File.GetDBDTable("A");
    const auto fields = a->TableFields();
    EXPECT_EQ(a->KeyFieldStr(), "F1");
    EXPECT_EQ(File.GetDBDTable("B"), a);
    EXPECT_EQ(a->Table(), "B");
    EXPECT_EQ(a->KeyFieldStr(), "F2");
    EXPECT_EQ(a->Indexs().size(), 0);
    EXPECT_EQ(Joined(fields, &TFieldsObject::FieldCode), "F1") << "a list taken before stays";
    EXPECT_EQ(File.GetDBDQuery("QA"), File.GetDBDQuery("QB"));
    EXPECT_EQ(a->Table(), "B") << "a query aims a table of its own";
    EXPECT_EQ(File.GetDBDCommand("CA"), File.GetDBDCommand("CB"));
    EXPECT_EQ(File.GetDBDChange(1), File.GetDBDChange(2));
    EXPECT_EQ(File.GetDBDCommand("CA")->CommandObject()->Access, "ca");
    EXPECT_EQ(File.GetDBDChange(1)->ChangeObject()->Access, "c1");
    EXPECT_EQ(File.GetDBDChange(1)->GetMaxChangeNo(), 2);
    for (TDBDObject *object :
         QList<TDBDObject *>{a, File.GetDBDQuery("QA"), File.GetDBDCommand("CA"), File.GetDBDChange(1)})
        EXPECT_EQ(object->DBDFile(), &File);
}

TEST_F(Definitions, an_aimed_definition_keeps_what_it_read)
{
    File.GetDBDTable("A");
    File.GetDBDQuery("QA");
    File.GetDBDCommand("CA");
    File.GetDBDChange(1);
    Store.Run("update Fields set FieldCode='RENAMED' where FieldCode='F1'")
        .Run("update Columns set TableField='A.RENAMED', Alias='Renamed'")
        .Run("update Commands set Access='new'")
        .Run("update Changes set Access='new'");
    File.Refresh(rtAll);
    EXPECT_EQ(File.GetDBDTable("A")->KeyFieldStr(), "F1");
    EXPECT_EQ(File.GetDBDQuery("QA")->QueryFields()[0]->FieldCode, "One");
    EXPECT_EQ(File.GetDBDCommand("CA")->CommandObject()->Access, "ca");
    EXPECT_EQ(File.GetDBDChange(1)->ChangeObject()->Access, "c1");
    File.SetActived(true);
    EXPECT_EQ(File.GetDBDTable("A")->KeyFieldStr(), "F1");
    // Aimed at another one first, it reads again.
    File.GetDBDTable("B");
    File.GetDBDQuery("QB");
    File.GetDBDCommand("CB");
    File.GetDBDChange(2);
    EXPECT_EQ(File.GetDBDTable("A")->KeyFieldStr(), "RENAMED");
    EXPECT_EQ(File.GetDBDQuery("QA")->QueryFields()[0]->FieldCode, "Renamed");
    EXPECT_EQ(File.GetDBDCommand("CA")->CommandObject()->Access, "new");
    EXPECT_EQ(File.GetDBDChange(1)->ChangeObject()->Access, "new");
    // Code and class are different texts for the same table.
    Store.Run("update Tables set TableName='新' where TableCode='A'");
    File.Refresh(rtTables);
    EXPECT_EQ(File.GetDBDTable("A")->TableObject()->TableName, "甲");
    EXPECT_EQ(File.GetDBDTable("TA")->TableObject()->TableName, "新");
    EXPECT_EQ(File.GetDBDTable("TA")->Table(), "TA");
}

TEST_F(Definitions, a_bad_code_is_kept_and_raises_once)
{
    TDBDTable *table = File.GetDBDTable("A");
    EXPECT_EQ(MessageOf([&] { File.GetDBDTable("BAD"); }), "数据库设计文件中没有定义表信息 BAD");
    EXPECT_EQ(table->Table(), "BAD");
    EXPECT_EQ(table->TableObject()->TableCode, "A");
    EXPECT_EQ(table->KeyFieldStr(), "F1");
    EXPECT_EQ(MessageOf([&] { File.GetDBDTable("BAD"); }), "nothing");
    EXPECT_EQ(table->GetSelectSQL(false), "select * from A");

    TDBDQuery *query = File.GetDBDQuery("QA");
    EXPECT_EQ(MessageOf([&] { File.GetDBDQuery("BAD"); }), "数据库设计文件中没有定义查询信息 BAD");
    EXPECT_EQ(query->Query(), "BAD");
    EXPECT_EQ(query->QueryObject()->QueryCode, "QA");
    EXPECT_EQ(query->Table(), "A");
    EXPECT_EQ(MessageOf([&] { File.GetDBDQuery("BAD"); }), "nothing");

    TDBDCommand *command = File.GetDBDCommand("CA");
    EXPECT_EQ(MessageOf([&] { File.GetDBDCommand("BAD"); }), "数据库设计文件中没有定义\"BAD\"命令信息");
    EXPECT_EQ(command->Command(), "BAD");
    EXPECT_EQ(command->CommandObject()->CommandCode, "CA");
    EXPECT_EQ(MessageOf([&] { File.GetDBDCommand("BAD"); }), "nothing");

    TDBDChange *change = File.GetDBDChange(1);
    EXPECT_EQ(MessageOf([&] { File.GetDBDChange(99); }), "数据库设计文件中没有定义相关的变更信息99");
    EXPECT_EQ(change->ChangeNo(), 99);
    EXPECT_EQ(change->ChangeObject()->ChangeNo, 1);
    EXPECT_EQ(MessageOf([&] { File.GetDBDChange(99); }), "nothing");
}

TEST_F(Definitions, change_0_and_the_empty_command_are_the_start)
{
    EXPECT_EQ(MessageOf([&] { File.GetDBDChange(0); }), "nothing");
    EXPECT_EQ(RowText(*File.GetDBDChange(0)->ChangeObject()), "0|||||");
    EXPECT_EQ(RowText(*File.GetDBDCommand("")->CommandObject()), "||||");
    File.GetDBDChange(1);
    EXPECT_EQ(MessageOf([&] { File.GetDBDChange(0); }), "数据库设计文件中没有定义相关的变更信息0");
}

TEST_F(Definitions, a_definition_of_ones_own)
{
    TDBDTable table;
    EXPECT_EQ(MessageOf([&] { table.CheckTable(); }), "没有设置好Table属性");
    EXPECT_EQ(MessageOf([&] { table.SetTable("A"); }), "没有设置正确的DBDFile属性");
    TDBDTable second;
    {
        TDBDFile file;
        file.SetFileName(Store.FileName());
        file.SetActived(true);
        second.SetDBDFile(&file);
        second.SetTable("A");
    }
    EXPECT_EQ(second.DBDFile(), nullptr) << "the file is gone";
    EXPECT_EQ(second.GetSelectSQL(false), "select * from A") << "what was read stays";
    EXPECT_EQ(MessageOf([&] { second.SetTable("B"); }), "没有设置正确的DBDFile属性");
}

// Forms store the properties by these names and in this order.
TEST(DefinitionClasses, reflected_properties_stand_in_their_order)
{
    const struct
    {
        const QMetaObject &Class;
        const char *Properties;
    } rows[] = {
        {TDBDObject::staticMetaObject, "DBDFile"},
        {TDBDTable::staticMetaObject, "Table TableObject TableFields Indexs KeyFields KeyFieldStr"},
        {TDBDQuery::staticMetaObject,
         "Table Query QueryObject Columns QueryFields Indexs KeyFields KeyFieldStr"},
        {TDBDCommand::staticMetaObject, "Command CommandObject"},
        {TDBDChange::staticMetaObject, "ChangeNo ChangeObject"},
        {TDBDFile::staticMetaObject, "Actived FileName"},
    };
    for (const auto &row : rows) {
        QStringList names;
        for (int i = row.Class.propertyOffset(); i < row.Class.propertyCount(); ++i)
            names.append(QLatin1String(row.Class.property(i).name()));
        EXPECT_EQ(names.join(QLatin1Char(' ')), QLatin1String(row.Properties)) << row.Class.className();
    }
}
