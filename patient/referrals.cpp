#include "patient/referrals.h"

#include "patient/daynumber.h"
#include "patient/rules/detailrules.h"
#include "suite/patients/records/dbpatient.h"

void patCReferrals::Load(const dbCPatient& patient)
{
    if (m_bLoaded)
        return;
    if (patient.IsValid())
        m_source.LoadWithDoctor(patient.GetGUID());
    else
        m_source = patient.GetReferrals();
    for (int nRow = 0; nRow < m_source.GetCount(); ++nRow)
    {
        const dbCPatientReferralsRow& row = m_source[nRow];
        m_loaded.push_back(
            {nRow, row.Get_docID().GetString(),
             pat::DoctorName(row.Get_docLastname().GetString(), row.Get_docFirstname().GetString()),
             pat::DayNumber(row.Get_date()), row.Get_note().GetString()});
    }
    m_rows = m_loaded;
    m_bLoaded = true;
}

void patCReferrals::Set(int nRow, pat::Referral referral)
{
    if (nRow == static_cast<int>(m_rows.size()))
        m_rows.emplace_back();
    pat::Referral& row = m_rows[static_cast<std::size_t>(nRow)];
    referral.nOrigin = row.nOrigin;
    row = std::move(referral);
}

void patCReferrals::Erase(int nRow)
{
    m_rows.erase(m_rows.begin() + nRow);
}

void patCReferrals::SetFirstDoctor(const std::string& strDoctorID, const std::string& strDoctor)
{
    if (m_rows.empty())
        return;
    pat::Referral& first = m_rows.front();
    if (!strDoctorID.empty())
    {
        first.strDoctorID = strDoctorID;
        first.strDoctor = strDoctor;
    }
    else if (first.nOrigin >= 0)
    {
        const pat::Referral& loaded = m_loaded[static_cast<std::size_t>(first.nOrigin)];
        first.strDoctorID = loaded.strDoctorID;
        first.strDoctor = loaded.strDoctor;
    }
}

void patCReferrals::Store(dbCPatient& patient) const
{
    if (!IsChanged())
        return;
    dbCPatientReferralsContainer& rows = patient.GetReferrals();
    rows.RemoveAll();
    for (const pat::Referral& referral : m_rows)
    {
        if (referral.nOrigin < 0)
        {
            rows.AddReferralDoc(referral.strDoctorID.c_str(), pat::DayDate(referral.nDay),
                                referral.strNote.c_str());
            continue;
        }
        const pat::Referral& loaded = m_loaded[static_cast<std::size_t>(referral.nOrigin)];
        const int nRow = rows.Add(m_source[referral.nOrigin]);
        if (referral.strDoctorID != loaded.strDoctorID)
            rows.UpdateDocID(nRow, referral.strDoctorID.c_str());
        if (referral.nDay != loaded.nDay)
            rows[nRow].Set_date(pat::DayDate(referral.nDay));
        if (referral.strNote != loaded.strNote)
            rows[nRow].Set_note(referral.strNote.c_str());
    }
}
