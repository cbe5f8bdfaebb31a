// Gender, address, phones and e-mail as the chart page, the guardian page and the doctor editor all show
// them.
#pragma once

#include "patient/fieldbinding.h"
#include "patient/rules/finding.h"
#include "suite/patients/records/dbdoctors.h"
#include "suite/patients/records/dbpatient.h"

/// The controls of the contact fields of one page.
struct patContactControls
{
    int nHome; ///< the first of the two address buttons, home and office
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

/// The values of the address buttons.
enum patAddressButton
{
    patHomeAddress = 0,
    patOfficeAddress = 1
};

/// The rows of the contact fields of a record: its first address, which comes into being with its first text,
/// its first two phones and its e-mail. For dbCPatient, dbCPerson and dbCDoctor.
template <class T> patTFieldTable<T> patContactTable(const patContactControls& controls);

/// The row of the two gender buttons, female (1) and male (2). A gender that is not known shows as male, and
/// stays what it is until the user chooses.
template <class T> patTField<T> patGenderField(int nFirstButton)
{
    constexpr int nFemale = 1;
    constexpr int nMale = 2;
    return patCodeField<T>(
        patFieldKind::Radio, nFirstButton,
        [](const T& record) { return record.GetGender() == nFemale ? 0 : 1; },
        [](T& record, int nButton) { record.SetGender(nButton == 0 ? nFemale : nMale); });
}

/// For after the fields have been stored: an address that has no text of its own does not come into being,
/// and the only one goes when all its texts have been emptied, so that summaries say that there is none.
void patDropEmptyAddress(dbCAddresses& addresses, bool bHadAddress);

/// Fills the two lists of phone types.
void patFillPhoneTypes(CWnd& page, const patContactControls& controls);

/// Whether the phones have their types.
pat::Finding patCheckPhones(const patCFieldValues& fields, const patContactControls& controls);
