// SPDX-License-Identifier: MIT
#include "examples/orders/creation/OlderDatabase.h"

#include "session/DBSession.h"

using namespace Korvane;

void MakeOlder(TDBSession &session)
{
    session.Execute(QStringList{
        // Change 4 added the currency, change 5 dropped an index, change 6 added the count.
        QStringLiteral("alter table ORDERHEAD drop column CURRCODE"),
        QStringLiteral("go"),
        QStringLiteral("alter table ORDERHEAD drop column RATE"),
        QStringLiteral("go"),
        QStringLiteral("alter table ORDERHEAD drop column PRINTCOUNT"),
        QStringLiteral("go"),
        QStringLiteral("create index IX_CUSTOMER_PHONE on CUSTOMER(PHONE)"),
        QStringLiteral("go"),
        QStringLiteral("insert into ORDERHEAD(BILLTYPE, BILLCODE, BILLDATE, CUSTCODE, CHECKED) "
                       "values('2201', '20230500001', '20230502', 'C0001', 'N')"),
        QStringLiteral("go"),
    });
    session.SetVersion(OlderVersion);
}
