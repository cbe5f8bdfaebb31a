#pragma once

#include "suite/patients/records/dbpatient.h"

#include <afxwin.h>

#include <optional>
#include <string>
#include <vector>

/// The drop-down list of a patient's treatments, whose last entry stands for a new one. Attached to its
/// control by DDX_Control; lives on the thread of its dialog.
class CTreatmentList : public CComboBox
{
    DECLARE_DYNAMIC(CTreatmentList)

public:
    /// Fills the list with the patient's active treatments and the entry for a new one.
    void Fill(const dbCPatient& patient);

    /// The history ids (ptshID) in the order of the list.
    const std::vector<std::string>& GetIDs() const
    {
        return m_ids;
    }

    /// The history id of the treatment that is selected. For a new one the user chooses the treatment, and it
    /// is added to the patient's history; it stays there whatever becomes of the timepoint. Nothing when no
    /// entry is selected or no treatment was chosen. Throws dbCException*.
    std::optional<CString> Take(CWnd* pParent, const dbCPatient& patient);

private:
    std::vector<std::string> m_ids;
};
