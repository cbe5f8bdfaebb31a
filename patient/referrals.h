// The referrals of the patient in the sheet.
#pragma once

#include "patient/rules/referralrules.h"
#include "suite/patients/records/dbreferrals.h"

#include <optional>
#include <vector>

class dbCPatient;

/// The one owner of the referral rows while the sheet is open: the referral page edits the rows, the details
/// page shows the first one's doctor and may choose another. The sheet writes them on OK; a row keeps what no
/// page shows.
class patCReferrals
{
public:
    /// Reads the rows of a stored patient, or takes those of a record that is not stored and looks up the
    /// doctors that it names by their ids alone; does nothing the second time. Throws dbCException*; there
    /// are then no rows, and nothing is written.
    void Load(const dbCPatient& patient);
    bool IsLoaded() const
    {
        return m_bLoaded;
    }

    const std::vector<pat::Referral>& GetRows() const
    {
        return m_rows;
    }
    bool IsChanged() const
    {
        return m_rows != m_loaded;
    }

    /// Replaces a row, or appends one when nRow is the number of rows.
    void Set(int nRow, pat::Referral referral);
    void Erase(int nRow);

    /// Gives the first row another doctor; an empty id gives it back the one that it had before the first
    /// such change.
    void SetFirstDoctor(const std::string& strDoctorID, const std::string& strDoctor);

    /// Writes the rows into the record if they are changed.
    void Store(dbCPatient& patient) const;

private:
    bool m_bLoaded = false;
    std::vector<pat::Referral> m_rows;
    std::vector<pat::Referral> m_loaded;     ///< m_rows as they came
    dbCPatientReferralsContainer m_source;   ///< whole, row for row of m_loaded
    std::optional<pat::Referral> m_replaced; ///< the first row before SetFirstDoctor changed its doctor
};
