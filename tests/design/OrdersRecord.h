// SPDX-License-Identifier: MIT
#pragma once

#include "design/DBObject.h"

namespace Korvane::Testing {

/// A record with every property that the tables of the orders design name, so that one class
/// serves them all.
class TOrdersRecord : public TDBObject
{
    Q_GADGET
    Q_PROPERTY(QString ActionKind MEMBER ActionKind)
    Q_PROPERTY(QString Address MEMBER Address)
    Q_PROPERTY(QString BarCode MEMBER BarCode)
    Q_PROPERTY(QString BillCode MEMBER BillCode)
    Q_PROPERTY(QString BillDate MEMBER BillDate)
    Q_PROPERTY(QString BillLine MEMBER BillLine)
    Q_PROPERTY(QString BillType MEMBER BillType)
    Q_PROPERTY(QString CateCode MEMBER CateCode)
    Q_PROPERTY(QString CateName MEMBER CateName)
    Q_PROPERTY(QString ChangeDate MEMBER ChangeDate)
    Q_PROPERTY(QString Changer MEMBER Changer)
    Q_PROPERTY(QString CheckTime MEMBER CheckTime)
    Q_PROPERTY(QString Checker MEMBER Checker)
    Q_PROPERTY(QString CodeKind MEMBER CodeKind)
    Q_PROPERTY(QString Content MEMBER Content)
    Q_PROPERTY(QString CurrCode MEMBER CurrCode)
    Q_PROPERTY(QString CustCode MEMBER CustCode)
    Q_PROPERTY(QString CustGrade MEMBER CustGrade)
    Q_PROPERTY(QString CustName MEMBER CustName)
    Q_PROPERTY(QString DefaultWhs MEMBER DefaultWhs)
    Q_PROPERTY(QString DeliveryDate MEMBER DeliveryDate)
    Q_PROPERTY(QString EMail MEMBER EMail)
    Q_PROPERTY(QString FunCode MEMBER FunCode)
    Q_PROPERTY(QString HostName MEMBER HostName)
    Q_PROPERTY(QString ItemCode MEMBER ItemCode)
    Q_PROPERTY(QString ItemName MEMBER ItemName)
    Q_PROPERTY(QString Keeper MEMBER Keeper)
    Q_PROPERTY(QString KeyValue MEMBER KeyValue)
    Q_PROPERTY(QString KindClass MEMBER KindClass)
    Q_PROPERTY(QString KindCode MEMBER KindCode)
    Q_PROPERTY(QString KindName MEMBER KindName)
    Q_PROPERTY(QString LastLogin MEMBER LastLogin)
    Q_PROPERTY(QString LineNote MEMBER LineNote)
    Q_PROPERTY(QString LinkMan MEMBER LinkMan)
    Q_PROPERTY(QString Location MEMBER Location)
    Q_PROPERTY(QString LogTime MEMBER LogTime)
    Q_PROPERTY(QString Note MEMBER Note)
    Q_PROPERTY(QString OpenDate MEMBER OpenDate)
    Q_PROPERTY(QString OrderFields MEMBER OrderFields)
    Q_PROPERTY(QString ParentCode MEMBER ParentCode)
    Q_PROPERTY(QString PassText MEMBER PassText)
    Q_PROPERTY(QString Phone MEMBER Phone)
    Q_PROPERTY(QString Picture MEMBER Picture)
    Q_PROPERTY(QString Reason MEMBER Reason)
    Q_PROPERTY(QString SearchName MEMBER SearchName)
    Q_PROPERTY(QString SearchWhere MEMBER SearchWhere)
    Q_PROPERTY(QString ShipAddress MEMBER ShipAddress)
    Q_PROPERTY(QString ShortName MEMBER ShortName)
    Q_PROPERTY(QString SpecName MEMBER SpecName)
    Q_PROPERTY(QString TableCode MEMBER TableCode)
    Q_PROPERTY(QString TaxNo MEMBER TaxNo)
    Q_PROPERTY(QString UnitCode MEMBER UnitCode)
    Q_PROPERTY(QString UnitName MEMBER UnitName)
    Q_PROPERTY(QString UserCode MEMBER UserCode)
    Q_PROPERTY(QString UserGroup MEMBER UserGroup)
    Q_PROPERTY(QString UserName MEMBER UserName)
    Q_PROPERTY(QString VerNo MEMBER VerNo)
    Q_PROPERTY(QString WhsCode MEMBER WhsCode)
    Q_PROPERTY(QString WhsName MEMBER WhsName)
    Q_PROPERTY(int CateLevel MEMBER CateLevel)
    Q_PROPERTY(int Digits MEMBER Digits)
    Q_PROPERTY(int LeadDays MEMBER LeadDays)
    Q_PROPERTY(int LogNo MEMBER LogNo)
    Q_PROPERTY(int NumberDigit MEMBER NumberDigit)
    Q_PROPERTY(int PrintCount MEMBER PrintCount)
    Q_PROPERTY(int SortNo MEMBER SortNo)
    Q_PROPERTY(int YearDigit MEMBER YearDigit)
    Q_PROPERTY(double Amount MEMBER Amount)
    Q_PROPERTY(double CostPrice MEMBER CostPrice)
    Q_PROPERTY(double CreditLimit MEMBER CreditLimit)
    Q_PROPERTY(double CurrRate MEMBER CurrRate)
    Q_PROPERTY(double Discount MEMBER Discount)
    Q_PROPERTY(double NewAmount MEMBER NewAmount)
    Q_PROPERTY(double OldAmount MEMBER OldAmount)
    Q_PROPERTY(double Price MEMBER Price)
    Q_PROPERTY(double Qty MEMBER Qty)
    Q_PROPERTY(double SafeQty MEMBER SafeQty)
    Q_PROPERTY(double TotalQty MEMBER TotalQty)
    Q_PROPERTY(double Weight MEMBER Weight)
    Q_PROPERTY(bool AutoCheck MEMBER AutoCheck)
    Q_PROPERTY(bool IsBase MEMBER IsBase)
    Q_PROPERTY(bool IsChecked MEMBER IsChecked)
    Q_PROPERTY(bool IsClosed MEMBER IsClosed)
    Q_PROPERTY(bool IsStopped MEMBER IsStopped)
    Q_PROPERTY(bool IsSuper MEMBER IsSuper)

public:
    QString ActionKind, Address, BarCode, BillCode, BillDate, BillLine, BillType, CateCode, CateName,
        ChangeDate, Changer, CheckTime, Checker, CodeKind, Content, CurrCode, CustCode, CustGrade, CustName,
        DefaultWhs, DeliveryDate, EMail, FunCode, HostName, ItemCode, ItemName, Keeper, KeyValue, KindClass,
        KindCode, KindName, LastLogin, LineNote, LinkMan, Location, LogTime, Note, OpenDate, OrderFields,
        ParentCode, PassText, Phone, Picture, Reason, SearchName, SearchWhere, ShipAddress, ShortName,
        SpecName, TableCode, TaxNo, UnitCode, UnitName, UserCode, UserGroup, UserName, VerNo, WhsCode,
        WhsName;
    int CateLevel = 0, Digits = 0, LeadDays = 0, LogNo = 0, NumberDigit = 0, PrintCount = 0, SortNo = 0,
        YearDigit = 0;
    double Amount = 0, CostPrice = 0, CreditLimit = 0, CurrRate = 0, Discount = 0, NewAmount = 0,
           OldAmount = 0, Price = 0, Qty = 0, SafeQty = 0, TotalQty = 0, Weight = 0;
    bool AutoCheck = false, IsBase = false, IsChecked = false, IsClosed = false, IsStopped = false,
         IsSuper = false;
};

} // namespace Korvane::Testing
