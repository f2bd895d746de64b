// SPDX-License-Identifier: MIT
#include "platform/controls/DataSetModel.h"

#include "platform/data/dataset/Fields.h"
#include "support/DataSets.h"

#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QComboBox>
#include <QCompleter>
#include <QLineEdit>
#include <QRandomGenerator>
#include <QSortFilterProxyModel>
#include <QTableView>
#include <QTest>

namespace Korvane {

namespace {

const QList<TPacketField> Fields = {{"CODE", ftString, 4}, {"QTY", ftInteger}, {"FLAG", ftString, 1}};

std::unique_ptr<TClientDataSet> Goods()
{
    return DataSetOf(Fields, {{"A", 1, "Y"}, {"B", 2, "N"}, {"C", 3, {}}, {"D", 4, "Y"}});
}

/// "A|1|Y B|2|N"; a new row has "*" before it.
QString TextOf(const TDataSetModel &model)
{
    QStringList rows;
    for (int row = 0; row < model.rowCount(); ++row) {
        QStringList cells;
        for (int column = 0; column < model.columnCount(); ++column)
            cells += model.index(row, column).data().toString();
        const bool isNew = row == model.CurrentRow() && model.DataSource()->State() == dsInsert;
        rows += (isNew ? "*" : "") + cells.join('|');
    }
    return rows.join(' ');
}

/// A model over a dataset, watched by Qt's tester, which ends the program at the first fault; and a log
/// of what it tells.
class TWatchedModel
{
public:
    explicit TWatchedModel(TDataSet *set)
    {
        Source.SetDataSet(set);
        Model.SetDataSource(&Source);
        const auto note = [this](const QString &text) { FLog += text; };
        QObject::connect(&Model, &TDataSetModel::Failed,
                         [=](const QString &text) { note("failed: " + text); });
        QObject::connect(&Model, &TDataSetModel::modelReset, [=] { note("reset"); });
        QObject::connect(&Model, &TDataSetModel::headerDataChanged, [=] { note("header"); });
        QObject::connect(&Model, &TDataSetModel::rowsInserted,
                         [=](const QModelIndex &, int row) { note("insert " + QString::number(row)); });
        QObject::connect(&Model, &TDataSetModel::rowsRemoved,
                         [=](const QModelIndex &, int row) { note("remove " + QString::number(row)); });
        QObject::connect(&Model, &TDataSetModel::rowsMoved,
                         [=](const QModelIndex &, int from, int, const QModelIndex &, int to) {
                             note(QString("move %1 before %2").arg(from).arg(to));
                         });
        QObject::connect(
            &Model, &TDataSetModel::dataChanged,
            [=, this](const QModelIndex &first, const QModelIndex &last) {
                const bool all = last.row() - first.row() + 1 == Model.rowCount() &&
                                 last.column() - first.column() + 1 == Model.columnCount();
                note(all ? QString("all")
                         : QString("cells %1,%2-%3").arg(first.row()).arg(first.column()).arg(last.column()));
            });
    }

    /// What has been told since the last call.
    QString Take() { return std::exchange(FLog, {}).join(", "); }

    QVariant Cell(int row, int column, int role = Qt::DisplayRole) const
    {
        return Model.index(row, column).data(role);
    }

    QString Text() const { return TextOf(Model); }

    TDataSource Source;
    TDataSetModel Model;

private:
    QAbstractItemModelTester FTester{&Model, QAbstractItemModelTester::FailureReportingMode::Fatal};
    QStringList FLog;
};

} // namespace

TEST(DataSetModel, TellsWhatBecomesOfTheRows)
{
    const auto set = Goods();
    TWatchedModel watched(set.get());
    set->SetIndexFieldNames("QTY");
    watched.Take();
    const struct
    {
        const char *Steps, *Told, *Rows;
    } steps[] = {
        {"next", "", "A|1|Y B|2|N C|3| D|4|Y"},
        {"recno 4;prior;prior", "", "A|1|Y B|2|N C|3| D|4|Y"},
        {"first", "all", "A|1|Y B|2|N C|3| D|4|Y"},
        {"recno 2;edit", "cells 1,0-2", "A|1|Y B|2|N C|3| D|4|Y"},
        {"QTY=9", "cells 1,1-1", "A|1|Y B|9|N C|3| D|4|Y"},
        {"cancel", "all", "A|1|Y B|2|N C|3| D|4|Y"},
        {"edit;FLAG=~", "cells 1,0-2, cells 1,2-2", "A|1|Y B|2| C|3| D|4|Y"},
        {"post", "all", "A|1|Y B|2| C|3| D|4|Y"},
        {"edit;QTY=9;post", "cells 1,0-2, cells 1,1-1, move 1 before 4, all", "A|1|Y C|3| D|4|Y B|9|"},
        {"edit;QTY=0;post", "cells 3,0-2, cells 3,1-1, move 3 before 0, all", "B|0| A|1|Y C|3| D|4|Y"},
        {"recno 3;insert", "insert 2, all", "B|0| A|1|Y *|| C|3| D|4|Y"},
        {"CODE=E;QTY=7", "cells 2,0-0, cells 2,1-1", "B|0| A|1|Y *E|7| C|3| D|4|Y"},
        {"post", "move 2 before 5, all", "B|0| A|1|Y C|3| D|4|Y E|7|"},
        {"append", "insert 5, all", "B|0| A|1|Y C|3| D|4|Y E|7| *||"},
        {"cancel", "remove 5, all", "B|0| A|1|Y C|3| D|4|Y E|7|"},
        {"append;CODE=F;QTY=2", "insert 5, all, cells 5,0-0, cells 5,1-1",
         "B|0| A|1|Y C|3| D|4|Y E|7| *F|2|"},
        {"recno 1", "move 5 before 2, all", "B|0| A|1|Y F|2| C|3| D|4|Y E|7|"},
        {"recno 3;delete", "remove 2, all", "B|0| A|1|Y C|3| D|4|Y E|7|"},
        {"last;delete", "all, remove 4, all", "B|0| A|1|Y C|3| D|4|Y"},
        {"recno 1;delete", "remove 0, all", "A|1|Y C|3| D|4|Y"},
        {"undo", "reset", "A|1|Y B|2|N C|3| D|4|Y"},
        {"filter QTY>1", "reset", "B|2|N C|3| D|4|Y"},
        {"edit;QTY=1;post", "cells 0,0-2, cells 0,1-1, remove 0, all", "C|3| D|4|Y"},
        {"append;QTY=0;post", "insert 2, all, cells 2,1-1, remove 2, all", "C|3| D|4|Y"},
        {"filter ", "reset, all", "|0| A|1|Y B|1|N C|3| D|4|Y"},
        {"recno 2;delete;refresh", "remove 1, all, all", "|0| B|1|N C|3| D|4|Y"},
        {"index CODE", "reset", "|0| B|1|N C|3| D|4|Y"},
        {"recno 2;cancelupdates", "all", "A|1|Y B|2|N C|3| D|4|Y"},
        {"close", "reset", ""},
    };
    for (const auto &step : steps) {
        Do(*set, step.Steps);
        EXPECT_EQ(watched.Take(), step.Told) << step.Steps;
        EXPECT_EQ(watched.Text(), step.Rows) << step.Steps;
    }
    set->SetIndexFieldNames({});
    set->SetData(PacketOf({{"N", ftInteger}}, {{1}, {2}}));
    EXPECT_EQ(watched.Take(), "reset");
    EXPECT_EQ(watched.Text(), "1 2");
}

TEST(DataSetModel, KeepsIndexesWithTheirRecords)
{
    for (quint32 seed = 1; seed <= 40; ++seed) {
        SCOPED_TRACE(seed);
        QRandomGenerator random(seed);
        const auto set = Goods();
        TWatchedModel watched(set.get());
        set->SetIndexFieldNames("QTY");
        QMap<QString, QPersistentModelIndex> places;
        int codes = 0;
        for (int step = 0; step < 80; ++step) {
            const int count = int(set->RecordCount());
            const QString goes = QString("recno %1;").arg(random.bounded(qMax(count, 1)) + 1);
            const QString qty = QString("QTY=%1;").arg(random.bounded(12));
            const QString code = QString("CODE=N%1;").arg(codes++);
            const QStringList steps = {"first",
                                       "last",
                                       goes + "edit;" + qty + "post",
                                       goes + "insert;" + code + qty + "post",
                                       "append;" + code + qty + "post",
                                       goes + "insert;" + code + "cancel",
                                       goes + "edit;" + qty + "cancel",
                                       goes + "delete"};
            const QString chosen = count == 0 ? steps[4] : steps[random.bounded(int(steps.size()))];
            for (const QString &part : chosen.split(';')) {
                const QString current = set->IsEmpty() ? QString() : set->FieldByName(u"CODE")->AsString();
                Do(*set, part);
                if (part == "delete")
                    places.remove(current);
                for (auto it = places.begin(); it != places.end(); ++it) {
                    ASSERT_TRUE(it->isValid()) << chosen.toStdString();
                    ASSERT_EQ(it->data().toString(), it.key()) << chosen.toStdString();
                }
            }
            for (int row = 0; row < watched.Model.rowCount(); ++row)
                places[watched.Cell(row, 0).toString()] = watched.Model.index(row, 0);
            EXPECT_EQ(watched.Model.rowCount(), set->RecordCount());
            EXPECT_EQ(places.size(), set->RecordCount());
        }
    }
}

TEST(DataSetModel, ShowsFieldsAsTheDatasetDoes)
{
    auto set = std::make_unique<TClientDataSet>();
    auto *twice = new TIntegerField(set.get());
    twice->SetFieldName("TWICE");
    twice->SetFieldKind(fkCalculated);
    twice->SetDataSet(set.get());
    set->OnCalcFields = [&](TDataSet *rows) {
        if (rows->FieldByName(u"QTY")->AsInteger() == 13)
            throw EDatabaseError("unlucky");
        twice->SetAsInteger(2 * rows->FieldByName(u"QTY")->AsInteger());
    };
    set->SetData(Goods()->Data());
    TWatchedModel watched(set.get());
    set->FieldByName(u"QTY")->SetDisplayFormat("0.00");
    set->FieldByName(u"QTY")->SetDisplayLabel("数量");
    watched.Take();
    EXPECT_EQ(watched.Cell(1, 1), "2.00");
    EXPECT_EQ(watched.Cell(1, 1, Qt::EditRole), "2");
    EXPECT_EQ(watched.Cell(1, 1, Qt::TextAlignmentRole).toInt(), int(Qt::AlignRight | Qt::AlignVCenter));
    EXPECT_EQ(watched.Cell(1, 0, Qt::TextAlignmentRole).toInt(), int(Qt::AlignLeft | Qt::AlignVCenter));
    EXPECT_FALSE(watched.Cell(1, 0, Qt::ToolTipRole).isValid());
    EXPECT_FALSE(watched.Cell(1, 2, Qt::CheckStateRole).isValid());
    EXPECT_EQ(watched.Model.headerData(1, Qt::Horizontal), "数量");
    EXPECT_EQ(watched.Model.headerData(3, Qt::Vertical), 4);
    EXPECT_EQ(watched.Model.roleNames().value(Qt::UserRole + 3), "TWICE");
    EXPECT_EQ(watched.Cell(2, 0, Qt::UserRole + 3), "6") << "the role of a field, whatever the column";

    Do(*set, "next;edit;QTY=5");
    EXPECT_EQ(watched.Text(), "A|1.00|Y|2 B|5.00|N|10 C|3.00||6 D|4.00|Y|8");
    EXPECT_EQ(watched.Take(), "cells 1,0-3, cells 1,1-1, cells 1,3-3") << "with what is calculated";
    Do(*set, "QTY=13");
    EXPECT_EQ(watched.Text(), "A|1.00|Y|2 B|13.00|N| C|3.00||6 D|4.00|Y|8") << "a handler that raises";
    Do(*set, "cancel");

    watched.Take();
    set->FieldByName(u"FLAG")->SetVisible(false);
    EXPECT_EQ(watched.Take(), "reset, header");
    EXPECT_EQ(watched.Text(), "A|1.00|2 B|2.00|4 C|3.00|6 D|4.00|8");
    EXPECT_EQ(RaisedBy([&] {
                  watched.Model.SetFieldNames({"FLAG", "NONE"});
              }),
              "EDatabaseError: 字段“NONE”没有找到");
    watched.Model.SetFieldNames({"flag", "code"});
    EXPECT_EQ(watched.Text(), "Y|A N|B |C Y|D");
    watched.Model.SetCheckField("FLAG");
    EXPECT_EQ(watched.Text(), "|A |B |C |D");
    EXPECT_EQ(watched.Cell(0, 0, Qt::CheckStateRole), Qt::Checked);
    EXPECT_EQ(watched.Cell(1, 0, Qt::CheckStateRole), Qt::Unchecked);
    EXPECT_EQ(watched.Cell(2, 0, Qt::CheckStateRole), Qt::Unchecked);
    delete twice;
    EXPECT_EQ(watched.Text(), "|A |B |C |D");
}

TEST(DataSetModel, WritesIntoTheRowThatItEdits)
{
    const auto set = Goods();
    TWatchedModel watched(set.get());
    TDataSetModel &model = watched.Model;
    model.SetCheckField("FLAG");
    set->SetIndexFieldNames("QTY");
    const auto write = [&](int row, int column, const QVariant &value, int role = Qt::EditRole) {
        return model.setData(model.index(row, column), value, role);
    };
    EXPECT_TRUE(write(2, 1, "3")) << "as it stands";
    EXPECT_EQ(PlaceOf(*set), "browse 1/4");
    EXPECT_TRUE(write(2, 1, "0"));
    EXPECT_EQ(PlaceOf(*set), "edit 3/4 modified");
    EXPECT_TRUE(write(2, 0, "X"));
    EXPECT_EQ(PlaceOf(*set), "edit 3/4 modified");
    // The row of X is posted and moves to the front; the row that was meant is still the one of B.
    EXPECT_TRUE(write(1, 2, Qt::Checked, Qt::CheckStateRole));
    EXPECT_EQ(PlaceOf(*set), "edit 3/4 modified");
    EXPECT_TRUE(model.submit());
    EXPECT_EQ(ViewOf(*set), "X|0|~\nA|1|Y\n>B|2|Y\nD|4|Y\n");
    EXPECT_TRUE(write(0, 2, Qt::Unchecked, Qt::CheckStateRole));
    EXPECT_TRUE(write(0, 1, 5));
    EXPECT_TRUE(write(0, 0, QVariant()));
    EXPECT_EQ(RowOf(*set), "~|5|N");
    model.revert();
    EXPECT_EQ(ViewOf(*set), ">X|0|~\nA|1|Y\nB|2|Y\nD|4|Y\n");

    // A new row that nothing was written into goes away when another is edited.
    set->Insert();
    EXPECT_TRUE(model.submit());
    EXPECT_EQ(watched.Text(), "*|| X|0| A|1| B|2| D|4|");
    EXPECT_TRUE(write(2, 0, "A2"));
    EXPECT_TRUE(model.submit());
    EXPECT_EQ(ViewOf(*set, "CODE"), "X >A2 B D");
    set->Append();
    EXPECT_TRUE(write(4, 0, "N"));
    EXPECT_TRUE(write(4, 1, "1"));
    EXPECT_EQ(PlaceOf(*set), "insert 0/4 modified");
    EXPECT_TRUE(write(3, 0, "D2"));
    EXPECT_TRUE(model.submit());
    EXPECT_EQ(ViewOf(*set, "CODE"), "X A2 N B >D2");
    EXPECT_EQ(model.ErrorText(), "");
}

TEST(DataSetModel, ReportsWhatFailsAndLosesNothing)
{
    const auto set = Goods();
    set->FieldByName(u"CODE")->SetRequired(true);
    set->FieldByName(u"CODE")->SetDisplayLabel("编号");
    TWatchedModel watched(set.get());
    TDataSetModel &model = watched.Model;
    const auto write = [&](int row, int column, const QVariant &value, int role = Qt::EditRole) {
        watched.Take();
        const bool done = model.setData(model.index(row, column), value, role);
        const QStringList told = watched.Take().split(", ").filter("failed");
        EXPECT_EQ(told.size(), done || model.ErrorText().isEmpty() ? 0 : 1);
        return done ? "done" : model.ErrorText();
    };
    EXPECT_EQ(write(1, 1, "many"), "字段“QTY”的值“many”不是有效的整数");
    EXPECT_EQ(PlaceOf(*set), "browse 2/4") << "the edit ends with the failure that it began with";
    EXPECT_EQ(write(1, 0, ""), "done");
    EXPECT_EQ(write(1, 1, "many"), "字段“QTY”的值“many”不是有效的整数");
    EXPECT_EQ(RowOf(*set), "|2|N") << "what was typed before stays";
    Do(*set, "CODE=~");
    EXPECT_EQ(write(3, 1, "7"), "字段“编号”必须有值") << "the row before cannot be posted";
    EXPECT_EQ(PlaceOf(*set), "edit 2/4 modified");
    EXPECT_FALSE(model.submit());
    EXPECT_EQ(watched.Take(), "failed: 字段“编号”必须有值");
    model.revert();
    EXPECT_EQ(ViewOf(*set, "CODE"), "A >B C D");

    set->BeforeEdit = [](TDataSet *) { Abort(); };
    EXPECT_EQ(write(1, 0, "X"), "") << "an abort says nothing";
    set->BeforeEdit = nullptr;
    EXPECT_FALSE(model.setData(model.index(1, 2), Qt::Checked, Qt::CheckStateRole)) << "no box asked for";

    const auto flags = [&] { return model.flags(model.index(1, 1)); };
    EXPECT_TRUE(flags() & Qt::ItemIsEditable);
    watched.Source.SetAutoEdit(false);
    EXPECT_FALSE(flags() & Qt::ItemIsEditable);
    EXPECT_EQ(write(1, 1, "8"), "字段“QTY”现在不能修改");
    watched.Source.SetAutoEdit(true);
    set->SetReadOnly(true);
    EXPECT_FALSE(flags() & Qt::ItemIsEditable);
    EXPECT_EQ(write(1, 1, "8"), "字段“QTY”现在不能修改");
    set->SetReadOnly(false);
    set->DisableControls();
    Do(*set, "recno 1;delete");
    EXPECT_EQ(watched.Text(), "B|2|N C|3| D|4|Y ||") << "reading is safe";
    EXPECT_EQ(write(1, 1, "8"), "数据集正在批量处理，现在不能修改");
    set->EnableControls();
    EXPECT_EQ(watched.Text(), "B|2|N C|3| D|4|Y");
}

TEST(DataSetModel, SortsClientDatasets)
{
    const auto set = DataSetOf({{"CODE", ftString, 4}, {"QTY", ftInteger}, {"PIC", ftBlob}},
                               {{"B", 1, {}}, {"C", 3, {}}, {"A", 2, {}}});
    TWatchedModel watched(set.get());
    TDataSetModel &model = watched.Model;
    model.sort(1, Qt::DescendingOrder);
    EXPECT_EQ(ViewOf(*set, "CODE"), "C A >B");
    EXPECT_EQ(watched.Take(), "reset");
    model.sort(0);
    EXPECT_EQ(ViewOf(*set, "CODE"), "A >B C");
    EXPECT_EQ(set->IndexFieldNames(), "CODE");
    model.sort(1, Qt::DescendingOrder);
    model.sort(2, Qt::DescendingOrder);
    EXPECT_EQ(model.ErrorText(), "字段“PIC”不能用于排序");
    EXPECT_EQ(ViewOf(*set, "CODE"), "C A >B");
    model.sort(-1);
    EXPECT_EQ(ViewOf(*set, "CODE"), ">B C A");
    model.sort(1, Qt::DescendingOrder);
    // What is opened next need not have the field.
    set->SetData(PacketOf({{"NAME", ftString, 4}}, {{"Z"}, {"Y"}}));
    EXPECT_EQ(watched.Text(), "Z Y");
    set->SetIndexFieldNames("NAME");
    set->SetData(PacketOf({{"NAME", ftString, 4}}, {{"Z"}, {"Y"}}));
    EXPECT_EQ(watched.Text(), "Y Z") << "an order of the application's own stays";
}

TEST(DataSetModel, ServesViews)
{
    const auto set = Goods();
    TWatchedModel watched(set.get());
    TDataSetModel &model = watched.Model;
    QTableView table;
    table.setModel(&model);
    table.show();
    const auto type = [&](int row, int column, const QString &text, Qt::Key key) {
        table.setCurrentIndex(model.index(row, column));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); // the editor before
        table.edit(table.currentIndex());
        auto *editor = table.findChild<QLineEdit *>();
        ASSERT_TRUE(editor);
        editor->setText(text);
        QTest::keyClick(editor, key);
        QCoreApplication::processEvents(); // the editor commits and closes later
    };
    type(1, 0, "B2", Qt::Key_Tab);
    EXPECT_EQ(PlaceOf(*set), "edit 2/4 modified");
    table.setCurrentIndex(model.index(3, 0));
    EXPECT_EQ(PlaceOf(*set), "browse 2/4") << "leaving the row posts it";
    EXPECT_EQ(watched.Cell(1, 0), "B2");
    type(0, 1, "none", Qt::Key_Return);
    EXPECT_EQ(model.ErrorText(), "字段“QTY”的值“none”不是有效的整数");

    // A selection stays while the dataset moves and a field changes, and goes along with its row.
    table.selectRow(2);
    Do(*set, "next;edit;QTY=7");
    EXPECT_EQ(table.selectionModel()->selectedRows().value(0).data(), "C");
    Do(*set, "post;first;insert;CODE=I;post");
    EXPECT_EQ(table.selectionModel()->selectedRows().value(0).data(), "C");
    Do(*set, "recno 4;delete");
    EXPECT_FALSE(table.selectionModel()->selectedRows().value(0).data() == "C");

    QComboBox combo;
    combo.setModel(&model);
    combo.setCurrentIndex(1);
    EXPECT_EQ(combo.currentText(), "A");
    QCompleter completer(&model);
    completer.setCompletionPrefix("B");
    EXPECT_EQ(completer.currentCompletion(), "B2");
    QSortFilterProxyModel proxy;
    QAbstractItemModelTester tester(&proxy, QAbstractItemModelTester::FailureReportingMode::Fatal);
    proxy.setSourceModel(&model);
    proxy.setFilterKeyColumn(2);
    proxy.setFilterFixedString("Y");
    Do(*set, "append;CODE=P;FLAG=Y;post;filter QTY>0;filter ;close;");
    EXPECT_EQ(proxy.rowCount(), 0);
}

TEST(DataSetModel, StaysTrueWhileAViewChangesTheDataset)
{
    const auto set = Goods();
    TDataSource source;
    TDataSetModel model;
    source.SetDataSet(set.get());
    model.SetDataSource(&source);
    bool isFirst = true;
    QObject::connect(&model, &TDataSetModel::rowsAboutToBeInserted, [&] {
        if (std::exchange(isFirst, false))
            Do(*set, "cancel;recno 1;delete");
        EXPECT_FALSE(model.setData(model.index(0, 0), "X"));
    });
    set->Append();
    EXPECT_EQ(TextOf(model), "B|2|N C|3| D|4|Y");
}

TEST(DataSetModel, HasRowsFetchedWhenAViewComesToTheirEnd)
{
    QList<QVariantList> rows;
    for (int i = 0; i < 200; ++i)
        rows += {QStringLiteral("A%1").arg(i), i, "Y"};
    const auto feed = std::make_shared<TTestFeed>(PacketOf(Fields, rows));
    TClientDataSet set;
    set.SetData(TTestFeed::Begin(feed, 50));
    TWatchedModel watched(&set);
    QTableView view;
    view.setModel(&watched.Model);
    view.resize(300, 200);
    view.show();
    EXPECT_EQ(watched.Model.rowCount(), 50);
    EXPECT_TRUE(watched.Model.canFetchMore({}));
    view.setCurrentIndex(watched.Model.index(20, 1));
    feed->Break("断线");
    watched.Take();
    view.scrollToBottom();
    EXPECT_TRUE(watched.Take().contains(u"failed: 断线"));
    EXPECT_EQ(watched.Model.rowCount(), 50);
    feed->Break({});
    watched.Model.fetchMore({});
    EXPECT_EQ(watched.Take(), "insert 50");
    EXPECT_EQ(watched.Model.rowCount(), 200);
    EXPECT_EQ(watched.Model.index(199, 0).data(), "A199");
    EXPECT_EQ(view.currentIndex().row(), 20);
    EXPECT_FALSE(watched.Model.canFetchMore({}));
}

TEST(DataSetModel, OutlivesWhatItShows)
{
    auto set = Goods(), other = Goods();
    auto source = std::make_unique<TDataSource>();
    TDataSetModel model;
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    model.SetDataSource(source.get());
    source->SetDataSet(set.get());
    set->Insert();
    EXPECT_EQ(model.rowCount(), 5);
    const QPersistentModelIndex place = model.index(2, 0);
    set.reset();
    EXPECT_EQ(model.rowCount(), 0);
    EXPECT_FALSE(place.isValid());
    source->SetDataSet(other.get());
    EXPECT_EQ(model.rowCount(), 4);
    source->SetEnabled(false);
    EXPECT_EQ(model.rowCount(), 0);
    source->SetEnabled(true);
    source.reset();
    EXPECT_EQ(model.rowCount(), 0);
    EXPECT_EQ(model.DataSource(), nullptr);
    EXPECT_TRUE(model.submit());
    model.revert();
    model.sort(0);
}

} // namespace Korvane
