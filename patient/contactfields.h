// Address, phones and e-mail as the chart page and the guardian page both show them.
#pragma once

#include "patient/finding.h"
#include "suite/patients/records/dbperson.h"

#include <afxwin.h>

/// The controls of one page's contact fields.
struct patContactControls
{
    int nHome;
    int nOffice;
    int nCompany;
    int nStreet;
    int nCity;
    int nState;
    int nPostalCode;
    int nCountry;
    int nEmail;
    int nPhone[2];
    int nPhoneType[2];
};

/// The contact fields of one page: their texts between two data exchanges, and the two lists of phone types.
/// It is a member of its page and knows no other.
class patCContactFields
{
public:
    explicit patCContactFields(const patContactControls& controls);

    /// Exchanges the texts with the controls, each with its maximum length.
    void DoDataExchange(CDataExchange* pDX);

    /// Fills the lists of phone types, selects their empty first entries and the home address, and sets the
    /// country. For the page's initialisation, after the controls have been bound.
    void Initialise(const CString& strCountry);

    /// Takes the first address, the first two phones and the e-mail. Without an address the fields keep what
    /// they have.
    void Load(const dbCAddresses& addresses, const dbCPhones& phones, const CString& strEmail);

    /// True when company, street, city, state or postal code is filled in.
    bool HasAddress() const;

    /// Writes the first address, when one is filled in or there was one before. The only address is removed
    /// when all its texts have been emptied.
    void StoreAddress(dbCAddresses& addresses) const;
    /// Writes the first two phones and leaves further ones alone.
    void StorePhones(dbCPhones& phones) const;

    /// Whether the phones have their types.
    pat::Finding CheckPhone(int nIndex) const;

    CString m_strCompany;
    CString m_strStreet;
    CString m_strCity;
    CString m_strState;
    CString m_strPostalCode;
    CString m_strCountry;
    CString m_strEmail;
    CString m_strPhone[2];
    int m_nAddressButton = 0; ///< 0 home, 1 office

private:
    void SelectPhoneType(int nIndex, const CString& strType);
    CString GetPhoneType(int nIndex) const;

    const patContactControls m_controls;
    CComboBox m_listPhoneType[2];
};
