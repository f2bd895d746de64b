// SPDX-License-Identifier: MIT
#pragma once

#include "design/DBDFile.h"
#include "platform/core/Reflection.h"
#include "platform/core/Variants.h"
#include "support/DesignStore.h"
#include "support/Packets.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace Korvane::Testing {

/// The sample design, as it is shipped.
inline const QString OrdersDesign = QStringLiteral(KORVANE_EXAMPLES_DIR "/orders.dbd");

/// A record as its properties' texts with "|" between.
inline QString RowText(const TDBObject &object)
{
    QStringList cells;
    for (const QString &name : object.GetClassProperties())
        cells.append(VarToStr(GetPropValue(object, name)));
    return cells.join(QLatin1Char('|'));
}

template <class T> QStringList RowsText(const TObjectList<T> &objects)
{
    QStringList rows;
    for (const auto &object : objects)
        rows.append(RowText(*object));
    return rows;
}

/// One property of all objects, joined by ";".
template <class T> QString Joined(const TObjectList<T> &objects, QString T::*member)
{
    QStringList values;
    for (const auto &object : objects)
        values.append((*object).*member);
    return values.join(QLatin1Char(';'));
}

/// The message of the exception that a call raises; "nothing" if it raises none.
template <class Call> QString MessageOf(Call call)
{
    try {
        call();
    } catch (const Exception &error) {
        return error.Message();
    }
    return QStringLiteral("nothing");
}

/// What the data layer says of a closed dataset.
inline const QString ClosedMessage = QStringLiteral("数据集未打开，无法执行此操作");

/// A design file in a folder of its own, to be filled and then opened.
class DesignTest : public testing::Test
{
protected:
    void Open()
    {
        File.SetFileName(Store.FileName());
        File.SetActived(true);
    }

    QTemporaryDir Dir;
    DesignStore Store{Dir.filePath(QStringLiteral("design.dbd"))};
    TDBDFile File;
};

} // namespace Korvane::Testing
