// SPDX-License-Identifier: MIT
// An order is entered, changed and deleted, with the definitions of the orders design.
#include "DataSetTesting.h"

using namespace Korvane;
using namespace Korvane::Testing;

namespace {

class OrderEntry : public DatabaseTest
{
protected:
    OrderEntry()
    {
        if (IsSkipped())
            return;
        AUserCode = u"u103"_s;
        AUserGroup = u"SalesB"_s;
        RegisterClass<TOrderHead>();
        RegisterClass<TOrderLine>();
        RegisterClass<TOrderLineView>();
        OpenOrders();
        Design.CreateDB(Session, true);
        for (TExCustomDataSet *dataSet :
             {static_cast<TExCustomDataSet *>(&Head), static_cast<TExCustomDataSet *>(&Lines)}) {
            dataSet->SetDBDFile(&Design);
            dataSet->SetDBSession(&Session);
        }
        Head.SetTable(u"ORDERHEAD"_s);
        Lines.SetTable(u"ORDERLINE"_s);
        Source.SetDataSet(&Head);
        Lines.SetMasterDataSource(&Source);
        Lines.SetMasterField(u"BILLTYPE;BILLCODE"_s);
        Lines.SetDetailField(u"BILLTYPE;BILLCODE"_s);
        Lines.SetAutoField(u"BILLLINE"_s);
        Head.Open();
        Lines.Open();
    }
    ~OrderEntry() override { AUserCode = AUserGroup = QString(); }

    void AddLine(const QString &item, const QString &qty)
    {
        Lines.Append();
        Fill(Lines, {{u"ITEMCODE"_s, item}, {u"QTY"_s, qty}, {u"PRICE"_s, u"2.5"_s}});
        Lines.Post();
    }
    QStringList Stored()
    {
        return Rows(
            u"select BILLTYPE, BILLCODE, BILLLINE, ITEMCODE, QTY, PRICE, CREATOR, MODIFIER from ORDERLINE "
            "order by BILLLINE"_s);
    }

    TExTable Head;
    TExDataSource Source;
    TExTable Lines;
};

TEST_P(OrderEntry, OfOneOrder)
{
    Head.Append();
    Fill(Head, {{u"BILLTYPE"_s, u"2201"_s},
                {u"BILLCODE"_s, u"20230100001"_s},
                {u"BILLDATE"_s, u"20230103"_s},
                {u"CUSTCODE"_s, u"C0021"_s}});
    Head.Post();
    Lines.Open();
    AddLine(u"010102-001"_s, u"132"_s);
    AddLine(u"020102-004"_s, u"58.5"_s);
    AddLine(u"030201-003"_s, u"1"_s);
    EXPECT_EQ(Lines.GetSumValue(u"QTY"_s), "191.5");
    Session.BeginTrans();
    Lines.Save();
    Session.CommitTrans();
    EXPECT_EQ(Stored(), (QStringList{u"2201|20230100001|0001|010102-001|132|2.5|u103|u103"_s,
                                     u"2201|20230100001|0002|020102-004|58.5|2.5|u103|u103"_s,
                                     u"2201|20230100001|0003|030201-003|1|2.5|u103|u103"_s}));

    // Lines without the second, the first with another quantity, renumbered by hand.
    AUserCode = u"u104"_s;
    Lines.Open();
    Lines.Edit();
    Fill(Lines, {{u"QTY"_s, u"100"_s}});
    Lines.Post();
    Lines.Next();
    Lines.Delete();
    Lines.Save();
    EXPECT_EQ(Stored(), (QStringList{u"2201|20230100001|0001|010102-001|100|2.5|u103|u104"_s,
                                     u"2201|20230100001|0003|030201-003|1|2.5|u103|u103"_s}));

    // The list of lines as a query.
    TExQuery view;
    view.SetDBDFile(&Design);
    view.SetDBSession(&Session);
    view.SetQuery(u"QORDERLINE"_s);
    view.OpenTable("BillCode='20230100001'", "BillLine desc", 0);
    EXPECT_EQ(Shown(view, u"BillLine;ItemCode;Qty"_s), "0003|030201-003|1 / 0001|010102-001|100");

    Lines.DeleteTable();
    Head.Delete();
    EXPECT_EQ(Stored(), QStringList());
    EXPECT_EQ(Rows(u"select BILLCODE from ORDERHEAD"_s), QStringList());
}

INSTANTIATE_TEST_SUITE_P(Places, OrderEntry, testing::ValuesIn(AllPlaces()), PlaceName);

} // namespace
