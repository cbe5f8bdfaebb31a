// How a record from the service becomes part of a local patient.
#include "cloud/exchange/patientfiles.h"
#include "cloud/exchange/receiveplan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace cloud;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
const std::string Md5(32, 'a');

RecordTimepoint Timepoint(const std::string& number, const std::string& guid, const std::string& name = "T",
                          const std::string& date = "2020-01-02")
{
    RecordTimepoint timepoint;
    timepoint.name = name;
    timepoint.date = date;
    timepoint.number = number;
    timepoint.guid = guid;
    return timepoint;
}

RecordImage Image(const std::string& file, const std::string& signature = Md5)
{
    RecordImage image;
    image.file = file;
    image.signature = signature;
    image.title = "title " + file;
    image.note = "note " + file;
    image.guid = "{" + file + "}";
    return image;
}

Record OneTimepoint()
{
    Record record;
    record.patientId = "A1";
    record.ownerGuid = "{OWNER}";
    record.timepoints = {Timepoint("7", "{T7}")};
    return record;
}

/// For a practice without files.
ReceivePlan Plan(const Record& record, const std::string& id = "B2",
                 const std::vector<LocalTimepoint>& locals = {},
                 const FileChoice& choice = FileChoice::Everything())
{
    return PlanReceive(record, id, locals, choice,
                       [](const std::string&, const std::string&) { return LocalFile::Absent; });
}

std::vector<std::string> Transfers(const ReceivePlan& plan)
{
    std::vector<std::string> lines;
    for (const ManifestFile& file : plan.files)
        lines.push_back(file.name + ">" + file.finalName + " " + std::to_string(file.timepointNumber));
    return lines;
}

std::vector<std::string> Targets(const ReceivePlan& plan)
{
    std::vector<std::string> lines;
    for (const TimepointTarget& target : plan.targets)
        lines.push_back(std::to_string(target.recordNumber) + ">" + std::to_string(target.localNumber) +
                        (target.localIndex < 0 ? " new" : " at " + std::to_string(target.localIndex)));
    return lines;
}
} // namespace

TEST(CloudReceive, FindsTimepointsByGuidThenByNameAndDay)
{
    Record record = OneTimepoint();
    record.timepoints = {Timepoint("0", "{T0}"),
                         Timepoint("1", "{t1}", "elsewhere", "2001-01-01"),
                         Timepoint("2", "", "Start", "2019-05-06T00:00:00"),
                         Timepoint("3", "{T3}", "START", "2019-05-06"), // the same once more: one of its own
                         Timepoint("4", "{T4}", "Start", "2019-05-07"),
                         Timepoint("5", "", "", "")};
    const std::vector<LocalTimepoint> locals = {
        {"{T1}", "First", "2020-01-02", 4}, {"{X}", "start", "2019-05-06", 9}, {"{Y}", "z", "", 5}};
    EXPECT_THAT(Targets(Plan(record, "B2", locals)),
                ElementsAre("0>0 new", "1>4 at 0", "2>9 at 1", "3>3 new", "4>1 new", "5>2 new"));

    // A name takes no timepoint that another's GUID names, and of several with a name each once.
    record.timepoints = {Timepoint("1", "", "Start", "2019-05-06"), Timepoint("2", "{X}", "End", ""),
                         Timepoint("3", "", "Start", "2019-05-06")};
    const std::vector<LocalTimepoint> alike = {{"{X}", "Start", "2019-05-06", 9},
                                               {"{Y}", "Start", "2019-05-06", 4},
                                               {"{Z}", "Start", "2019-05-06", 5}};
    EXPECT_THAT(Targets(Plan(record, "B2", alike)), ElementsAre("1>4 at 1", "2>9 at 0", "3>5 at 2"));
}

TEST(CloudReceive, KeepsWithinAHundredTimepoints)
{
    Record record = OneTimepoint();
    std::vector<LocalTimepoint> locals;
    for (int number = 0; number < 99; ++number)
        locals.push_back({"{" + std::to_string(number) + "}", "n", "", number});
    EXPECT_THAT(Targets(Plan(record, "B2", locals)), ElementsAre("7>99 new"));
    record.timepoints.push_back(Timepoint("8", "{T8}"));
    EXPECT_EQ(Plan(record, "B2", locals).fault, PlanFault::TooManyTimepoints);

    for (const char* number : {"", "100", "-1", "7", "x", "0x1", " 1"})
    {
        record.timepoints = {Timepoint("7", "{T7}"), Timepoint(number, "{T8}")};
        EXPECT_EQ(Plan(record).fault, PlanFault::TimepointNumber) << number;
    }
    record.timepoints.clear();
    for (const char* id : {"", "AUX", "a\\b", "..", "ABCDEFGHIJKLMNOPQRSTUVWXYZ"})
    {
        record.patientId = id;
        EXPECT_EQ(Plan(record).fault, PlanFault::NoPatientId) << id;
    }
}

TEST(CloudReceive, NamesFilesForTheLocalPatientAndTakesWhatIsChosen)
{
    Record record = OneTimepoint();
    record.withAcvFiles = true;
    RecordTimepoint& timepoint = record.timepoints[0];
    timepoint.files = {{"A1$07$x.stl", Md5, "{C}", "3D"}, {"A107.M", Md5, "", "McLaughlin"}};
    RecordImage image = Image("a107.i0a", std::string(128, 'A'));
    image.viewFile = "A107.V0A";
    image.viewSignature = Md5;
    image.files = {{"A107.D1.I0A", Md5, "", "3D"},
                   {"A107.I0A.AVI", Md5, "", "strange"},
                   {"A107.I0A.acv", Md5, "", "other"}};
    timepoint.images = {image, Image("A107.C01"), Image("A107.I0A")}; // the last is the first again

    const ReceivePlan all = Plan(record, "B2", {{"{T7}", "", "", 3}});
    EXPECT_THAT(Transfers(all),
                ElementsAre("A1$07$x.stl>B2$03$x.stl 3", "A107.M>B203.M 3", "a107.i0a>B203.i0a 3",
                            "A107.V0A>B203.V0A 3", "A107.D1.I0A>B203.D1.I0A 3", "A107.I0A.AVI>B203.I0A.AVI 3",
                            "A107.I0A.acv>B203.I0A.acv 3", "A107.C01>B203.C01 3"));
    EXPECT_EQ(all.files[0].catalogGuid, "{C}");
    EXPECT_EQ(all.files[2].signature, std::string(128, 'a'));
    EXPECT_EQ(all.files[2].ownerGuid + all.files[2].fileGuid + all.files[2].title + all.files[2].note,
              "{OWNER}{a107.i0a}title a107.i0anote a107.i0a");
    ASSERT_EQ(all.images.size(), 2U);
    EXPECT_EQ(std::tuple(all.images[0].group, all.images[0].type, all.images[0].source),
              std::tuple(0, 'A', &timepoint.images[0]));
    EXPECT_EQ(std::tuple(all.images[1].group, all.images[1].type), std::tuple(4, '0'));

    const struct
    {
        FileChoice choice;
        std::size_t files;
    } choices[] = {{{}, 4}, {{true, false, false}, 5}, {{false, true, false}, 5}, {{false, false, true}, 6}};
    for (const auto& c : choices)
        EXPECT_EQ(Plan(record, "B2", {}, c.choice).files.size(), c.files);
    record.withAcvFiles = false;
    EXPECT_EQ(Plan(record, "B2", {}, {}).files.size(), 3U);
}

TEST(CloudReceive, RefusesNamesThatAreNotTheTimepointsOwn)
{
    for (const char* name : {"", "A107", "A108.I0A", "A2.I0A", "B207.I0A", "A1007.I0A", "..\\A107.I0A",
                             "A107.I0A/../x.I0A", "C:A107.I0A", "A107.I0A:s", "A107.PF", "A107.I0A.",
                             "A107.I0A ", "A107.I8A", "A107.J0A", "AUX.I0A", "A1.ACV"})
    {
        Record record = OneTimepoint();
        record.timepoints.push_back(Timepoint("8", "{T8}"));
        record.timepoints[0].images = {Image(name)};
        const ReceivePlan plan = Plan(record);
        EXPECT_EQ(plan.fault, PlanFault::FileName) << name;
        EXPECT_EQ(plan.faultText, name);
    }
    // What is not chosen is looked at all the same; a file in the wrong element is not taken for an image.
    Record record = OneTimepoint();
    record.timepoints[0].files = {{"..\\evil.stl", Md5, "", "3D"}, {"AUX", Md5, "", "3D"}};
    const ReceivePlan plan = Plan(record, "B2", {}, {});
    EXPECT_EQ(plan.fault, PlanFault::FileName);
    EXPECT_EQ(plan.faultText, "..\\evil.stl"); // the first
}

TEST(CloudReceive, LeavesOutWhatCannotBeChecked)
{
    Record record = OneTimepoint();
    const std::string good = "0123456789abcdefABCDEF0123456789";
    for (const char* signature :
         {"", "abc", "0123456789abcdef0123456789abcdeg", "0123456789abcdef0123456789abcdef0"})
        record.timepoints[0].images.push_back(
            Image("A107.I1" + std::string(1, static_cast<char>('A' + record.timepoints[0].images.size())),
                  signature));
    record.timepoints[0].images.push_back(Image("A107.I0A", good));
    const ReceivePlan plan = Plan(record);
    EXPECT_THAT(plan.unsignedFiles, ElementsAre("A107.I1A", "A107.I1B", "A107.I1C", "A107.I1D"));
    ASSERT_EQ(plan.files.size(), 1U);
    EXPECT_EQ(plan.files[0].signature, "0123456789abcdefabcdef0123456789");
    EXPECT_EQ(plan.images.size(), 1U);
}

TEST(CloudReceive, SortsAFoldersFilesIntoTimepointsAndImages)
{
    const auto timepoints = GroupPatientFiles(
        {"A100.PF",  "A1.PF",    "a101.i2a",    "A101.V2A",    "A101.I2A.DIC", "A101.I2A.AVI", "A101.D1.I2A",
         "A101.M",   "A101.DF0", "A1$01$b.stl", "A1$01$A.stl", "A1$free",      "A100.C01",     "A100.I40",
         "A102.C01", "A102.V3B", "A103.I40",    "A103.C01",    "A1001.I2A",    "B101.I2B"},
        "A1");
    std::vector<std::string> lines;
    for (const auto& [number, timepoint] : timepoints)
    {
        std::string line = std::to_string(number);
        for (const auto& [name, kind] : timepoint.files)
            line += " " + name + "=" + std::string(CategoryOf(kind));
        for (const auto& [slot, image] : timepoint.images)
        {
            line +=
                " [" + std::to_string(slot.first) + slot.second + " " + image.image + "," + image.companion;
            for (const auto& [name, kind] : image.further)
                line += " " + name + "=" + std::string(CategoryOf(kind));
            line += "]";
        }
        lines.push_back(line);
    }
    EXPECT_THAT(lines, ElementsAre("0 [40 A100.I40,]",
                                   "1 A1$01$A.stl=3D A1$01$b.stl=3D A101.M=McLaughlin [2A a101.i2a,A101.V2A "
                                   "A101.D1.I2A=3D A101.I2A.AVI=other A101.I2A.DIC=other]",
                                   "2 [3B ,A102.V3B] [40 A102.C01,]", "3 [40 A103.I40,]"));
}
