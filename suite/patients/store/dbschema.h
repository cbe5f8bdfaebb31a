#pragma once

// The tables of the database and their history; inside the library only.
//
// A database carries the number of the last migration step it has been through (user_version) and the mark of
// a patient database (application_id). A released step is never changed; a new one is appended.

#include "suite/patients/store/sqlitesession.h"

#include <span>

/// One step from a version to the next.
struct dbSMigration
{
    const char* pszSql;
};

/// The steps of this version of the program; step i leads from version i to i + 1.
std::span<const dbSMigration> dbSchemaSteps();

/// Makes an empty database one of patients, at the newest version.
void dbCreateSchema(dbCSqliteSession& connection, std::span<const dbSMigration> steps = dbSchemaSteps());

/// Checks that the database is one of patients and of a known version, without changing anything, then brings
/// an older one forward in one transaction. Throws dbErrCorrupt, dbErrNotPatients, dbErrNewerVersion and
/// others.
void dbUpdateSchema(dbCSqliteSession& connection, std::span<const dbSMigration> steps = dbSchemaSteps());
