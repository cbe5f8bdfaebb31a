#pragma once

#include "suite/patients/files/filestate.h"
#include "suite/patients/records/dbdiagnostics.h"
#include "suite/patients/records/dbemails.h"
#include "suite/patients/records/dbinsurance.h"
#include "suite/patients/records/dbreferrals.h"
#include "suite/patients/records/dbtreatment.h"
#include "suite/patients/records/patpatient.h"

#include <functional>
#include <map>
#include <memory>

/// Kinds of person attached to a patient.
enum dbPersonKind
{
    dbPersonGuardian = 0,       ///< belongs to the patient alone; also the billing party
    dbPersonTreatingDoctor = 1, ///< a link to a doctor's record
    dbPersonReferringDoctor = 2 ///< a link to a doctor's record
};

/// Options of dbCPatient::Save, added up.
enum dbSaveOption
{
    dbSaveWithoutFile = 1 ///< leave the ".PF" file in the working folder as it is (bulk insertion)
};

/// A patient as stored: the patient's own data with persons, addresses, phones, referrals, insurances and
/// timepoints. Load reads and Save writes all of it at once. Every call that reaches the database throws
/// dbCException* on failure. Copies are independent of each other.
class VELPAT_API dbCPatient : public patCPatient
{
public:
    dbCPatient();
    ~dbCPatient() override;
    dbCPatient(const dbCPatient& other);
    dbCPatient& operator=(const dbCPatient& other);
    /// Takes the other's place in the database too: when a transaction in which the other was saved is rolled
    /// back later, it is this object that is no longer stored. The other keeps its values, without a place.
    // NOLINTNEXTLINE(performance-noexcept-move-constructor): it copies the values, which may throw
    dbCPatient& operator=(dbCPatient&& other);

    /// Makes this an empty new patient again.
    void Initialize();

    /// Reads a patient by ID (any letter case) or by GUID. `bByID` and `bByGUID` say which of the two
    /// `pszIDOrGUID` may be. FALSE, with the object unchanged, when there is no such patient.
    BOOL Load(LPCTSTR pszIDOrGUID, BOOL bByID = TRUE, BOOL bByGUID = TRUE);

    /// Changes the ID. Save then also renames the patient's files in the working folder when `bRenameFiles`
    /// is set.
    void SetID(LPCTSTR pszID, BOOL bRenameFiles = TRUE);

    /// Writes everything in one transaction (part of an open dbCTransaction if there is one); the patient's
    /// ".PF" file follows when it is committed. A new patient gets a GUID. With a new ID a lock that this
    /// process has on the patient goes along. Throws with code dbErrDuplicateID when the ID is taken,
    /// dbErrDuplicateGUID, dbErrChangedElsewhere when the record was changed or removed since it was loaded,
    /// dbErrFilesPending when files under the ID still wait to be renamed or removed, dbErrPatientInUse when
    /// another user has locked the new ID, dbErrNotFound for a doctor who is gone, dbErrText, dbErrInvalid
    /// and dbErrReservedID for an ID that cannot be, dbErrIO when the working folder or a file to rename
    /// cannot be had, and the database's own; nothing is then changed, in the database or here.
    /// `nOptions` as dbSaveOption. Bulk insertion: many Saves inside one dbCTransaction.
    void Save(int nOptions = 0);

    dbCAddresses& GetAddresses()
    {
        return m_addresses;
    }
    const dbCAddresses& GetAddresses() const
    {
        return m_addresses;
    }
    dbCAddress GetAddress(int nIndex = 0) const;
    void SetAddress(int nIndex, const dbCAddress& address);
    dbCPhones& GetPhones()
    {
        return m_phones;
    }
    const dbCPhones& GetPhones() const
    {
        return m_phones;
    }

    /// The attached person of a kind (dbPersonKind). FALSE, with `person` unchanged, when there is none.
    BOOL GetPersonInfo(int nKind, dbCPerson& person) const;
    /// Replaces the attached person of a kind. Of a doctor only the GUID counts, the doctor's own record
    /// stays as it is.
    void SetPersonInfo(int nKind, const dbCPerson& person);
    /// Attaches a person where there was none (replaces one otherwise). The guardian becomes a new person.
    void AddPersonInfo(int nKind, const dbCPerson& person);
    void RemovePersonInfo(int nKind);

    /// The patient's insurance policies; the primary one first.
    dbCInsurances& GetInsurances()
    {
        return m_insurances;
    }
    const dbCInsurances& GetInsurances() const
    {
        return m_insurances;
    }
    /// Makes the policy with this GUID the primary one (moves it to the front). FALSE when there is none.
    BOOL SetInsuranceGUID(LPCTSTR pszPolicyGUID);
    /// Adds a policy, or replaces the one with the same GUID.
    void AssignInsurance(const dbCInsurance& insurance);
    void RemoveInsurance(LPCTSTR pszPolicyGUID);

    /// The referring doctors with date and note; stored by Save.
    dbCPatientReferralsContainer& GetReferrals()
    {
        return m_referrals;
    }
    const dbCPatientReferralsContainer& GetReferrals() const
    {
        return m_referrals;
    }

    /// Writes or reads the whole patient. Format 1 is the present one, 2 the earlier one that other programs
    /// of the suite still write. Throws CArchiveException* when what is read is no patient of that format, is
    /// cut short or exceeds the limits, dbCException* (dbErrText) for text that the code page does not have,
    /// and leaves the object unchanged. Touches no database when reading; writing a stored patient adds its
    /// diagnostic records, its treatment history, the further e-mail addresses of and around it and the names
    /// of office and status from the open database.
    void Serialize(CArchive& ar, int nFormat = 1);

    /// What Serialize read: diagnostic entries, treatment history, and the names that office, status and
    /// doctors had in the practice the archive comes from.
    dbCDiagnosticInfos& GetArchiveDiagnostics()
    {
        return m_archiveDiagnostics;
    }
    const dbCDiagnosticInfos& GetArchiveDiagnostics() const
    {
        return m_archiveDiagnostics;
    }
    const dbTList<dbCPatientTreatmentStatusHistoryRow>& GetArchiveTreatments() const
    {
        return m_archiveTreatments;
    }
    const CString& GetArchiveOffice() const
    {
        return m_strArchiveOffice;
    }
    const CString& GetArchiveStatus() const
    {
        return m_strArchiveStatus;
    }
    /// By a person's GUID the addresses behind the one in the person's record. AddFromArchive gives them to
    /// the persons that it adds.
    std::map<CString, dbCPersonEmails>& GetArchiveEmails()
    {
        return m_archiveEmails;
    }

    /// Copies the timepoint at a position, with everything recorded about its images. FALSE when there is
    /// none.
    BOOL CopyTimepoint(int nIndex, patCTimepoint& timepoint) const;
    enum : int
    {
        PASTE_NUMBER_TAKEN = 1994 ///< result of PasteTimepoint
    };
    /// Appends a copied timepoint under the number its base file name ends in (SetBaseFilename), with a new
    /// GUID and without the treatment link. Returns 0, 1993 when the patient has 100 timepoints, or
    /// PASTE_NUMBER_TAKEN. Save stores it.
    int PasteTimepoint(const patCTimepoint& timepoint);

    /// FALSE while the patient's balance is not zero.
    BOOL CanDeletePatient() const;
    /// Stores a balance, in hundredths of the currency unit, at once.
    void SetBalance(__int64 nBalance);

    /// Deletes the images of the timepoint at a position (which must be one) with what is recorded about
    /// them, or the timepoint with all its files and diagnostic records. Stores the patient as Save does, and
    /// throws what Save throws; also dbErrFilesPending while earlier work on the patient's files is not
    /// finished. Records and files change together: a file in use goes later, when the database is next
    /// opened.
    void DeleteTimepointImages(int nIndex);
    void DeleteTimepoint(int nIndex);

    /// TRUE when the record was stored and is no longer there.
    BOOL isDeleted() const;

    /// Writes the ".PF" file of the patient as it is here into a folder (the working folder when null or
    /// empty; nothing happens when that is not set).
    void WritePatientFile(LPCTSTR pszFolder = nullptr) const;

private:
    /// Changes the timepoints, stores the patient and notes the removal of the files in one transaction.
    void ChangeTimepoints(const patFileStates& files, const std::function<void()>& change);

    struct Archive;
    friend struct Archive;
    friend class dbCPatientStore;
    friend class dbCPatients;

    std::map<int, dbCPerson> m_persons;
    dbCAddresses m_addresses;
    dbCPhones m_phones;
    dbCInsurances m_insurances;
    dbCPatientReferralsContainer m_referrals;
    dbCDiagnosticInfos m_archiveDiagnostics;
    dbTList<dbCPatientTreatmentStatusHistoryRow> m_archiveTreatments;
    CString m_strArchiveOffice, m_strArchiveStatus;
    std::map<CString, dbCPersonEmails> m_archiveEmails;
    dbCPatientEmailsContainer m_archivePatientEmails; ///< of others than patient and guardian
    CString m_strLoadedID;                            ///< the ID in the database, empty for a new patient
    BOOL m_bRenameFiles = TRUE;
    __int64 m_nRowVersion = 0;            ///< version of the stored record that this object is based on
    std::shared_ptr<dbCPatient*> m_pSelf; ///< lets a transaction's end find this object if it still lives
};
