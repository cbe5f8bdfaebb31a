#include "suite/util/velinisettings.h"

CVelIniSettingsContainer::CVelIniSettingsContainer()
    : m_nSize(sizeof(*this)), m_bFilled(FALSE), m_nMeasWndNumDisplayPrec(0), m_nMeasInTracingNumDisplayPrec(0),
      m_fTracingPrintTextScale(0), m_nUseUniformTeethSize(0), m_nUseTracingAntiAlias(0), m_nTurnOnTextGuides(0),
      m_nDisplayQuality(0), m_nDisplayPhotoCornerRoundedness(0), m_bRecycle(FALSE), m_crBackgroundColor(0),
      m_nAllowPatientChanges(0), m_bLimitCapturedImagesSize(FALSE), m_dLimitCapturedImagesToMegaPixel(0),
      m_fTracingLineThickness(0)
{
}
