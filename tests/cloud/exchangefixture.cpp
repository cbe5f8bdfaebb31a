#include "tests/cloud/exchangefixture.h"

#include "app/modalrun.h"
#include "app/velapp.h"
#include "cloud/res/cloudres.h"
#include "tests/support/mfctestprogram.h"

#include <regex>

using veltest::Dialog;
using veltest::DialogScript;

// The module's application object is this program's.
[[maybe_unused]] static const auto* const environment =
    testing::AddGlobalTestEnvironment(new veltest::MfcEnvironment);

BOOL CVelDlgsApp::InitInstance()
{
    return CWinApp::InitInstance();
}

int CVelDlgsApp::ExitInstance()
{
    return CWinApp::ExitInstance();
}

static std::string CommandOf(const std::string& request)
{
    const std::string line = request.substr(request.find("\r\n\r\n") + 4);
    return line.substr(4, line.find('&') - 4);
}

Exchange::Exchange()
    : m_server([this](const std::string& request, const veltest::Reply& reply) {
          if (m_nCut > 0 && --m_nCut == 0)
          {
              if (m_bCutHalf)
                  reply.Send("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n<record");
              else
                  reply.Reset();
              return;
          }
          const auto found = m_replies.find(CommandOf(request));
          reply.Send(found == m_replies.end() ? "HTTP/1.1 500 No\r\nContent-Length: 0\r\n\r\n"
                                              : veltest::Ok(found->second));
      })
{
    dbCPatients::Create(m_practice.Path("patients.db").c_str());
    dbCApplicationOptionsContainer::SetApplicationOption("RASKOPATH", m_practice.Path("temp").c_str());
    dbCApplicationOptionsContainer::SetApplicationOption(
        "RASKOTARGET", m_server.Address().substr(std::string("http://").size()).c_str());
    m_replies = {{"login", ""}, {"logout", ""}, {"getdownloadpatient", ServiceRecord()}};
    m_replies["getdownloadable"] = R"(<record userGUID='{U}'>
<patinfo patGUID='{G}' patlastName='Lee' patfirstName='Zo&#235;' patVeltrixID='41' patID='A1' patOwnerLast='Ames'
 patOwnerFirst='Anna' patOwnerGUID='{O}' lastUpdate='2020-01-02T03:04:05' LastShared='2021-01-02T03:04:05.000'/>
<patinfo patVeltrixID='42' patOwnerGUID='{U}' lastUpdate='2020-01-02T03:04' LastShared='x'/>
<patinfo patVeltrixID='43' patlastName='&lt;&amp;' LastShared='yesterday'/></record>)";
}

Exchange::~Exchange()
{
    dbCPatients::Close();
}

std::vector<std::string> Exchange::Commands() const
{
    std::vector<std::string> commands;
    for (const std::string& request : m_server.Requests())
        commands.push_back(CommandOf(request));
    return commands;
}

INT_PTR Exchange::RunList(const DialogScript::Script& script)
{
    return veltest::RunModal(
        [&] {
            PlainList list(nullptr, m_program, m_credentials);
            return velRunModal(list);
        },
        script);
}

INT_PTR Exchange::DownloadWith(const DialogScript::Script& settle)
{
    return RunList([&](DialogScript& script) {
        const Dialog list = script.WaitForDialog("Get Patient From Internet");
        list.Item(IDC_CLD_LIST).SelectRow(0);
        script.WaitUntil("OK can be pressed", [&] { return list.Item(IDOK).IsEnabled(); });
        list.Press(IDOK);
        settle(script);
        script.SettleIdle(list.Handle());
        if (list.IsOpen())
            list.Press(IDCANCEL);
    });
}

INT_PTR Exchange::Download(const std::vector<std::string>& boxes)
{
    return DownloadWith([&](DialogScript& script) {
        for (const std::string& text : boxes)
            script.AnswerBox(text, IDOK);
    });
}

dbCPatient Exchange::StorePatient(const std::string& id, int nTimepoints)
{
    dbCPatient patient;
    patient.SetID(id.c_str());
    patient.SetLastname("Lee");
    patient.SetFirstname("Zo\xeb");
    patient.SetBirthdate(velCDate(1999, 5, 17));
    for (int i = 0; i < nTimepoints; ++i)
    {
        dbCTimepoint timepoint;
        timepoint.SetNumber(id.c_str(), i);
        timepoint.SetName("Start");
        timepoint.SetDate(velCDate(2009, 3, 5 + i));
        timepoint.SetImage(2, 0);
        patient.GetTimepoints().Add(&patient, timepoint, FALSE, FALSE);
        m_practice.WriteFile(("working\\" + timepoint.GetImageFilename(2, 0)).GetString(), "abc");
    }
    patient.Save();
    m_known.push_back(id);
    return patient;
}

std::string Exchange::State()
{
    std::string text;
    const auto line = [&](const CString& str) { text += std::string(str) + "\n"; };
    for (const std::string& id : m_known)
    {
        dbCPatient patient;
        if (!patient.Load(id.c_str()))
            continue;
        line(patient.GetID() + " " + patient.GetGUID() + " " + patient.GetLastname() + " " +
             patient.GetFirstname() + " " + patient.GetBirthdate().ToISO() + " " + patient.GetVeltrixID() +
             " " + patient.GetNotes());
        for (const patCTimepoint& timepoint : patient.GetTimepoints())
        {
            const patSImageInfo info = timepoint.GetImageInfo(2, 0);
            line("  " + timepoint.GetName() + " " + timepoint.GetDate().ToISO() + " " +
                 timepoint.GetBaseFilename() + " " + std::to_string(timepoint.GetImageBits(2)).c_str() +
                 (timepoint.IsActive() ? "" : " inactive") + " " + info.strTitle + " " + info.strNote);
        }
        dbCRaskoTasksContainer tasks;
        tasks.LoadPending(patient.GetGUID());
        for (const dbSRaskoTask& task : tasks)
        {
            line("  task " + task.strDescription + " of " + task.strPatientID);
            const std::string manifest(task.strData);
            static const std::regex file("finalfilename=\"([^\"]*)\" imageExists=\"(.)\"");
            for (std::sregex_iterator next(manifest.begin(), manifest.end(), file), end; next != end; ++next)
                line(("    " + next->str(1) + " exists: " + next->str(2)).c_str());
        }
    }
    dbTList<dbSAuditEvent> events;
    CVeltrixLogin::LoadEvents(events, 100);
    for (const dbSAuditEvent& event : events)
        line(event.strText);
    return text;
}

std::string ServiceRecord(const std::string& timepoints)
{
    const std::string oneImage = R"(
<Timepoint name='Start' tpDate='2009-03-05' tpNumber='7' tpGUID='{0B000000-0000-0000-0000-000000000007}'>
<file name='A107.M' hash='900150983cd24fb0d6963f7d28e17f72' catalogGUID='{C}' category='McLaughlin'/><Images>
<image file='A107.I2A' signature='900150983cd24fb0d6963f7d28e17f72' title='lateral' note='n' imageGUID='{I}'
 vfile='A107.V2A' vsignature='900150983cd24fb0d6963f7d28e17f72'/></Images></Timepoint>)";
    return R"(<record userGUID='{U}' downloadACV='0'><patient patVeltrixID='41'
 patGUID='{0A000000-0000-0000-0000-000000000001}' patientID='A1' patOwnerGUID='{O}' frvPatGUID='{F}'
 patfirstName='Zoë' patlastName='Lee' patBirthdate='1999-05-17' patGender='1'/><Timepoints>)" +
           (timepoints.empty() ? oneImage : timepoints) +
           "</Timepoints><patient last='Lee'><note>hello</note></patient></record>";
}
