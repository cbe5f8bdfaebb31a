// Documents of the exchange: what is written, byte by byte, and what is read of what comes.
#include "cloud/xml/codepage.h"
#include "cloud/xml/velxml.h"
#include "suite/patients/velpat.h"
#include "tests/support/exchangeuser.h"
#include "tests/support/mfctestprogram.h"
#include "tests/support/temporarypractice.h"

#include <gmock/gmock.h>
#include <mshtmhst.h>

using veltest::DialogScript;

VEL_MFC_TEST_PROGRAM();

namespace
{
class VelXml : public testing::Test
{
protected:
    VelXml()
    {
        dbCPatients::Create(m_practice.Path("patients.db").c_str());
    }
    ~VelXml() override
    {
        dbCPatients::Close();
    }

    /// A patient with every attribute and collection of a record, and the files of one timepoint.
    dbCPatient StoreRich()
    {
        dbCPatient patient;
        patient.SetID("A1");
        patient.SetGUID("{0A000000-0000-0000-0000-000000000001}");
        patient.SetLastname("M\xfcller");
        patient.SetFirstname("\x80va");
        patient.SetBirthdate(velCDate(2012, 3, 4));
        patient.SetGender(1);
        patient.SetNotes("one\r\n\ttwo <b>");
        patient.GetPhones().Add(dbCPhone("1 2", "Home"));
        dbCAddress home;
        home.SetCity("Ulm");
        patient.GetAddresses().Add(home);
        dbCTimepoint timepoint;
        timepoint.SetNumber("A1", 7);
        timepoint.SetName("Start");
        timepoint.SettpID("{7}");
        timepoint.SetDate(velCDate(2009, 3, 5));
        timepoint.SetImage(2, 0);
        timepoint.SetImage(3, 1); // its file is missing
        timepoint.SetImageInfo(2, 0, {"lateral", "a note", "{IMAGE}"});
        patient.GetTimepoints().Add(&patient, timepoint, FALSE, FALSE);
        for (const char* name :
             {"A107.I2A", "A107.V2A", "A107.I2A.AVI", "A107.D0.I2A", "A1$07$x.stl", "A107.M"})
            m_practice.WriteFile("working\\" + std::string(name), "abc");
        veltest::AddCarried(patient);
        dbCPatient stored;
        EXPECT_TRUE(stored.Load("A1"));
        return stored;
    }

    veltest::TemporaryPractice m_practice;
};

const std::string Begin = "<?xml version='1.0'?>\r\n<?xml-stylesheet type='text/xml' href='dom.xsl'?>\r\n";

std::string OneLine(std::string text)
{
    std::erase(text, '\n');
    return text;
}
} // namespace

TEST_F(VelXml, WritesTheSharedRecord)
{
    const dbCPatient patient = StoreRich();
    CVelXML xml;
    ASSERT_TRUE(xml.IsAvailable());
    CString text;
    ASSERT_TRUE(xml.BuildPatientXml(patient, text));
    EXPECT_EQ(std::string(text), Begin + "<!--Patient Information-->\r\n" + OneLine(R"(
<patient patientid="A1" id="{0A000000-0000-0000-0000-000000000001}" last="M&#252;ller" first="&#8364;va"
 birthdate="2012-03-04" dob="2012-03-04" gender="1" norm="3" title="Ms." nickname="&#8364;uro">
<treatingDoctor id="{0D000000-0000-0000-0000-000000000001}" last="O'Hara &amp; &lt;Co&gt;"
 first="&quot;Ren&#233;&quot;" title="Dr.">
<emails><email address="rene@one.example"/><email address="office@one.example"/></emails>
<addresses><address type="O" company="Smile" city="K&#246;ln"/></addresses></treatingDoctor>
<emailAddresses><emailAddress personId="{0A000000-0000-0000-0000-000000000001}" category="patient"
 salutation="Dear Zo&#235;" firstName="&#8364;va" lastName="M&#252;ller" address="zoe@four.example"/>
<emailAddress personId="{P}" category="guardian" type="home" salutation="Mrs." firstName="Eve" lastName="Lee"
 address="eve@three.example"/></emailAddresses>
<ReferringDoctors><ReferringDoctor id="{0D000000-0000-0000-0000-000000000002}" refname="Jan van der Berg"
 refemail="jan@two.example"/></ReferringDoctors>
<note>one&#10;&#9;two &lt;b&gt;</note><phones><phone number="1 2" type="Home"/></phones>
<addresses><address type="H" city="Ulm"/><address type="O" street="Second &quot;Street&quot;" state="BW" zip="89073"
 country="Norway"/></addresses>
<timepoints><timepoint name="Start" tpGUID="{7}" date="03/05/2009" file="A107"><Files>
<file name="A1$07$x.stl" signature="900150983cd24fb0d6963f7d28e17f72" category="3D"/>
<file name="A107.M" signature="900150983cd24fb0d6963f7d28e17f72" category="McLaughlin"/></Files><images>
<image title="lateral" note="a note" file="A107.I2A" signature="900150983cd24fb0d6963f7d28e17f72" vfile="A107.V2A"
 vsignature="900150983cd24fb0d6963f7d28e17f72">
<file name="A107.D0.I2A" signature="900150983cd24fb0d6963f7d28e17f72" category="3D"/>
<file name="A107.I2A.AVI" signature="900150983cd24fb0d6963f7d28e17f72" category="other"/></image>
</images></timepoint></timepoints></patient>)"));

    // Only what is chosen.
    ASSERT_TRUE(xml.BuildPatientXml(patient, text, {}));
    ASSERT_TRUE(xml.LoadXml(text));
    EXPECT_EQ(xml.SelectCount("//file"), 1);
    EXPECT_EQ(xml.SelectCount("//image[@vfile]"), 0);

    dbCPatient bare;
    bare.SetID("B1");
    ASSERT_TRUE(xml.BuildPatientXml(bare, text));
    EXPECT_EQ(std::string(text), Begin + "<!--Patient Information-->\r\n<patient patientid=\"B1\" "
                                         "birthdate=\"\" gender=\"0\" norm=\"0\"/>");
    bare.SetNickname("a\x01");
    EXPECT_FALSE(xml.BuildPatientXml(bare, text));
}

TEST_F(VelXml, WritesTheManifest)
{
    const cloud::ManifestFile file{"B201.I2A", true, "\xe9", "t", "{I}", "{C}", "A107.I2A", "{O}", "s", 1};
    CVelXML xml;
    CString text;
    ASSERT_TRUE(xml.BuildUploadManifest({"Lee, Ann", "{P}", "B2", "{F}", "41"}, {file, {}}, text));
    EXPECT_EQ(std::string(text), Begin + OneLine(R"(
<patient patFullname="Lee, Ann" patGUID="{P}" patID="B2" frvPatGUID="{F}" frvPatId="41"><images>
<image finalfilename="B201.I2A" imageExists="1" imageNote="&#233;" imageTitle="t" imgfileGuid="{I}"
 catalogGuid="{C}" imgfilename="A107.I2A" patOwnerGuid="{O}" imgfileSignature="s" tpNumber="1"/>
<image imageExists="0" tpNumber="0"/></images></patient>)"));
    ASSERT_TRUE(xml.BuildUploadManifest({}, {}, text));
    EXPECT_EQ(std::string(text), Begin + "<patient/>");
}

TEST_F(VelXml, SignsFiles)
{
    // A block is 2048 bytes: what is one shorter, as long, longer, and far longer than the buffer.
    const std::pair<std::size_t, const char*> sizes[] = {{0, "d41d8cd98f00b204e9800998ecf8427e"},
                                                         {2047, "3d1068cfa244f4f86f5bb631471add8f"},
                                                         {2048, "b7ea2d21ad2ef3e28085d30247603e0b"},
                                                         {600'001, "cebccbe4724f4b7ead6e47686ea224db"}};
    CVelXML xml;
    CString signature;
    for (const auto& [size, expected] : sizes)
    {
        m_practice.WriteFile("file", std::string(size, 'a'));
        EXPECT_EQ(xml.GetFileSignature(m_practice.Path("file").c_str(), signature), S_OK);
        EXPECT_STREQ(signature, expected) << size;
    }
    const HANDLE open = ::CreateFile(m_practice.Path("file").c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                     OPEN_EXISTING, 0, nullptr);
    const std::pair<std::string, HRESULT> paths[] = {
        {m_practice.Path("file"), S_OK}, // while another program has it open, for writing too
        {"", static_cast<HRESULT>(0x80070057)},
        {"C:\\" + std::string(257, 'a'), static_cast<HRESULT>(0x80070057)},
        {"C:\\" + std::string(256, 'a'), static_cast<HRESULT>(0x800A0035)},
        {m_practice.Path("none"), static_cast<HRESULT>(0x800A0035)}};
    for (const auto& [path, result] : paths)
        EXPECT_EQ(xml.GetFileSignature(path.c_str(), signature), result) << path;
    ::CloseHandle(open);
    EXPECT_TRUE(signature.IsEmpty());

    m_practice.WriteFile("file", "abc");
    m_practice.Set("defaults", "FIPS", "ON");
    CVelXML fips;
    ASSERT_EQ(fips.GetFileSignature(m_practice.Path("file").c_str(), signature), S_OK);
    EXPECT_STREQ(signature, "ddaf35a193617abacc417349ae20413112e6fa4e89a97ea20a9eeee64b55d39a"
                            "2192992a274fc1a836ba3c23a3feebbd454d4423643ce80e2a9ac94fa54ca49f");
}

TEST_F(VelXml, ReadsOneWholeRecordOnly)
{
    CVelXML xml;
    cloud::Record record;
    const std::string whole =
        "<record downloadACV='1'><patient patVeltrixID='1' patlastName='&#20013;'/></record>";
    EXPECT_TRUE(xml.LoadXml(whole.c_str()) && xml.ReadRecord(record));
    EXPECT_TRUE(record.withAcvFiles);
    EXPECT_EQ(record.lastName, "?");
    EXPECT_TRUE(xml.IsLossy());
    for (const std::string& unusable :
         {std::string(), std::string("<html><body>busy</body></html>"), std::string("<record/>"),
          "<a>" + whole + whole + "</a>", whole.substr(0, 80), "<!DOCTYPE record [<!ENTITY a 'b'>]>" + whole,
          std::string("<record><patient patVeltrixID='1'/><patient patVeltrixID='2'/></record>"),
          std::string("<record><patient patVeltrixID=''/></record>")})
    {
        xml.LoadXml(unusable.c_str());
        EXPECT_FALSE(xml.ReadRecord(record)) << unusable;
        EXPECT_EQ(xml.SelectCount("//patient[@a='"), 0);
    }
}

namespace
{
/// What the HTML dialog was last asked for, and what it answers.
struct
{
    CString strAddress, strPage, strOptions;
    HRESULT nResult = S_OK;
} shown;

HRESULT WINAPI Show(HWND, IMoniker* pPage, VARIANT* pArgument, WCHAR* pszOptions, VARIANT*)
{
    LPOLESTR pszAddress = nullptr;
    velComPtr<IBindCtx> context;
    ::CreateBindCtx(0, context.Receive());
    EXPECT_EQ(pPage->GetDisplayName(context.Get(), nullptr, &pszAddress), S_OK);
    shown.strAddress = velNarrow(pszAddress);
    ::CoTaskMemFree(pszAddress);
    EXPECT_EQ(pArgument->vt, VT_BSTR);
    shown.strPage = velNarrow(pArgument->bstrVal);
    shown.strOptions = velNarrow(pszOptions);
    return shown.nResult;
}
} // namespace

TEST_F(VelXml, ShowsMessagesInTheSystemsDialog)
{
    char program[MAX_PATH] = "";
    ::GetModuleFileName(nullptr, program, MAX_PATH);
    const CString strProgram = program;
    // The module that is loaded under this name is the one that is found.
    const HMODULE viewer =
        ::LoadLibrary(strProgram.Left(strProgram.ReverseFind('\\')) + "\\viewer\\MSHTML.DLL");
    ASSERT_NE(viewer, nullptr);
    *reinterpret_cast<SHOWHTMLDIALOGFN**>(reinterpret_cast<void*>(::GetProcAddress(viewer, "showInTest"))) =
        &Show;
    CVelXML xml;
    EXPECT_EQ(xml.ShowServerMessage("<response><message action='stop' link='l' linkname='n'>Pay</message>"
                                    "<message link='m' linkname='o'>Hi</message></response>"),
              -1);
    EXPECT_STREQ(shown.strAddress, "res://" + strProgram + "/MESSAGE_TEMPLATE");
    EXPECT_NE(::FindResource(nullptr, "MESSAGE_TEMPLATE", RT_HTML), nullptr);
    EXPECT_STREQ(
        shown.strOptions,
        "dialogHeight: 380px; dialogWidth: 550px; edge: Raised; center: Yes; help: No; resizable: Yes");
    EXPECT_THAT(std::string(shown.strPage),
                testing::HasSubstr("<li class=\"stop\">Pay<br><a href=\"http://l\">n</a></li>\r\n"
                                   "<li class=\"cont\">Hi<br><a href=\"http://m\">o</a></li>\r\n</ol><p"));
    EXPECT_EQ(xml.ShowServerMessage("<response><message"), 0);
    EXPECT_STREQ(shown.strPage,
                 "<p>Veltrix has received a malformed message from the Server.<br>You may need to "
                 "contact Veltrix support.</p>");
    shown.nResult = E_FAIL;
    EXPECT_EQ(veltest::RunModal([&] { return xml.ShowServerMessage("<response/>"); },
                                [](DialogScript& script) {
                                    const veltest::Dialog box = script.WaitForBox("ShowHTMLDialog Failed.");
                                    EXPECT_EQ(box.Title(), "Veltrix Rasko");
                                    box.Press(IDOK);
                                }),
              0);
    ::FreeLibrary(viewer);
}
