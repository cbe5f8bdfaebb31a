// The settings that the imaging application and the dialog module share.
#pragma once

#include "suite/util/velutil.h"

/// Plain data; the dialog module fills one and exports it, the host reads it. The order and the types of the
/// fields from m_nMeasWndNumDisplayPrec on are fixed between the two.
class VELUTIL_API CVelIniSettingsContainer
{
public:
    CVelIniSettingsContainer();

    // clang-format off
    int GetMeasWndNumDisplayPrec() const { return m_nMeasWndNumDisplayPrec; }
    int GetMeasInTracingNumDisplayPrec() const { return m_nMeasInTracingNumDisplayPrec; }
    float GetTracingPrintTextScale() const { return m_fTracingPrintTextScale; }
    int GetUseUniformTeethSize() const { return m_nUseUniformTeethSize; }
    int GetUseTracingAntiAlias() const { return m_nUseTracingAntiAlias; }
    int GetTurnOnTextGuides() const { return m_nTurnOnTextGuides; }
    int GetDisplayQuality() const { return m_nDisplayQuality; }
    int GetDisplayPhotoCornerRoundedness() const { return m_nDisplayPhotoCornerRoundedness; }
    BOOL GetRecycle() const { return m_bRecycle; }
    COLORREF GetBackgroundColor() const { return m_crBackgroundColor; }
    const CString& GetImplants() const { return m_strImplants; }
    int GetAllowPatientChanges() const { return m_nAllowPatientChanges; }
    BOOL GetLimitCapturedImagesSize() const { return m_bLimitCapturedImagesSize; }
    double GetLimitCapturedImagesToMegaPixel() const { return m_dLimitCapturedImagesToMegaPixel; }
    float GetTracingLineThickness() const { return m_fTracingLineThickness; }
    // clang-format on

    /// The container's own: its size in bytes, and whether it has been filled.
    DWORD m_nSize;
    BOOL m_bFilled;

    int m_nMeasWndNumDisplayPrec;         // decimals
    int m_nMeasInTracingNumDisplayPrec;   // decimals
    float m_fTracingPrintTextScale;       // factor
    int m_nUseUniformTeethSize;           // 0 or 1
    int m_nUseTracingAntiAlias;           // 0 or 1
    int m_nTurnOnTextGuides;              // 0 or 1
    int m_nDisplayQuality;                // 2 or more
    int m_nDisplayPhotoCornerRoundedness; // pixels
    BOOL m_bRecycle;
    COLORREF m_crBackgroundColor;
    CString m_strImplants; // folder
    int m_nAllowPatientChanges;
    BOOL m_bLimitCapturedImagesSize;
    double m_dLimitCapturedImagesToMegaPixel;
    float m_fTracingLineThickness; // pixels
};
