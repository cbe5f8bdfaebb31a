#pragma once

// Everything the patient-database library offers.
#include "suite/patients/records/dbappoptions.h"
#include "suite/patients/records/dbcatalog.h"
#include "suite/patients/records/dbdoctors.h"
#include "suite/patients/records/dbemails.h"
#include "suite/patients/store/dbexception.h"
#include "suite/patients/records/dbkeywords.h"
#include "suite/patients/records/dboffices.h"
#include "suite/patients/records/dbpatients.h"
#include "suite/patients/records/dbrasko.h"
#include "suite/patients/store/dbsteps.h"
#include "suite/patients/store/dbtransaction.h"
#include "suite/patients/records/dbtimepointnames.h"
#include "suite/patients/records/dbtreatment.h"
#include "suite/patients/files/filehash.h"
#include "suite/patients/files/patimagetypes.h"
#include "suite/patients/records/veltrixlogin.h"
