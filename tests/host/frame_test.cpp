// The main window and what the module posts to it about patients.

#include "host/hostframe.h"
#include "host/hostpractice.h"
#include "host/hostres.h"
#include "host/picture.h"
#include "suite/patients/velpat.h"
#include "suite/util/velini.h"
#include "maintenance/maintenanceres.h"
#include "tests/support/dialogscript.h"
#include "tests/support/temporarypractice.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

namespace
{

class HostFrame : public testing::Test
{
protected:
    HostFrame()
    {
        InitVelPatDLL(1);
        const std::string folder = m_files.Path("practice");
        CString error;
        EXPECT_TRUE(hostCPractice::Create(folder.c_str(), 8, error)) << error.GetString();
        m_frame = new hostCFrame(m_session); // deletes itself
        EXPECT_TRUE(m_frame->LoadFrame(IDR_HOST));
        EXPECT_TRUE(m_frame->OpenPractice(folder.c_str()));
        dbCPatients().GetPage(dbSearchName, "", nullptr, 8, m_rows);
    }

    ~HostFrame() override
    {
        m_frame->DestroyWindow();
        m_session.Close();
        velSetIniFile(nullptr);
    }

    // As the module does; the block is the window's.
    void Tell(WPARAM what, const CString& guid)
    {
        const auto size = static_cast<std::size_t>(guid.GetLength()) + 1;
        char* const copy = new char[size];
        std::memcpy(copy, guid.GetString(), size);
        m_frame->SendMessage(VELDLGS_PATIENT_CHANGED, what, reinterpret_cast<LPARAM>(copy));
        TakeMessages();
    }

    static void TakeMessages()
    {
        MSG message;
        while (::PeekMessage(&message, nullptr, 0, 0, PM_REMOVE))
            ::DispatchMessage(&message);
    }

    std::string Shown() const
    {
        return veltest::WindowText(::GetDlgItem(m_frame->m_hWnd, IDC_PATIENT_NAME));
    }

    std::string Status() const
    {
        char text[256] = {};
        ::SendDlgItemMessage(m_frame->m_hWnd, IDC_STATUSBAR, SB_GETTEXT, 0, reinterpret_cast<LPARAM>(text));
        return text;
    }

    int CountRows() const
    {
        return static_cast<int>(::SendDlgItemMessage(m_frame->m_hWnd, IDC_PATIENTS, LVM_GETITEMCOUNT, 0, 0));
    }

    /// Names and treatments of a stored patient's timepoints.
    static std::vector<std::pair<CString, CString>> Timepoints(const CString& guid)
    {
        dbCPatient patient;
        EXPECT_TRUE(patient.Load(guid));
        std::vector<std::pair<CString, CString>> timepoints;
        for (const patCTimepoint& timepoint : patient.GetTimepoints())
            timepoints.emplace_back(timepoint.GetName(), timepoint.GetptshID());
        return timepoints;
    }

    veltest::TemporaryPractice m_files;
    picCSession m_drawing;
    hostCSession m_session;
    hostCFrame* m_frame;
    dbTList<dbSPatientListRow> m_rows;
};

TEST_F(HostFrame, ShowsThePatientThatAnArchiveOperationHasChanged)
{
    ASSERT_EQ(8, CountRows());
    const std::tuple<WPARAM, int, const char*> cases[] = {
        {ARCHIVE_NOTIFY_LOADED, 5, "Patient loaded from an archive"},
        {ARCHIVE_NOTIFY_MERGED, 3, "Timepoints merged into the patient"},
        {ARCHIVE_NOTIFY_REFRESH, 6, "Timepoints merged into the patient"}, // what has been told stays
    };
    for (const auto& [what, row, status] : cases)
    {
        Tell(what, m_rows[row].strGUID);
        EXPECT_THAT(Shown(), testing::HasSubstr(("ID " + m_rows[row].strID).GetString()));
        EXPECT_EQ(status, Status());
    }
}

TEST_F(HostFrame, NoLongerShowsARemovedPatient)
{
    Tell(ARCHIVE_NOTIFY_REFRESH, m_rows[2].strGUID);
    dbCPatients().DeletePatient(m_rows[2].strGUID);
    Tell(ARCHIVE_NOTIFY_REMOVED, m_rows[2].strGUID);
    EXPECT_EQ(7, CountRows());
    EXPECT_THAT(Shown(), testing::Not(testing::HasSubstr(("ID " + m_rows[2].strID).GetString())));
    EXPECT_EQ("Patient removed from the list", Status());
}

TEST_F(HostFrame, WithstandsANoticeWithoutAPatient)
{
    Tell(ARCHIVE_NOTIFY_LOADED, m_rows[4].strGUID);
    const std::string before = Shown();
    m_frame->SendMessage(VELDLGS_PATIENT_CHANGED, ARCHIVE_NOTIFY_LOADED, 0);
    Tell(ARCHIVE_NOTIFY_LOADED, "{of no patient}");
    EXPECT_EQ(before, Shown());
    EXPECT_EQ(8, CountRows());
}

TEST_F(HostFrame, ANameThatWasEmptiedForAnotherTreatmentStays)
{
    m_session.UsePracticeManagement(TRUE);
    const auto row = std::find_if(m_rows.begin(), m_rows.end(),
                                  [](const auto& r) { return !Timepoints(r.strGUID).empty(); });
    ASSERT_NE(row, m_rows.end());
    const CString guid = row->strGUID;
    dbCPatientTreatmentStatusHistoryRow treatment;
    treatment.SetpatID(guid);
    treatment.SetDescription("Braces");
    treatment.SetDateTime(velCDate(1990, 1, 2)); // the first of the list
    dbCPatientTreatmentStatusHistoryTable().InsertRow(treatment);
    Tell(ARCHIVE_NOTIFY_LOADED, guid);
    const auto before = Timepoints(guid);
    ListView_SetItemState(::GetDlgItem(m_frame->m_hWnd, IDC_TIMEPOINTS), 0, LVIS_SELECTED, LVIS_SELECTED);
    const auto rename = [](veltest::DialogScript& script, const veltest::Dialog& dialog) {
        dialog.Item(IDC_RENAME_NAMES).SetText("");
        dialog.Item(IDC_RENAME_NAMES).Notify(CBN_EDITCHANGE);
        dialog.Item(IDC_RENAME_TREATMENT).Choose(0);
        dialog.SettleIdle();
        dialog.Press(IDOK);
        script.AnswerBox("", IDYES);
    };
    veltest::RunDialog([&] { return m_frame->SendMessage(WM_COMMAND, ID_PATIENT_RENAME); }, "Rename", rename);
    auto expected = before;
    expected[0].second = treatment.GetptshID();
    EXPECT_EQ(Timepoints(guid), expected);
}

} // namespace
