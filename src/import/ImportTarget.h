// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace Korvane {

class TDBDFile;
class TDBSession;

/// The new database of an import. It appears whole or not at all: where a database is a file, it
/// is made beside its place and moved there at the end, so that an existing one stays as it is
/// until then. On a server it is made at once, and removed again when it is not finished.
///
///     TImportTarget target(session);
///     target.Create(design, false); // the session is connected to the new database
///     …
///     target.Finish();
class TImportTarget
{
public:
    /// The session names the database; it is disconnected.
    explicit TImportTarget(TDBSession &session);
    /// Removes what is not finished. The session is disconnected, and names the database again.
    ~TImportTarget();
    TImportTarget(const TImportTarget &) = delete;
    TImportTarget &operator=(const TImportTarget &) = delete;

    /// Whether an existing database is replaced before the import is through.
    bool ReplacesAtOnce() const { return FKind == TKind::Server; }
    /// Makes the empty database of the design. Asks before an existing one is overwritten; a
    /// refusal raises the exception that TDBDFile::CreateDB raises then.
    void Create(TDBDFile &design, bool boolAsChar);
    /// Disconnects the session and puts the database in its place. Raises Exception when others
    /// use the one that is there.
    void Finish();

private:
    enum class TKind { File, Folder, Server };

    QString FileOf(const QString &name) const;
    void AskToOverwrite() const;
    template <typename Action> void WhileUnused(const QString &name, Action action) const;
    void RemoveUnfinished();
    void RemoveFromServer();

    TDBSession &FSession;
    const QString FName; ///< of the database
    TKind FKind;
    QString FPart;              ///< the database while it is not finished
    bool FIsUnfinished = false; ///< there may be something to remove
};

} // namespace Korvane
