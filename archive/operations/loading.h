// One archive on its way into the practice.
#pragma once

#include "archive/files/scratchfolder.h"
#include "archive/status/statusthread.h"
#include "suite/patients/files/dbplacement.h"
#include "suite/patients/records/dbpatient.h"

#include <map>
#include <string>
#include <vector>

/// A load or a merge, step by step; each step may only follow the one before. Until it is committed the
/// practice is as before: the destructor rolls back. Begin, Read, Plan, Carry and Clear handle files and
/// nothing else, and may be called on another thread while the user interface thread waits; the rest belongs
/// to that one. What is not in the archive's or the practice's order is thrown as dbCException*, unless a
/// step answers false.
class arcCLoading
{
public:
    arcCLoading();
    virtual ~arcCLoading() = default;
    arcCLoading(const arcCLoading&) = delete;
    arcCLoading& operator=(const arcCLoading&) = delete;

    /// Takes the scratch folder, into which the archive is then unpacked. Step "load.begun".
    arc::ScratchState Begin();
    const std::string& Folder() const
    {
        return m_scratch.Path();
    }
    /// False when what was unpacked is not one patient's. Step "load.read".
    bool Read();
    /// The patient of the practice that is to be locked from here on.
    virtual CString GetID() const = 0;
    /// False, with the user told, when the practice's records do not allow it.
    virtual bool Accept() = 0;
    /// Settles which file goes where. Throws dbErrExists with the name of a file that is in the way.
    virtual void Plan() = 0;
    /// Notes the files in the database. Step "load.noted".
    void Note();
    /// Brings the files to their places; false when it was stopped. Step "load.placed".
    bool Carry(const arcProgress& progress);
    /// All of it becomes the practice's; false, with the user told, when the records cannot be stored. Steps
    /// "load.stored", "load.committed".
    bool Commit();
    /// Gives the scratch folder back.
    void Clear();

    /// Whose data it was.
    virtual const dbCPatient& GetPatient() const = 0;
    /// Files that stay in the archive only.
    const std::vector<std::string>& Left() const
    {
        return m_left;
    }
    /// How many referrals stay there too: those that name no doctor.
    int ReferralsLeft() const
    {
        return m_nReferralsLeft;
    }

protected:
    /// Stores the record and the audit event in the open transaction; false, with that rolled back and the
    /// user told, when it cannot be done.
    virtual bool Store(class dbCTransaction& transaction) = 0;

    dbCPatient m_archived;
    std::vector<std::string> m_unpacked; ///< names of the files in the scratch folder
    std::vector<std::string> m_left;
    int m_nReferralsLeft = 0;
    arc::ScratchFolder m_scratch;
    dbCFilePlacement m_placement;
};

/// The archive's patient becomes one of the practice.
class arcCPatientLoading : public arcCLoading
{
public:
    CString GetID() const override;
    bool Accept() override;
    void Plan() override;
    const dbCPatient& GetPatient() const override;

protected:
    bool Store(dbCTransaction& transaction) override;
};

/// The archive's timepoints become those of a patient of the practice, under free numbers.
class arcCMerging : public arcCLoading
{
public:
    explicit arcCMerging(const CString& strID);

    CString GetID() const override;
    bool Accept() override;
    void Plan() override;
    const dbCPatient& GetPatient() const override;

protected:
    bool Store(dbCTransaction& transaction) override;

private:
    const CString m_strID;
    dbCPatient m_patient;
    std::map<int, int> m_newNumbers; ///< of the timepoints, by those that they have in the archive
};
