#include "host/moduledlg.h"

#include "host/columns.h"
#include "host/hostres.h"

namespace
{

constexpr hostSColumn kColumns[] = {{IDS_COLUMN_NAME, 220, LVCFMT_LEFT}, {IDS_COLUMN_VALUE, 176, LVCFMT_LEFT}};

} // namespace

hostCModuleDlg::hostCModuleDlg(const hostCModule& module, CWnd* parent) : CDialog(IDD_MODULE, parent), m_module(module)
{
}

void hostCModuleDlg::DoDataExchange(CDataExchange* exchange)
{
    CDialog::DoDataExchange(exchange);
    DDX_Control(exchange, IDC_MODULE_LIST, m_list);
}

void hostCModuleDlg::Add(LPCTSTR name, LPCTSTR value)
{
    const int row = m_list.InsertItem(m_list.GetItemCount(), name);
    m_list.SetItemText(row, 1, value);
}

void hostCModuleDlg::AddNumber(LPCTSTR name, double value)
{
    CString text;
    text.Format("%g", value);
    Add(name, text);
}

// The settings go by their keys in the settings file.
BOOL hostCModuleDlg::OnInitDialog()
{
    CDialog::OnInitDialog();
    SetDlgItemText(IDC_MODULE_PATH, m_module.GetPath());
    hostPrepareList(m_list, kColumns);
    for (const hostCModule::Name& name : hostCModule::GetNames())
    {
        Add(name.name, hostText(IDS_EXPORT_FOUND));
    }
    const CVelIniSettingsContainer& settings = *m_module->settings;
    AddNumber("MeasWndNumDisplayPrec", settings.GetMeasWndNumDisplayPrec());
    AddNumber("MeasInTracingNumDisplayPrec", settings.GetMeasInTracingNumDisplayPrec());
    AddNumber("TracingPrintTextScale", static_cast<double>(settings.GetTracingPrintTextScale()));
    AddNumber("UseUniformTeethSize", settings.GetUseUniformTeethSize());
    AddNumber("UseTracingAntiAlias", settings.GetUseTracingAntiAlias());
    AddNumber("TurnOnTextGuides", settings.GetTurnOnTextGuides());
    AddNumber("DisplayQuality", settings.GetDisplayQuality());
    AddNumber("DisplayPhotoCornerRoundedness", settings.GetDisplayPhotoCornerRoundedness());
    AddNumber("Recycle", settings.GetRecycle());
    const COLORREF color = settings.GetBackgroundColor();
    CString text;
    text.Format("%d,%d,%d", GetRValue(color), GetGValue(color), GetBValue(color));
    Add("BackgroundColor", text);
    Add("Implants", settings.GetImplants());
    AddNumber("AllowPatientChanges", settings.GetAllowPatientChanges());
    AddNumber("LimitCapturedImagesSize64", settings.GetLimitCapturedImagesSize());
    AddNumber("LimitCapturedImagesToMegaPixel64", settings.GetLimitCapturedImagesToMegaPixel());
    AddNumber("TracingLineThickness", static_cast<double>(settings.GetTracingLineThickness()));
    return TRUE;
}
