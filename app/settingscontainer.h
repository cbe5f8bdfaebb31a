#pragma once

#include "app/velexport.h"
#include "suite/util/velinisettings.h"

/// Settings that host and module share. Filled once, while the module loads; within the module only the
/// permission to change patients is read back.
extern VELDLGS_API CVelIniSettingsContainer g_VelIniSettingContainer;

/// Reads the settings file into the container. Called by the application object's InitInstance.
void velFillSettingsContainer();
