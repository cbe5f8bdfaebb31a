#include "patient/referrals.h"

#include "patient/daynumber.h"
#include "patient/rules/detailrules.h"
#include "suite/patients/records/dbdoctors.h"
#include "suite/patients/records/dbpatient.h"

namespace
{

std::string DoctorNameOf(const dbCPatientReferralsRow& row)
{
    std::string strName =
        pat::DoctorName(row.Get_docLastname().GetString(), row.Get_docFirstname().GetString());
    dbCDoctor doctor;
    if (strName.empty() && doctor.Load(row.Get_docID()))
        strName = pat::DoctorName(doctor.GetPerson().GetLastname().GetString(),
                                  doctor.GetPerson().GetFirstname().GetString());
    return strName;
}

} // namespace

void patCReferrals::Load(const dbCPatient& patient)
{
    if (m_bLoaded)
        return;
    if (patient.IsValid())
        m_source.LoadWithDoctor(patient.GetGUID());
    else
        m_source = patient.GetReferrals();
    std::vector<pat::Referral> rows;
    for (int nRow = 0; nRow < m_source.GetCount(); ++nRow)
    {
        const dbCPatientReferralsRow& row = m_source[nRow];
        rows.push_back({nRow, row.Get_docID().GetString(), DoctorNameOf(row), pat::DayNumber(row.Get_date()),
                        row.Get_note().GetString()});
    }
    m_rows = m_loaded = std::move(rows);
    m_bLoaded = true;
}

void patCReferrals::Set(int nRow, pat::Referral referral)
{
    if (nRow == static_cast<int>(m_rows.size()))
        m_rows.emplace_back();
    pat::Referral& row = m_rows[static_cast<std::size_t>(nRow)];
    if (nRow == 0 && referral.strDoctorID != row.strDoctorID)
        m_replaced.reset();
    referral.nOrigin = row.nOrigin;
    row = std::move(referral);
}

void patCReferrals::Erase(int nRow)
{
    m_rows.erase(m_rows.begin() + nRow);
    if (nRow == 0)
        m_replaced.reset();
}

void patCReferrals::SetFirstDoctor(const std::string& strDoctorID, const std::string& strDoctor)
{
    if (m_rows.empty())
        return;
    pat::Referral& first = m_rows.front();
    if (!strDoctorID.empty())
    {
        if (!m_replaced)
            m_replaced = first;
        first.strDoctorID = strDoctorID;
        first.strDoctor = strDoctor;
    }
    else if (m_replaced)
    {
        first.strDoctorID = m_replaced->strDoctorID;
        first.strDoctor = m_replaced->strDoctor;
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
