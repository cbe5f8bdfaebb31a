#include "app/settingscontainer.h"

#include "app/appres.h"
#include "app/settingsrules.h"
#include "suite/util/velini.h"

VELDLGS_API CVelIniSettingsContainer g_VelIniSettingContainer;

namespace
{

std::string LoadText(UINT id)
{
    CString strText;
    strText.LoadString(id);
    return strText.GetString();
}

} // namespace

void velFillSettingsContainer()
{
    app::SettingsSource source;
    source.defaultsSection = LoadText(IDS_SECTION_DEFAULTS);
    source.environmentSection = LoadText(IDS_SECTION_ENVIRONMENT);
    source.workingKey = LoadText(IDS_KEY_WORKING);
    source.windowColour = ::GetSysColor(COLOR_WINDOW);
    source.readInt = [](const std::string& section, const char* key, int fallback) {
        return velGetIniInt(section.c_str(), key, fallback);
    };
    source.readString = [](const std::string& section, const char* key, const char* fallback) {
        return std::string(velGetIniString(section.c_str(), key, fallback).GetString());
    };

    const app::SharedSettings values = app::ReadSettings(source);
    CVelIniSettingsContainer& container = g_VelIniSettingContainer;
    container.m_nMeasWndNumDisplayPrec = values.measureWindowPrecision;
    container.m_nMeasInTracingNumDisplayPrec = values.tracingPrecision;
    container.m_fTracingPrintTextScale = values.tracingPrintTextScale;
    container.m_nUseUniformTeethSize = values.uniformTeethSize;
    container.m_nUseTracingAntiAlias = values.tracingAntiAlias;
    container.m_nTurnOnTextGuides = values.textGuides;
    container.m_nDisplayQuality = values.displayQuality;
    container.m_nDisplayPhotoCornerRoundedness = values.photoCornerRoundedness;
    container.m_bRecycle = values.recycle;
    container.m_crBackgroundColor = values.backgroundColour;
    container.m_strImplants = values.implantsFolder.c_str();
    container.m_nAllowPatientChanges = values.allowPatientChanges;
    container.m_bLimitCapturedImagesSize = values.limitCapturedImageSize;
    container.m_dLimitCapturedImagesToMegaPixel = values.capturedMegapixelLimit;
    container.m_fTracingLineThickness = values.tracingLineThickness;
    container.m_bFilled = TRUE;
}
