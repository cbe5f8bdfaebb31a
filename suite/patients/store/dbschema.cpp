#include "suite/patients/store/dbschema.h"

#include <string>

namespace
{
constexpr int APPLICATION_ID = 0x56656C50; // "VelP"

// Relations use the row numbers, calls the GUIDs. Persons hold what patients, guardians and doctors have in
// common, so that a patient's row number and GUID are those of its person. "...Key" columns hold folded text
// (dbFold).
constexpr const char* VERSION_1 = R"sql(
CREATE TABLE persons (
    id INTEGER PRIMARY KEY, guid TEXT NOT NULL UNIQUE, title TEXT NOT NULL, firstName TEXT NOT NULL,
    lastName TEXT NOT NULL, nickname TEXT NOT NULL, salutation TEXT NOT NULL, email TEXT NOT NULL,
    notes TEXT NOT NULL, birthDate TEXT, gender INTEGER NOT NULL);
CREATE TABLE addresses (
    person INTEGER NOT NULL REFERENCES persons ON DELETE CASCADE, position INTEGER NOT NULL, type TEXT NOT NULL,
    company TEXT NOT NULL, street TEXT NOT NULL, city TEXT NOT NULL, state TEXT NOT NULL, postalCode TEXT NOT NULL,
    country TEXT NOT NULL, PRIMARY KEY (person, position)) WITHOUT ROWID;
CREATE TABLE phones (
    person INTEGER NOT NULL REFERENCES persons ON DELETE CASCADE, position INTEGER NOT NULL, number TEXT NOT NULL,
    type TEXT NOT NULL, PRIMARY KEY (person, position)) WITHOUT ROWID;

CREATE TABLE doctorTypes (id INTEGER PRIMARY KEY, name TEXT NOT NULL, nameKey TEXT NOT NULL UNIQUE);
CREATE TABLE doctors (
    person INTEGER PRIMARY KEY REFERENCES persons ON DELETE CASCADE,
    type INTEGER REFERENCES doctorTypes ON DELETE SET NULL, treating INTEGER NOT NULL, lastKey TEXT NOT NULL,
    firstKey TEXT NOT NULL, rowVersion INTEGER NOT NULL);
CREATE INDEX doctorsByName ON doctors (lastKey, firstKey);
CREATE INDEX doctorsByType ON doctors (type);
CREATE TABLE offices (
    id INTEGER PRIMARY KEY, guid TEXT NOT NULL UNIQUE, name TEXT NOT NULL, nameKey TEXT NOT NULL UNIQUE);
CREATE TABLE statuses (
    id INTEGER PRIMARY KEY, guid TEXT NOT NULL UNIQUE, name TEXT NOT NULL, nameKey TEXT NOT NULL UNIQUE,
    shown INTEGER NOT NULL);

CREATE TABLE patients (
    person INTEGER PRIMARY KEY REFERENCES persons ON DELETE CASCADE,
    patientID TEXT NOT NULL COLLATE NOCASE UNIQUE, lastKey TEXT NOT NULL, firstKey TEXT NOT NULL,
    birthKey TEXT NOT NULL, genderIdentity INTEGER NOT NULL, race INTEGER NOT NULL, modelNumber TEXT NOT NULL,
    keywords TEXT NOT NULL, teeth TEXT NOT NULL, office INTEGER REFERENCES offices ON DELETE SET NULL,
    status INTEGER REFERENCES statuses ON DELETE SET NULL, veltrixID TEXT NOT NULL, norm INTEGER NOT NULL,
    recordDate TEXT, deleted INTEGER NOT NULL DEFAULT 0, rowVersion INTEGER NOT NULL);
CREATE INDEX patientsByName ON patients (lastKey, firstKey, birthKey, person) WHERE deleted = 0;
CREATE INDEX patientsByOffice ON patients (office);
CREATE INDEX patientsByStatus ON patients (status);
CREATE INDEX patientsByVeltrixID ON patients (veltrixID) WHERE veltrixID <> '';
CREATE INDEX patientsDeleted ON patients (person) WHERE deleted <> 0;
CREATE TABLE patientPersons (
    patient INTEGER NOT NULL REFERENCES patients ON DELETE CASCADE, kind INTEGER NOT NULL,
    person INTEGER NOT NULL REFERENCES persons, PRIMARY KEY (patient, kind)) WITHOUT ROWID;
CREATE INDEX patientPersonsByPerson ON patientPersons (person);

CREATE TABLE insuranceCompanies (
    id INTEGER PRIMARY KEY, guid TEXT NOT NULL UNIQUE, name TEXT NOT NULL, nameKey TEXT NOT NULL,
    phone TEXT NOT NULL, note TEXT NOT NULL, type TEXT NOT NULL, company TEXT NOT NULL, street TEXT NOT NULL,
    city TEXT NOT NULL, state TEXT NOT NULL, postalCode TEXT NOT NULL, country TEXT NOT NULL);
CREATE TABLE insurances (
    id INTEGER PRIMARY KEY, guid TEXT NOT NULL UNIQUE,
    patient INTEGER NOT NULL REFERENCES patients ON DELETE CASCADE, position INTEGER NOT NULL,
    company INTEGER REFERENCES insuranceCompanies, holder TEXT NOT NULL, number TEXT NOT NULL,
    groupNumber TEXT NOT NULL, note TEXT NOT NULL);
CREATE INDEX insurancesByPatient ON insurances (patient, position);
CREATE INDEX insurancesByCompany ON insurances (company);
CREATE TABLE referrals (
    id INTEGER PRIMARY KEY, guid TEXT NOT NULL UNIQUE,
    patient INTEGER NOT NULL REFERENCES patients ON DELETE CASCADE, position INTEGER NOT NULL,
    doctor INTEGER NOT NULL REFERENCES doctors, type TEXT NOT NULL, date TEXT, note TEXT NOT NULL);
CREATE INDEX referralsByPatient ON referrals (patient, position);
CREATE INDEX referralsByDoctor ON referrals (doctor);

CREATE TABLE treatments (
    id INTEGER PRIMARY KEY, code TEXT NOT NULL UNIQUE, description TEXT NOT NULL, active INTEGER NOT NULL);
CREATE TABLE treatmentHistory (
    id INTEGER PRIMARY KEY, guid TEXT NOT NULL UNIQUE,
    patient INTEGER NOT NULL REFERENCES patients ON DELETE CASCADE, description TEXT NOT NULL, code TEXT NOT NULL,
    active INTEGER NOT NULL, time TEXT);
CREATE INDEX treatmentHistoryByPatient ON treatmentHistory (patient, time);
CREATE TABLE timepoints (
    id INTEGER PRIMARY KEY, guid TEXT NOT NULL UNIQUE,
    patient INTEGER NOT NULL REFERENCES patients ON DELETE CASCADE, position INTEGER NOT NULL,
    number INTEGER NOT NULL, name TEXT NOT NULL, date TEXT,
    treatment INTEGER REFERENCES treatmentHistory ON DELETE SET NULL, active INTEGER NOT NULL,
    bits0 INTEGER NOT NULL, bits1 INTEGER NOT NULL, bits2 INTEGER NOT NULL, bits3 INTEGER NOT NULL,
    bits4 INTEGER NOT NULL, bits5 INTEGER NOT NULL, bits6 INTEGER NOT NULL, bits7 INTEGER NOT NULL,
    UNIQUE (patient, number));
CREATE INDEX timepointsByTreatment ON timepoints (treatment);
CREATE TABLE images (
    timepoint INTEGER NOT NULL REFERENCES timepoints ON DELETE CASCADE, imageGroup INTEGER NOT NULL,
    type INTEGER NOT NULL, guid TEXT NOT NULL, title TEXT NOT NULL, note TEXT NOT NULL,
    PRIMARY KEY (timepoint, imageGroup, type)) WITHOUT ROWID;

CREATE TABLE diagnosticGroups (
    id INTEGER PRIMARY KEY, category TEXT NOT NULL, title TEXT NOT NULL, UNIQUE (category, title));
CREATE TABLE diagnosticItems (
    id INTEGER PRIMARY KEY, guid TEXT NOT NULL UNIQUE, diagnosticGroup INTEGER NOT NULL REFERENCES diagnosticGroups,
    code TEXT NOT NULL, title TEXT NOT NULL);
CREATE INDEX diagnosticItemsByGroup ON diagnosticItems (diagnosticGroup);
CREATE TABLE diagnostics (
    id INTEGER PRIMARY KEY, patient INTEGER NOT NULL REFERENCES patients ON DELETE CASCADE,
    item INTEGER NOT NULL REFERENCES diagnosticItems, timepoint INTEGER REFERENCES timepoints ON DELETE CASCADE,
    position INTEGER NOT NULL, value TEXT NOT NULL, note TEXT NOT NULL, time TEXT);
CREATE INDEX diagnosticsByPatient ON diagnostics (patient);
CREATE INDEX diagnosticsByItem ON diagnostics (item);
CREATE INDEX diagnosticsByTimepoint ON diagnostics (timepoint);

CREATE TABLE keywords (
    id INTEGER PRIMARY KEY, list INTEGER NOT NULL, word TEXT NOT NULL, wordKey TEXT NOT NULL, UNIQUE (list, wordKey));
CREATE TABLE auditEvents (
    id INTEGER PRIMARY KEY AUTOINCREMENT, kind INTEGER NOT NULL, time TEXT NOT NULL, userName TEXT NOT NULL,
    computer TEXT NOT NULL, patientGuid TEXT NOT NULL, text TEXT NOT NULL);
CREATE INDEX auditEventsByPatient ON auditEvents (patientGuid);
CREATE TABLE applicationOptions (
    id INTEGER PRIMARY KEY, optionKey TEXT NOT NULL, value TEXT NOT NULL, description TEXT NOT NULL,
    status INTEGER NOT NULL, forUser INTEGER NOT NULL, employeeID TEXT NOT NULL, oldID TEXT NOT NULL);
CREATE INDEX applicationOptionsByKey ON applicationOptions (optionKey);
CREATE TABLE balances (
    patient INTEGER PRIMARY KEY REFERENCES patients ON DELETE CASCADE, amount INTEGER NOT NULL);

-- Keyed by ID, not by patient: an ID that is about to be loaded can be locked.
CREATE TABLE locks (
    patientID TEXT NOT NULL COLLATE NOCASE, computer TEXT NOT NULL, process INTEGER NOT NULL,
    processStart INTEGER NOT NULL, userName TEXT NOT NULL, mode INTEGER NOT NULL, time TEXT NOT NULL,
    PRIMARY KEY (patientID, computer, process, processStart)) WITHOUT ROWID;
-- Files that a committed change of ID has still to rename.
CREATE TABLE fileRenames (id INTEGER PRIMARY KEY, oldID TEXT NOT NULL, newID TEXT NOT NULL);

CREATE TABLE raskoTasks (
    id INTEGER PRIMARY KEY AUTOINCREMENT, type INTEGER NOT NULL, patientID TEXT NOT NULL, patientGuid TEXT NOT NULL,
    description TEXT NOT NULL, data TEXT NOT NULL, status INTEGER NOT NULL, totalBytes INTEGER NOT NULL,
    queueComputer TEXT NOT NULL, time TEXT NOT NULL);
CREATE INDEX raskoTasksByPatient ON raskoTasks (patientGuid, status);
CREATE TABLE servicePatients (patientGuid TEXT PRIMARY KEY, serviceID TEXT NOT NULL, serviceGuid TEXT NOT NULL)
    WITHOUT ROWID;
)sql";

// Files that are being put into the working folder for records that are not committed yet.
constexpr const char* VERSION_2 = R"sql(
CREATE TABLE placedFiles (id INTEGER PRIMARY KEY, token TEXT NOT NULL, name TEXT NOT NULL);
CREATE INDEX placedFilesByToken ON placedFiles (token);
)sql";

// The names that users offer each other for new timepoints.
constexpr const char* TIMEPOINT_NAMES = R"sql(
CREATE TABLE timepointNames (
    id INTEGER PRIMARY KEY AUTOINCREMENT, position INTEGER NOT NULL, name TEXT NOT NULL UNIQUE);
CREATE INDEX timepointNamesByPosition ON timepointNames (position);
)sql";

// Why a transfer waits or has failed, for the user.
constexpr const char* TRANSFER_REASONS = "ALTER TABLE raskoTasks ADD COLUMN reason TEXT NOT NULL DEFAULT ''";

// Row numbers and row versions are counted, so that none is ever used twice. What has to happen to files after
// a commit stands in a journal of its own, and a removed patient's record goes with the commit.
constexpr const char* JOURNAL = R"sql(
CREATE TABLE counters (name TEXT PRIMARY KEY, last INTEGER NOT NULL) WITHOUT ROWID;
INSERT INTO counters SELECT 'persons', coalesce(max(id), 0) FROM persons;
INSERT INTO counters SELECT 'versions', coalesce(max(rowVersion), 0)
    FROM (SELECT rowVersion FROM patients UNION ALL SELECT rowVersion FROM doctors);

-- kind as patCFileWork::Kind; claim: the life token of the process that is at it, empty for none; listed: the
-- names are complete. A file whose size and time are given is touched only while it has them.
CREATE TABLE fileWork (
    id INTEGER PRIMARY KEY AUTOINCREMENT, kind INTEGER NOT NULL, patientID TEXT NOT NULL COLLATE NOCASE,
    newID TEXT NOT NULL COLLATE NOCASE, claim TEXT NOT NULL, listed INTEGER NOT NULL);
CREATE TABLE fileWorkNames (
    work INTEGER NOT NULL REFERENCES fileWork ON DELETE CASCADE, name TEXT NOT NULL COLLATE NOCASE, size INTEGER,
    written INTEGER, PRIMARY KEY (work, name)) WITHOUT ROWID;
CREATE INDEX fileWorkNamesByName ON fileWorkNames (name);
-- IDs whose ".PF" file has to be brought in line with the record.
CREATE TABLE patientFileWork (id INTEGER PRIMARY KEY AUTOINCREMENT, patientID TEXT NOT NULL);

INSERT INTO fileWork (kind, patientID, newID, claim, listed) SELECT 1, oldID, newID, '', 0 FROM fileRenames
    ORDER BY id;
INSERT INTO fileWork (kind, patientID, newID, claim, listed) SELECT 2, patientID, '', '', 0 FROM patients
    WHERE deleted <> 0;
DROP TABLE fileRenames;
CREATE TEMP TABLE removed AS SELECT person AS id FROM patients WHERE deleted <> 0 UNION
    SELECT a.person FROM patientPersons a JOIN patients p ON p.person = a.patient
    WHERE p.deleted <> 0 AND a.kind = 0;
DELETE FROM patients WHERE deleted <> 0;
DELETE FROM persons WHERE id IN (SELECT id FROM removed);
DROP TABLE removed;
DROP INDEX patientsByName;
DROP INDEX patientsDeleted;
ALTER TABLE patients DROP COLUMN deleted;
CREATE INDEX patientsByName ON patients (lastKey, firstKey, birthKey, person);
)sql";

// A person's addresses behind the first, and those of people around a patient.
constexpr const char* EMAILS = R"sql(
CREATE TABLE emails (
    person INTEGER NOT NULL REFERENCES persons ON DELETE CASCADE, position INTEGER NOT NULL, address TEXT NOT NULL,
    PRIMARY KEY (person, position)) WITHOUT ROWID;
CREATE TABLE patientEmails (
    patient INTEGER NOT NULL REFERENCES patients ON DELETE CASCADE, position INTEGER NOT NULL,
    personID TEXT NOT NULL, category TEXT NOT NULL, type TEXT NOT NULL, salutation TEXT NOT NULL,
    firstName TEXT NOT NULL, lastName TEXT NOT NULL, address TEXT NOT NULL,
    PRIMARY KEY (patient, position)) WITHOUT ROWID;
)sql";

// Who owns a shared record, and what the service's catalogue calls its files. A file's name is what stands
// behind the patient's ID.
constexpr const char* CATALOG = R"sql(
ALTER TABLE servicePatients ADD COLUMN ownerGuid TEXT NOT NULL DEFAULT '';
CREATE TABLE catalogFiles (
    patient INTEGER NOT NULL REFERENCES patients ON DELETE CASCADE, name TEXT NOT NULL COLLATE NOCASE,
    guid TEXT NOT NULL, hash TEXT NOT NULL, PRIMARY KEY (patient, name)) WITHOUT ROWID;
)sql";

constexpr dbSMigration STEPS[] = {{VERSION_1}, {VERSION_2}, {TIMEPOINT_NAMES}, {TRANSFER_REASONS},
                                  {JOURNAL},   {EMAILS},    {CATALOG}};

void RunSteps(dbCSqliteSession& connection, std::span<const dbSMigration> steps, size_t nFrom)
{
    for (const dbSMigration& step : steps.subspan(nFrom))
        connection.Execute(step.pszSql);
    connection.Execute(("PRAGMA user_version = " + std::to_string(steps.size())).c_str());
}

/// The database's version; throws when it is no patient database or of a version that is not known.
size_t CheckVersion(dbCSqliteSession& connection, size_t nNewest)
{
    if (connection.QueryInt("PRAGMA application_id") != APPLICATION_ID)
        dbCException::Throw(dbErrNotPatients, connection.GetPath());
    const __int64 nVersion = connection.QueryInt("PRAGMA user_version");
    if (nVersion < 1)
        dbCException::Throw(dbErrCorrupt, connection.GetPath());
    if (nVersion > static_cast<__int64>(nNewest))
        dbCException::Throw(dbErrNewerVersion, connection.GetPath());
    return static_cast<size_t>(nVersion);
}

/// Runs `work` in a transaction of its own, rolled back when it throws.
template <typename Work> void InTransaction(dbCSqliteSession& connection, Work work)
{
    const int nLevel = connection.Begin();
    try
    {
        work();
        connection.Commit(nLevel);
    }
    catch (...)
    {
        connection.Rollback(nLevel);
        throw;
    }
}
} // namespace

std::span<const dbSMigration> dbSchemaSteps()
{
    return STEPS;
}

void dbCreateSchema(dbCSqliteSession& connection, std::span<const dbSMigration> steps)
{
    if (!connection.IsShared())
        connection.Execute("PRAGMA journal_mode = WAL");
    InTransaction(connection, [&] {
        RunSteps(connection, steps, 0);
        connection.Execute(("PRAGMA application_id = " + std::to_string(APPLICATION_ID)).c_str());
    });
}

void dbUpdateSchema(dbCSqliteSession& connection, std::span<const dbSMigration> steps)
{
    // The journal stays as it is: another computer may need a rollback journal.
    if (CheckVersion(connection, steps.size()) == steps.size())
        return;
    InTransaction(connection, [&] {
        // Another process may have done it while this one waited for the lock.
        const size_t nVersion = CheckVersion(connection, steps.size());
        if (nVersion < steps.size())
            RunSteps(connection, steps, nVersion);
    });
}
