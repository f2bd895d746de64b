// SPDX-License-Identifier: MIT
#pragma once

#include "session/DBSession.h"
#include "support/TestServer.h"

#include <gtest/gtest.h>

#include <optional>
#include <vector>

namespace Korvane::Testing {

/// Where a contract is tested: the value of a parameterised test. It stands for its dialect
/// wherever one is asked for.
struct TTestPlace
{
    TDBType Dialect = dbtAccess;
    std::optional<ServerKind> Kind; ///< nothing: the embedded engine

    operator TDBType() const { return Dialect; }
    bool IsEmbedded() const { return !Kind; }
    bool IsPostgres() const { return Kind == ServerKind::Postgres; }
    std::optional<TestServer> Server() const { return Kind ? ServerOf(*Kind) : std::nullopt; }
};

/// Whether a place can be tested; where not, the test is skipped, and its fixture must stop.
inline bool IsThere(const TTestPlace &place)
{
    if (place.IsEmbedded() || place.Server())
        return true;
    [&] { GTEST_SKIP() << MissingServer(*place.Kind); }();
    return false;
}

inline std::string NameOf(const TTestPlace &place)
{
    if (place.IsEmbedded())
        return GetDBTypeName(place.Dialect).toStdString();
    return place.IsPostgres() ? "Postgres" : "SqlServer";
}
inline std::string PlaceName(const testing::TestParamInfo<TTestPlace> &tested)
{
    return NameOf(tested.param);
}
inline void PrintTo(const TTestPlace &place, std::ostream *out) { *out << NameOf(place); }

/// The embedded engine in both dialects.
inline std::vector<TTestPlace> EmbeddedPlaces() { return {{dbtAccess, {}}, {dbtMSSQL, {}}}; }

/// Those and the servers. PostgreSQL is always among them; tests of a Microsoft SQL Server are
/// there only where one is named, and test_places.cpp tells that they are not.
inline std::vector<TTestPlace> AllPlaces()
{
    std::vector<TTestPlace> places = EmbeddedPlaces();
    places.push_back({dbtMSSQL, ServerKind::Postgres});
    if (TestServer::SqlServer())
        places.push_back({dbtMSSQL, ServerKind::SqlServer});
    return places;
}

/// The embedded engine's databases, by either way to name them.
inline void Aim(TDBSession &session, const TestDatabase &database)
{
    const bool isAccess = database.Dialect() == TSqlDialect::Access;
    session.SetDBType(isAccess ? dbtAccess : dbtMSSQL);
    session.SetDBServer(isAccess ? QString() : database.Server());
    session.SetDBName(isAccess ? database.FileName() : QStringLiteral("orders"));
}
inline void Aim(TDBSession &session, const ServerDatabase &database)
{
    session.SetDBType(dbtMSSQL);
    session.SetDBServer(database.Server().Address);
    session.SetDBName(database.Name());
    session.SetDBUser(database.Server().User);
    session.SetDBPassword(database.Server().Password);
}

/// An empty database in a place, which goes with it; nothing where the place is missing.
class PlaceDatabase
{
public:
    explicit PlaceDatabase(const TTestPlace &place)
    {
        if (place.IsEmbedded())
            FEmbedded.emplace(place == dbtAccess ? TSqlDialect::Access : TSqlDialect::MSSQL);
        else if (const auto server = place.Server())
            FOnServer.emplace(*server);
    }

    void AimAtIt(TDBSession &session) const
    {
        if (FEmbedded)
            Aim(session, *FEmbedded);
        else if (FOnServer)
            Aim(session, *FOnServer);
    }
    // Of the embedded engine.
    QString FileName() const { return FEmbedded->FileName(); }
    QString Folder() const { return FEmbedded->Folder(); }

private:
    std::optional<TestDatabase> FEmbedded;
    std::optional<ServerDatabase> FOnServer;
};
inline void Aim(TDBSession &session, const PlaceDatabase &database) { database.AimAtIt(session); }

} // namespace Korvane::Testing
