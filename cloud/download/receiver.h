// Takes a record that the service delivered into the practice.
#pragma once

#include "cloud/exchange/receiveplan.h"
#include "cloud/exchange/record.h"
#include "cloud/queue/farreachveltrix.h"
#include "suite/patients/velpat.h"

#include <optional>

/// What a record became.
struct velSReceived
{
    bool bNewPatient = false;
    CString strGUID; ///< of the local patient
};

/// Finds or makes the local patient, adds timepoints and images that are missing, and queues the transfer of
/// the files: patient, task and audit event together or not at all. Asks and tells the user what has to be
/// asked and told. On its caller's stack, user interface thread.
class velCReceiver
{
public:
    /// `updated`: when the service's record was last changed, local time; null where that is not known, and
    /// files that differ then stay as they are.
    velCReceiver(CFarreachVeltrix& queue, const cloud::FileChoice& choice, const velCDate& updated);

    /// Nothing when the user declined or was told why it cannot be done; nothing has been changed then.
    /// Throws dbCException*.
    std::optional<velSReceived> Receive(CVelXML& xml);

private:
    bool FindPatient();
    bool SettleSamePerson(const CString& strGUID);
    bool RequireFreeID();
    void MakeNew(CVelXML& xml);
    bool Plan();
    bool TellFault() const;
    void TellUnsigned() const;
    void TellNote() const;
    void Apply();
    void ReactivateTimepoints();
    int Store(CVelXML& xml);
    cloud::LocalFile Compare(const std::string& name, const std::string& signature) const;

    CFarreachVeltrix& m_queue;
    const cloud::FileChoice m_choice;
    const velCDate m_updated;
    cloud::Record m_record;
    cloud::ReceivePlan m_plan;
    velCDate m_dateBirth;
    dbCPatient m_patient;
    bool m_bNew = false;
    CString m_strNewID;
};
