#pragma once

// The window classes that dialog templates name: cttRegisterClass and cedCEdit::RegisterControlClass, with
// their counterparts for the module's end.

#include "suite/dialogs/cededit.h"
#include "suite/dialogs/teethcontrol.h"
