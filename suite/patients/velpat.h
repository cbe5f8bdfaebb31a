#pragma once

// Everything the patient-database library offers.
#include "suite/patients/dbappoptions.h"
#include "suite/patients/dbdoctors.h"
#include "suite/patients/dbexception.h"
#include "suite/patients/dbkeywords.h"
#include "suite/patients/dboffices.h"
#include "suite/patients/dbpatients.h"
#include "suite/patients/dbrasko.h"
#include "suite/patients/dbtransaction.h"
#include "suite/patients/dbtreatment.h"
#include "suite/patients/patimagetypes.h"
#include "suite/patients/veltrixlogin.h"
