#pragma once

// Reading all doctors at once; inside the library only.

#include "suite/patients/records/dbdoctors.h"

/// All doctors in an order (dbDoctorOrder), in one query.
std::deque<dbSDoctorRow> dbReadDoctors(int nOrder);
