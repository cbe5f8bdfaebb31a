// Exceptions inside dialogs: the call ends as cancelled, with one message, and the module goes on working.

#include "app/veldlgs.h"
#include "patient/patientres.h"
#include "suite/patients/dbexception.h"
#include "suite/patients/dbpatient.h"
#include "suite/patients/veltrixlogin.h"
#include "tests/support/dialogscript.h"
#include "tests/support/temporarypractice.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace
{

using veltest::Dialog;
using veltest::DialogScript;

/// A patient list whose look-up fails, inside the handler of the sheet's OK.
class FailingPatients : public dbCPatients
{
public:
    BOOL IsIDFree(LPCTSTR pszID) override
    {
        if (m_fail)
            m_fail();
        return dbCPatients::IsIDFree(pszID);
    }

    std::function<void()> m_fail;
};

class ModalFailure : public testing::Test
{
protected:
    void SetUp() override
    {
        dbCPatients::Create(m_practice.Path("patients.db").c_str());
    }
    void TearDown() override
    {
        dbCPatients::Close();
    }

    /// Enters a patient with the failing list; the box's text is checked, then everything has to be over.
    void EnterPatientAndFail(const char* expectedReason)
    {
        CString guid = "before";
        const auto result =
            veltest::RunModal([&] { return NewPatientDlg(nullptr, &m_patients, guid); },
                              [&](DialogScript& script) {
                                  const Dialog sheet = script.WaitForDialog("Patient Information");
                                  sheet.Item(IDC_CHART_ID).Replace("A1");
                                  sheet.Item(IDC_CHART_FIRSTNAME).Replace("Ann");
                                  sheet.Item(IDC_CHART_LASTNAME).Replace("Lee");
                                  sheet.Press(IDOK);
                                  const Dialog box = script.WaitForBox();
                                  EXPECT_NE(box.BoxText().find(expectedReason), std::string::npos)
                                      << box.BoxText();
                                  EXPECT_TRUE(box.HasIcon(IDI_ERROR));
                                  box.Press(IDOK);
                              });
        EXPECT_EQ(result, IDCANCEL);
        EXPECT_TRUE(guid.IsEmpty());
        EXPECT_EQ(m_patients.GetCount(), 0);
        EXPECT_EQ(CVeltrixLogin::m_bNewPatFromDI, 0) << "the flag of the audit log is restored";
    }

    veltest::TemporaryPractice m_practice;
    FailingPatients m_patients;
};

TEST_F(ModalFailure, ForeignExceptionInTheOKHandlerCancelsTheSheet)
{
    m_patients.m_fail = [] { throw std::runtime_error("the cable was pulled"); };
    EnterPatientAndFail("the cable was pulled");
}

TEST_F(ModalFailure, AnExceptionOfNoKnownKindToo)
{
    m_patients.m_fail = [] { throw 42; };
    EnterPatientAndFail("The cause is not known.");
}

TEST_F(ModalFailure, TheModuleWorksOnAfterAFailure)
{
    m_patients.m_fail = [] { throw std::runtime_error("the cable was pulled"); };
    EnterPatientAndFail("the cable was pulled");

    m_patients.m_fail = nullptr;
    CString guid;
    const auto result = veltest::RunModal([&] { return NewPatientDlg(nullptr, &m_patients, guid); },
                                          [](DialogScript& script) {
                                              const Dialog sheet =
                                                  script.WaitForDialog("Patient Information");
                                              sheet.Item(IDC_CHART_ID).Replace("A1");
                                              sheet.Item(IDC_CHART_FIRSTNAME).Replace("Ann");
                                              sheet.Item(IDC_CHART_LASTNAME).Replace("Lee");
                                              sheet.Press(IDOK);
                                          });
    EXPECT_EQ(result, IDOK);
    EXPECT_FALSE(guid.IsEmpty());
}

} // namespace
