// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>

#include <utility>

namespace Korvane {

/// The parts of a connection string: "Name=Value" joined by ";". Names are blind to the case
/// of letters. A value is taken as it stands, trimmed; one that begins with a quote (' or ")
/// goes to the matching quote, doubled quotes inside standing for one. A part without "=" is
/// ignored. A name that comes twice keeps its last value.
class TConnectionString
{
public:
    TConnectionString() = default;
    explicit TConnectionString(const QString &text);

    /// The value of a part, empty if there is none.
    QString Value(QStringView name) const;
    bool Contains(QStringView name) const;
    void SetValue(const QString &name, const QString &value);
    /// The text again, values quoted where that is needed.
    QString ToString() const;

    /// A value in the form in which a connection string can carry it: as it stands, or in
    /// double quotes when it holds a character that would end it.
    static QString Quoted(const QString &value);

    // The parts that the library's own strings name.
    QString Provider() const;
    QString DataSource() const;
    QString InitialCatalog() const;
    QString UserID() const;
    /// Of "Password" and "Jet OLEDB:Database Password" the one that is there.
    QString Password() const;
    QString ApplicationName() const;

private:
    QList<std::pair<QString, QString>> FParts;
};

} // namespace Korvane
