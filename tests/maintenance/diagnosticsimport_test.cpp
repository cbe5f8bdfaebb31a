// Diagnostics out of a patient file, through the export, into a real database.

#include "tests/maintenance/patientpractice.h"

namespace
{
class DiagnosticsImport : public PatientPractice
{
protected:
    DiagnosticsImport()
    {
        for (const char* code : {"c0", "C1", "C3", "C4", "C0"}) // the last, not the first of its code
            m_items.emplace_back(dbCDiagnosticGroup::DefineItem("Airway", "Clinical", code, "title"));
        dbCDiagnosticGroup::DefineItem("Airway", "Other", "C2", "of another category");
    }

    /// A file of the codes C0 to C`count - 1` at timepoint 1, the last at one that the patient has not.
    std::string Write(int nFormat, int nCount) const
    {
        dbCPatient archived;
        archived.SetID("Z9");
        archived.SetGUID(dbNewGUID());
        for (int i = 0; i < nCount; ++i)
        {
            dbCDiagnosticInfo info;
            CString strCode;
            strCode.Format("C%d", i % 5);
            info.SetGroupTitle("Airway");
            info.SetItemCode(strCode);
            info.SetTP(i + 1 < nCount ? 1 : 8);
            info.SetValue("value " + strCode);
            info.SetNote("note " + strCode);
            archived.GetArchiveDiagnostics().Add(info);
        }
        const std::string path = database.practice.Path("archived.pf");
        CFile file(path.c_str(), CFile::modeCreate | CFile::modeWrite);
        CArchive archive(&file, CArchive::store);
        archived.Serialize(archive, nFormat);
        return path;
    }

    /// Every field of every record, its time as seconds behind the first one's.
    std::vector<std::string> Records() const
    {
        std::vector<std::string> texts;
        const dbCPatientDiagnostics diagnostics(m_strGUID, 0, "Clinical");
        for (const dbSDiagnosticRecord& record : diagnostics)
        {
            const double dDays = record.dateTime.m_dt - diagnostics[0].dateTime.m_dt;
            CString strText;
            strText.Format("%s %s/%s tp%d pos%d +%d", record.strDtID.GetString(), record.strValue.GetString(),
                           record.strNote.GetString(), record.nTP, record.nPosition,
                           static_cast<int>(dDays * 86400 + 0.5));
            texts.emplace_back(strText);
        }
        return texts;
    }

    const CString m_strGUID = m_patient.GetGUID();
    std::vector<std::string> m_items;
};

TEST_F(DiagnosticsImport, FiveEntriesOneUnknownGiveFourRecordsInBothFormats)
{
    std::vector<std::string> expected = {
        m_items[0] + " value C0/note C0 tp1 pos0 +0", m_items[1] + " value C1/note C1 tp1 pos1 +1",
        m_items[2] + " value C3/note C3 tp1 pos3 +3", m_items[3] + " value C4/note C4 tp-1 pos4 +4"};
    const COleDateTime before = COleDateTime::GetCurrentTime() + COleDateTimeSpan(0, 0, 0, -2);
    for (const int nFormat : {1, 2})
    {
        EXPECT_TRUE(ImportPatientDiagnostics(Write(nFormat, 5).c_str(), m_strGUID));
        EXPECT_EQ(Records(), expected) << "format " << nFormat;
        EXPECT_LT(before, dbCPatientDiagnostics(m_strGUID, 0, "Clinical")[0].dateTime);
        Sql("DELETE FROM diagnostics");
    }
}

TEST_F(DiagnosticsImport, AnUnknownPatientIsRefusedAndAnUnreadableFileImportsNothing)
{
    const std::string good = Write(1, 5);
    for (const char* guid : {"", "{00000000-0000-0000-0000-000000000000}", static_cast<const char*>(nullptr)})
        EXPECT_FALSE(ImportPatientDiagnostics(good.c_str(), guid));

    const std::string bytes = database.practice.ReadFile("archived.pf");
    const std::string contents[] = {
        "", "garbage", "VPA1", "VPA2", bytes.substr(0, bytes.size() / 2), "VPA2" + std::string(64, '\xFF')};
    for (const std::string& content : contents)
    {
        database.practice.WriteFile("archived.pf", content);
        EXPECT_TRUE(ImportPatientDiagnostics(good.c_str(), m_strGUID));
    }
    for (const char* path : {"", "nowhere.pf", static_cast<const char*>(nullptr)})
        EXPECT_TRUE(ImportPatientDiagnostics(path, m_strGUID));
    EXPECT_TRUE(Records().empty());
    dbCPatients::Close();
    EXPECT_FALSE(ImportPatientDiagnostics(good.c_str(), m_strGUID)) << "no database to ask";
}

TEST_F(DiagnosticsImport, ARecordThatFailsTakesTheWholeImportBackAndTheAuditLogSaysWhy)
{
    const std::string path = Write(1, 5);
    Sql("CREATE TRIGGER refuse BEFORE INSERT ON diagnostics WHEN NEW.position = 3"
        " BEGIN SELECT RAISE(ABORT, 'refused by the test'); END");
    EXPECT_TRUE(ImportPatientDiagnostics(path.c_str(), m_strGUID));
    EXPECT_TRUE(Records().empty());
    dbTList<dbSAuditEvent> events;
    CVeltrixLogin::LoadEvents(events, 10);
    ASSERT_EQ(events.GetCount(), 1);
    EXPECT_EQ(events[0].strPatientGUID, m_strGUID);
    EXPECT_GE(events[0].strText.Find("could not be imported. "), 0) << events[0].strText.GetString();
    EXPECT_GE(events[0].strText.Find("refused by the test"), 0) << events[0].strText.GetString();
}
} // namespace
