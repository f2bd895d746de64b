// SPDX-License-Identifier: MIT
#pragma once

#include "design/DBObject.h"
#include "design/OrdersRecord.h"

namespace Korvane::Testing {

/// A row of PART, which has a field of every type.
class TPartRecord : public TDBObject
{
    Q_GADGET
    Q_PROPERTY(QString Code MEMBER Code)
    Q_PROPERTY(QString Name MEMBER Name)
    Q_PROPERTY(QString Grade MEMBER Grade)
    Q_PROPERTY(int Qty MEMBER Qty)
    Q_PROPERTY(int Days MEMBER Days)
    Q_PROPERTY(double Price MEMBER Price)
    Q_PROPERTY(double Rate MEMBER Rate)
    Q_PROPERTY(QString Made MEMBER Made)
    Q_PROPERTY(QString Seen MEMBER Seen)
    Q_PROPERTY(bool Stopped MEMBER Stopped)
    Q_PROPERTY(QString Note MEMBER Note)
    Q_PROPERTY(QString Pic MEMBER Pic)

public:
    QString Code, Name, Grade, Made, Seen, Note, Pic;
    int Qty = 0, Days = 0;
    double Price = 0, Rate = 0;
    bool Stopped = false;
};

/// A row of the query QPART; it lacks what the query does not select.
class TQPART : public TDBObject
{
    Q_GADGET
    Q_PROPERTY(QString Code MEMBER Code)
    Q_PROPERTY(QString Name MEMBER Name)
    Q_PROPERTY(int Amount MEMBER Amount)
    Q_PROPERTY(double Twice MEMBER Twice)

public:
    QString Code, Name;
    int Amount = 0;
    double Twice = 0;
};

class THeadRecord : public TDBObject
{
    Q_GADGET
    Q_PROPERTY(QString BillCode MEMBER BillCode)
    Q_PROPERTY(QString Cust MEMBER Cust)

public:
    QString BillCode, Cust;
};

/// A row of LINE, the detail of HEAD.
class TLineRecord : public TDBObject
{
    Q_GADGET
    Q_PROPERTY(QString BillCode MEMBER BillCode)
    Q_PROPERTY(QString No MEMBER No)
    Q_PROPERTY(QString CODE MEMBER CODE)
    Q_PROPERTY(int Qty MEMBER Qty)

public:
    QString BillCode, No, CODE;
    int Qty = 0;
};

/// A row of NUMBERED.
class TNumberedRecord : public TDBObject
{
    Q_GADGET
    Q_PROPERTY(int Id MEMBER Id)
    Q_PROPERTY(QString Text MEMBER Text)

public:
    int Id = 0;
    QString Text;
};

/// Its properties do not fit the table WRONG.
class TWrongRecord : public TDBObject
{
    Q_GADGET
    Q_PROPERTY(int Code MEMBER Code)

public:
    int Code = 0;
};

// Records of the orders design.

class TOrderHead : public TOrdersRecord
{
    Q_GADGET
};

class TOrderLine : public TOrdersRecord
{
    Q_GADGET
};

class TOrderLineView : public TOrdersRecord
{
    Q_GADGET
};

} // namespace Korvane::Testing
