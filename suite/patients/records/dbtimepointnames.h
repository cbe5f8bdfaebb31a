#pragma once

#include "suite/patients/store/dblist.h"
#include "suite/patients/store/patdefs.h"

/// The practice's predefined timepoint names in the order that its users gave them. An object holds the list
/// as it was when it was loaded: an index names the entry that stood there then, whatever other seats have
/// done since. Changes are stored at once, each in a transaction, and the list is loaded again. Every call
/// that reaches the database throws dbCException*; nothing is then changed.
class VELPAT_API dbCTimepointNames
{
public:
    void Load();

    int GetCount() const
    {
        return m_names.GetCount();
    }
    const CString& GetAt(int nIndex) const
    {
        return m_names.GetAt(nIndex).strName;
    }

    /// Appends a name; one that the list holds to the letter stays where it is. dbErrInvalid for an empty
    /// name.
    void Add(LPCTSTR pszName);
    /// Removes an entry; one that another seat has removed is gone already.
    void RemoveAt(int nIndex);
    /// Exchanges an entry with the one before (behind) it; the first (last) one stays. dbErrChangedElsewhere
    /// when another seat has removed it.
    void MoveUp(int nIndex);
    void MoveDown(int nIndex);

private:
    struct Name
    {
        __int64 nRow;
        CString strName;
    };
    void Exchange(int nIndex, const char* pszNeighbour);

    dbTList<Name> m_names;
};
