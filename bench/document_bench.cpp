// A patient's record with 40 images at each timepoint, built, read and matched, for 100 timepoints against
// 10; and the signatures of a large file. Under Wine, in a folder where bench/exchange.sh has put the files.
//   document_bench.exe FOLDER LARGE-FILE
#include "cloud/exchange/receiveplan.h"
#include "cloud/xml/velxml.h"
#include "suite/patients/velpat.h"
#include "tests/support/mfctestprogram.h"
#include "tests/support/temporarypractice.h"

#include <chrono>
#include <cstdio>
#include <functional>

VEL_MFC_TEST_PROGRAM();

namespace
{
constexpr int Groups = 8, TypesOfGroup = 5; // 40 images
constexpr char Types[] = "0ABCD";
constexpr char Signature[] = "900150983cd24fb0d6963f7d28e17f72";

double Seconds(const std::function<void()>& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// What a record of so many timepoints takes.
struct Times
{
    double build = 0, read = 0, match = 0;
};

std::string ServiceRecord(int timepoints)
{
    std::string record =
        "<record userGUID=\"{U}\" downloadACV=\"0\"><patient patVeltrixID=\"1\" patGUID=\"{P}\""
        " patientID=\"A1\"/><Timepoints>";
    char text[300];
    for (int number = 0; number < timepoints; ++number)
    {
        std::snprintf(
            text, sizeof text,
            "<Timepoint name=\"T%d\" tpDate=\"2009-03-05\" tpNumber=\"%d\" tpGUID=\"{T%d}\"><Images>", number,
            number, number);
        record += text;
        for (int group = 0; group < Groups; ++group)
            for (const char* type = Types; *type; ++type)
            {
                std::snprintf(
                    text, sizeof text,
                    "<image file=\"A1%02d.I%d%c\" signature=\"%s\" title=\"lateral\" imageType=\"%d%c\""
                    " imageGUID=\"{G}\"/>",
                    number, group, *type, Signature, group, *type);
                record += text;
            }
        record += "</Images></Timepoint>";
    }
    return record + "</Timepoints></record>";
}

Times Measure(int timepoints)
{
    Times times;
    dbCPatient patient;
    patient.SetID("A1");
    std::vector<cloud::LocalTimepoint> locals;
    for (int number = 0; number < timepoints; ++number)
    {
        dbCTimepoint timepoint;
        timepoint.SetNumber("A1", number);
        timepoint.SetDate(velCDate(2009, 3, 5));
        for (int group = 0; group < Groups; ++group)
            for (int type = 0; type < TypesOfGroup; ++type)
                timepoint.SetImage(group, type);
        patient.GetTimepoints().Add(&patient, timepoint, FALSE, FALSE);
        locals.push_back({"{T" + std::to_string(number) + "}", "T", "2009-03-05", number});
    }
    CVelXML xml;
    CString document;
    times.build = Seconds([&] { xml.BuildPatientXml(patient, document); });
    const std::string record = ServiceRecord(timepoints);
    cloud::Record read;
    times.read = Seconds([&] {
        if (!xml.LoadXml(record.c_str()) || !xml.ReadRecord(read))
            std::printf("the record cannot be read\n");
    });
    cloud::ReceivePlan plan;
    times.match = Seconds([&] {
        plan = cloud::PlanReceive(
            read, "A1", locals, cloud::FileChoice::Everything(),
            [](const std::string&, const std::string&) { return cloud::LocalFile::Absent; });
    });
    const auto images = static_cast<std::size_t>(timepoints * Groups * TypesOfGroup);
    if (xml.GetFileBytes() < 0 || plan.images.size() != images)
        std::printf("  only %zu of %zu images are planned\n", plan.images.size(), images);
    return times;
}
} // namespace

int main(int argc, char** argv)
{
    if (argc != 3 || !AfxWinInit(::GetModuleHandle(nullptr), nullptr, ::GetCommandLine(), 0))
        return 2;
    CoInitialize(nullptr);
    const veltest::TemporaryPractice practice;
    practice.Set("Environment", "WORKING", argv[1]);
    dbCPatients::Create(practice.Path("patients.db").c_str());
    Measure(1); // the parser is loaded now
    const Times few = Measure(10), many = Measure(100);
    std::printf("100 timepoints of 40 images against 10 of them: built %.3f s / %.3f s = %.1f; read %.3f / "
                "%.3f = %.1f;"
                " matched %.4f / %.4f = %.1f\n",
                many.build, few.build, many.build / few.build, many.read, few.read, many.read / few.read,
                many.match, few.match, many.match / few.match);
    for (const bool sha512 : {false, true})
    {
        const patCFileHasher hasher(sha512);
        CString signature;
        const double seconds = Seconds([&] { hasher.GetHash(argv[2], signature); });
        std::printf("%s %s %.3f\n", sha512 ? "sha512sum" : "md5sum", signature.GetString(), seconds);
    }
    dbCPatients::Close();
    return 0;
}
