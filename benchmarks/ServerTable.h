// SPDX-License-Identifier: MIT
#pragma once

#include "platform/sql/odbc/OdbcConnection.h"

#include <QSqlDatabase>

#include <memory>

namespace Korvane {
class TDBDFile;
class TDBSession;
} // namespace Korvane

namespace Bench {

/// The large table in a database of its own on a PostgreSQL server, filled by the server itself
/// with rows of the same kind as the embedded ones. The database goes with the object. Each
/// connection is made at its first use and kept.
class TServerTable
{
public:
    explicit TServerTable(Korvane::TDBDFile &design);
    ~TServerTable();
    TServerTable(const TServerTable &) = delete;
    TServerTable &operator=(const TServerTable &) = delete;

    /// Whether the environment names a server.
    static bool HasServer();

    Korvane::TDBSession &Session() { return *FSession; }
    // The peers' connections have the options of ours, and settings that come to the same.
    Korvane::TOdbcConnection &Odbc();
    QSqlDatabase Qt();

private:
    void Fill();
    Korvane::TOdbcTarget Target() const;

    std::unique_ptr<Korvane::TDBSession> FSession;
    std::unique_ptr<Korvane::TOdbcConnection> FOdbc;
    QString FQtName;
};

} // namespace Bench
