// Fills a new patient database with the invented practice.
#pragma once

/// Writes lists, doctors and that many patients into the current database, in one transaction, and the patients'
/// files into the working folder. Image files are drawn for the first patients only (kSamplePatientsWithFiles), so
/// that a practice of 100,000 is made in seconds. A picCSession must be alive. Throws dbCException*.
void samFillPractice(int patients);

/// How many patients get files.
constexpr int kSamplePatientsWithFiles = 200;

class dbCPatient;

/// Fills a new record as a study that an imaging device has sent would: an ID that is free, names, birth date and
/// gender of an invented person. The number (from 0) picks the person. Reads the current database.
void samFillStudy(int number, dbCPatient& patient);
