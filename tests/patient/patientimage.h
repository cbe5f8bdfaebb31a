// Everything that is stored about a patient, to be compared as a whole.
#pragma once

#include "suite/patients/records/dbdoctors.h"
#include "suite/patients/records/dbpatient.h"

#include <map>
#include <string>
#include <vector>

// Values by what they are: "race", "address.0.city", "person.0.phone.1.type", "referral.0.note".
using PatientImage = std::map<std::string, std::string>;

PatientImage ImageOf(const dbCPatient& patient);
PatientImage ImageOf(const dbCDoctor& doctor);

// Without what a patient gets only when it is stored: ids of records, and the day.
PatientImage WithoutIdentity(PatientImage image);

// What the images have differently, one line each; what is missing counts as empty.
std::vector<std::string> Differences(PatientImage expected, PatientImage actual);
