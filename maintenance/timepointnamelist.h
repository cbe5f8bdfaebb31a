#pragma once

#include "maintenance/predefinednames.h"

/// The field for a timepoint's name, whose list is the practice's list of predefined names. Attached to its
/// control by DDX_Control; owns its reference to the predefined names; lives on the thread of its dialog.
class CTimepointNameList : public CComboBox
{
    DECLARE_DYNAMIC(CTimepointNameList)

public:
    /// The predefined names, whose order is the list's.
    CPredefinedNames& GetNames()
    {
        return m_names;
    }

    /// Fills the list, which stays empty where there are no predefined names. Throws CComCallException*.
    void Fill();

    /// What stands in the field, which is cut to the longest name that a timepoint can have.
    CString GetTyped();

    /// Gets the selected entry, if there is one. While it is being chosen, the field shows it only
    /// afterwards.
    void GetChosen(CString& strName) const;

    /// Whether a name is in the list, in upper or lower case.
    bool IsListed(LPCTSTR pszName) const;

    /// Adds a name that is not listed to the predefined names. Throws CComCallException*.
    void AddToNames(LPCTSTR pszName);

private:
    CPredefinedNames m_names;
};
