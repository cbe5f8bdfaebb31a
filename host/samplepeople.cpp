#include "host/samplepeople.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <span>
#include <string_view>

namespace sample
{

namespace
{

using Words = std::span<const std::string_view>;

constexpr std::array<std::string_view, 48> kFemaleNames = {
    "Abigail", "Alice",   "Amara",    "Anneke",  "Beatrix", "Bianca",         "Carla",    "Celia",
    "Clara",   "Daria",   "Delphine", "Edith",   "Elena",   "Elsie",          "Fatima",   "Fiona",
    "Greta",   "Hannah",  "Ingrid",   "Iris",    "Jasmine", "Joan",           "Katrin",   "Keiko",
    "Leila",   "Linnea",  "Lucia",    "Mabel",   "Marta",   "Mei",            "Miriam",   "Nadia",
    "Nora",    "Odette",  "Paloma",   "Priya",   "Quinn",   "Ren\xC3\xA9" "e", "Rosa",    "Saskia",
    "Selma",   "Tamsin",  "Thea",     "Ursula",  "Vera",    "Wanda",          "Yasmin",   "Zo\xC3\xAB"};

constexpr std::array<std::string_view, 48> kMaleNames = {
    "Adrian",  "Alasdair", "Anton",  "Arjun",   "Barnaby",        "Bruno",   "Caleb",   "Casper",
    "Cedric",  "Damian",   "Dexter", "Edmund",  "Elias",          "Emil",    "Ferdinand", "Finn",
    "Gareth",  "Gustav",   "Hamish", "Hiroshi", "Hugo",           "Ignacio", "Ivan",    "Jasper",
    "Joel",    "Jonas",    "Kamal",  "Kenji",   "Lars",           "Leopold", "Linus",   "Marcel",
    "Milan",   "Nathaniel", "Niall", "Omar",    "Oskar",          "Pascal",  "Quentin", "Ravi",
    "Rupert",  "Samir",    "Silas",  "Stellan", "Te\xC3\xB3" "filo", "Tobias", "Viktor",  "Wendell"};

constexpr std::array<std::string_view, 80> kFamilyNames = {
    "Abernethy",  "Achterberg", "Adeyemi",   "Albescu",    "Ashdown",    "Balfe",      "Barrowman",  "Bellweather",
    "Birkhoff",   "Brandvold",  "Brightman", "Calloway",   "Castellane", "Chandra",    "Coldwell",   "Cranmere",
    "Dahlgren",   "Delacourt",  "Drummond",  "Ebersbach",  "Ekholm",     "Elmhurst",   "Fairbrother", "Farrow",
    "Fenwick",    "Fontaine",   "Galbraith", "Garrick",    "Goodacre",   "Haldane",    "Harrowgate", "Hazelwood",
    "Holloway",   "Ibarra",     "Ingleby",   "Jansson",    "Jorgensen",  "Kaczmarek",  "Kellerman",  "Kitagawa",
    "Koskinen",   "Lachance",   "Langstrom", "Lindqvist",  "Loxley",     "MacAllen",   "Marchetti",  "Merriweather",
    "Moreau",     "M\xC3\xBCllner", "Nakagawa", "Nightingale", "Novotny", "N\xC3\xBA\xC3\xB1" "ez", "O'Hanlon", "Okonjo",
    "Oldcastle",  "Palmgren",   "Pemberton", "Pettigrew",  "Quigley",    "Ravenscroft", "Reinhold",  "Rosewarne",
    "Saltmarsh",  "Sandoval",   "Sch\xC3\xB6nfeld", "Silvertree", "Stavros", "Takemura", "Tennant",  "Thistlewood",
    "Ullman",     "Vandermeer", "Villanova", "Wainscott",  "Westerberg", "Whitlock",   "Yarrow",     "Zielinska"};

constexpr std::array<std::string_view, 24> kStreets = {
    "Alder Lane",    "Beacon Street",  "Birch Avenue", "Brook Road",   "Cedar Court",   "Chapel Hill",
    "Copper Lane",   "Damson Way",     "Elm Street",   "Fern Close",   "Granary Road",  "Harbour View",
    "Heather Drive", "Juniper Street", "Kiln Lane",    "Linden Avenue", "Mill Street",  "Orchard Road",
    "Quarry Lane",   "Rowan Drive",    "School Lane",  "Spinney Close", "Station Road", "Willow Walk"};

// Towns that no atlas has.
struct Town
{
    std::string_view name;
    std::string_view state;
    std::string_view postalCode;
};

constexpr std::array<Town, 8> kTowns = {{{"Ashmere", "WA", "98960"},
                                         {"Brindleford", "WA", "98961"},
                                         {"Cloverdale Falls", "WA", "98962"},
                                         {"Dunmoor", "OR", "97999"},
                                         {"Eastwick Bay", "OR", "97998"},
                                         {"Fallowfield", "ID", "83899"},
                                         {"Greyhaven", "WA", "98963"},
                                         {"Hollin Creek", "OR", "97997"}}};

constexpr std::array<std::string_view, 3> kOffices = {"Ashmere Main Street", "Greyhaven Harbour", "Dunmoor Clinic"};

constexpr std::array<std::string_view, 7> kStatuses = {"Consultation", "Observation", "Phase 1 treatment",
                                                       "Full treatment", "Retention",  "Transferred out",
                                                       "Completed"};

constexpr std::array<std::string_view, 14> kPatientKeywords = {
    "Class I",  "Class II", "Class III", "Crossbite", "Crowding", "Deep bite",     "Extraction",
    "Headgear", "Open bite", "Overjet",  "Retainer",  "Spacing",  "Surgical case", "Teaching case"};

constexpr std::array<std::string_view, 8> kImageKeywords = {"Before",     "After",     "Profile", "Smile",
                                                            "Cephalogram", "Panoramic", "Lecture", "Retake"};

constexpr std::array<std::string_view, 5> kInsurances = {"Blue Harbour Dental", "Cascade Mutual", "Evergreen Health",
                                                         "Northfield Family Plan", "Pinecrest Assurance"};

constexpr std::array<std::string_view, 10> kNotes = {
    "",
    "",
    "",
    "Prefers appointments after school.",
    "Allergic to latex.",
    "Plays the clarinet; ask about discomfort.",
    "Please call the guardian before every appointment.",
    "Nickel sensitivity: use nickel-free brackets.",
    "Needs a reminder the day before.",
    "Very anxious. Explain every step."};

constexpr std::array<std::string_view, 6> kTimepointNames = {"Initial", "Progress", "Phase 1",
                                                             "Phase 2", "Final",    "Recall"};

// The day that the practice's records were made up to.
constexpr int kLastYear = 2025;

// A small generator of our own: the standard's distributions differ between libraries.
class Random
{
public:
    explicit Random(std::uint64_t seed) : m_state(seed)
    {
    }

    std::uint64_t Next()
    {
        m_state += 0x9E3779B97F4A7C15u;
        std::uint64_t value = m_state;
        value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9u;
        value = (value ^ (value >> 27)) * 0x94D049BB133111EBu;
        return value ^ (value >> 31);
    }

    // At least 0 and below the limit.
    int Below(int limit)
    {
        return static_cast<int>(Next() % static_cast<std::uint64_t>(limit));
    }

    int Between(int low, int high)
    {
        return low + Below(high - low + 1);
    }

    bool OneIn(int times)
    {
        return Below(times) == 0;
    }

    std::string Word(Words words)
    {
        return std::string(words[static_cast<std::size_t>(Below(static_cast<int>(words.size())))]);
    }

private:
    std::uint64_t m_state;
};

Random RandomFor(std::uint64_t seed, std::string_view purpose, std::size_t index)
{
    std::uint64_t mixed = seed * 0x100000001B3u + index;
    for (const char letter : purpose)
    {
        mixed = (mixed ^ static_cast<unsigned char>(letter)) * 0x100000001B3u;
    }
    return Random(mixed);
}

std::vector<std::string> ToStrings(Words words)
{
    return {words.begin(), words.end()};
}

std::string Digits(int value, int width)
{
    std::string text = std::to_string(value);
    if (text.size() < static_cast<std::size_t>(width))
    {
        text.insert(0, static_cast<std::size_t>(width) - text.size(), '0');
    }
    return text;
}

// Letters without accents, in lower case: for e-mail addresses.
std::string ToMailName(std::string_view name)
{
    static constexpr std::array<std::pair<std::string_view, char>, 6> kPlain = {{{"\xC3\xA9", 'e'},
                                                                                 {"\xC3\xAB", 'e'},
                                                                                 {"\xC3\xB3", 'o'},
                                                                                 {"\xC3\xBC", 'u'},
                                                                                 {"\xC3\xB6", 'o'},
                                                                                 {"\xC3\xBA", 'u'}}};
    std::string plain;
    for (std::size_t at = 0; at < name.size(); ++at)
    {
        const unsigned char letter = static_cast<unsigned char>(name[at]);
        if (letter == 0xC3)
        {
            const auto* found = std::find_if(kPlain.begin(), kPlain.end(), [&](const auto& entry)
                                             { return name.substr(at, 2) == entry.first; });
            plain += found == kPlain.end() ? 'n' : found->second;
            ++at;
        }
        else if (letter >= 'A' && letter <= 'Z')
        {
            plain += static_cast<char>(letter - 'A' + 'a');
        }
        else if (letter >= 'a' && letter <= 'z')
        {
            plain += static_cast<char>(letter);
        }
    }
    return plain;
}

std::string MakeMail(const std::string& given, const std::string& family)
{
    return ToMailName(given) + "." + ToMailName(family) + "@example.com";
}

// 555-0100 to 555-0199 belong to nobody.
std::string MakePhone(Random& random)
{
    static constexpr std::array<int, 3> kAreas = {208, 360, 541};
    char text[20];
    std::snprintf(text, sizeof text, "(%d) 555-01%02d", kAreas[static_cast<std::size_t>(random.Below(3))],
                  random.Below(100));
    return text;
}

Address MakeAddress(Random& random)
{
    const Town& town = kTowns[static_cast<std::size_t>(random.Below(static_cast<int>(kTowns.size())))];
    Address address;
    address.street = std::to_string(random.Between(1, 240)) + " " + random.Word(kStreets);
    address.city = town.name;
    address.state = town.state;
    address.postalCode = town.postalCode;
    address.country = "USA";
    return address;
}

Date MakeDate(Random& random, int firstYear, int lastYear)
{
    return {random.Between(firstYear, lastYear), random.Between(1, 12), random.Between(1, 28)};
}

Date AddMonths(Date date, int months)
{
    const int total = date.year * 12 + date.month - 1 + months;
    return {total / 12, total % 12 + 1, date.day};
}

std::string GivenName(Random& random, bool female)
{
    return random.Word(female ? Words(kFemaleNames) : Words(kMaleNames));
}

Person MakeDoctor(std::uint64_t seed, std::string_view purpose, std::size_t index)
{
    Random random = RandomFor(seed, purpose, index);
    Person doctor;
    doctor.title = "Dr.";
    doctor.female = random.OneIn(2);
    doctor.given = GivenName(random, doctor.female);
    doctor.family = random.Word(kFamilyNames);
    doctor.email = MakeMail(doctor.given, doctor.family);
    doctor.birth = MakeDate(random, 1955, 1990);
    // The last one has no address yet, as happens in every practice.
    if (index % 8 != 7)
    {
        doctor.address = MakeAddress(random);
        doctor.address.company = doctor.family + " Dental";
    }
    doctor.phones = {{MakePhone(random), "Work"}};
    return doctor;
}

// What members of one family share; every ninth patient is a younger brother or sister of the one before.
struct Household
{
    std::string family;
    Address address;
    std::string phone;
    Person guardian;
};

constexpr std::size_t kSiblingEvery = 9;

Household MakeHousehold(std::uint64_t seed, std::size_t index)
{
    const bool sibling = index % kSiblingEvery == kSiblingEvery - 1;
    Random random = RandomFor(seed, "household", sibling ? index - 1 : index);
    Household household;
    household.family = random.Word(kFamilyNames);
    household.address = MakeAddress(random);
    household.phone = MakePhone(random);

    Person& guardian = household.guardian;
    guardian.female = random.OneIn(2);
    guardian.title = guardian.female ? "Ms." : "Mr.";
    guardian.given = GivenName(random, guardian.female);
    guardian.family = random.OneIn(6) ? random.Word(kFamilyNames) : household.family;
    guardian.email = MakeMail(guardian.given, guardian.family);
    guardian.birth = MakeDate(random, 1970, 1988);
    guardian.address = household.address;
    guardian.phones = {{household.phone, "Home"}, {MakePhone(random), "Mobile"}};
    return household;
}

std::vector<Timepoint> MakeTimepoints(Random& random, const Date& birth)
{
    std::vector<Timepoint> timepoints;
    const int count = random.Between(0, 5);
    const int earliest = std::max(birth.year + 7, kLastYear - 6);
    Date date = MakeDate(random, std::min(earliest, kLastYear - 4), kLastYear - 3);
    for (int number = 0; number < count; ++number)
    {
        timepoints.push_back({std::string(kTimepointNames[static_cast<std::size_t>(number)]), date,
                              random.Between(1, 4)});
        date = AddMonths(date, random.Between(4, 9));
    }
    return timepoints;
}

std::string JoinKeywords(Random& random)
{
    std::string keywords;
    for (int left = random.Below(4); left > 0; --left)
    {
        const std::string keyword = random.Word(kPatientKeywords);
        if (keywords.find(keyword) == std::string::npos)
        {
            keywords += (keywords.empty() ? "" : ", ") + keyword;
        }
    }
    return keywords;
}

} // namespace

Generator::Generator(std::size_t patients, std::uint64_t seed)
    : m_seed(seed), m_digits(std::max(4, static_cast<int>(std::to_string(patients).size())))
{
    m_lists.offices = ToStrings(kOffices);
    m_lists.statuses = ToStrings(kStatuses);
    m_lists.patientKeywords = ToStrings(kPatientKeywords);
    m_lists.imageKeywords = ToStrings(kImageKeywords);
    m_lists.insurances = ToStrings(kInsurances);
    for (std::size_t index = 0; index < 4; ++index)
    {
        m_lists.treatingDoctors.push_back(MakeDoctor(m_seed, "treating", index));
    }
    for (std::size_t index = 0; index < 16; ++index)
    {
        m_lists.referringDoctors.push_back(MakeDoctor(m_seed, "referring", index));
    }
}

Patient Generator::GetPatient(std::size_t index) const
{
    const Household household = MakeHousehold(m_seed, index);
    Random random = RandomFor(m_seed, "patient", index);

    Patient patient;
    patient.female = random.OneIn(2);
    patient.given = GivenName(random, patient.female);
    patient.family = household.family;
    patient.birth = random.OneIn(5) ? MakeDate(random, 1965, 2002) : MakeDate(random, 2005, 2016);
    patient.id = ToMailName(household.family).substr(0, 1);
    patient.id[0] = static_cast<char>(patient.id[0] - 'a' + 'A');
    patient.id += Digits(static_cast<int>(index) + 1, m_digits);
    patient.nickname = random.OneIn(7) ? patient.given.substr(0, 3) : "";
    if (std::any_of(patient.nickname.begin(), patient.nickname.end(),
                    [](char letter) { return (static_cast<unsigned char>(letter) & 0x80) != 0; }))
    {
        patient.nickname.clear();
    }
    patient.genderIdentity = random.OneIn(40) ? 3 : (patient.female ? 1 : 2);
    patient.race = random.Below(10);
    patient.address = household.address;
    patient.phones = {{household.phone, "Home"}};
    if (random.OneIn(2))
    {
        patient.phones.push_back({MakePhone(random), "Mobile"});
    }
    patient.modelNumber = random.OneIn(3) ? "M-" + std::to_string(1000 + static_cast<int>(index % 9000)) : "";
    patient.keywords = JoinKeywords(random);
    patient.notes = random.Word(kNotes);

    const bool minor = patient.birth.year > kLastYear - 18;
    patient.hasGuardian = minor;
    patient.guardian = minor ? household.guardian : Person{};
    patient.title = minor ? "" : (patient.female ? "Ms." : "Mr.");
    patient.salutation = minor ? patient.given : patient.title + " " + patient.family;
    patient.email = minor ? "" : MakeMail(patient.given, patient.family);

    patient.office = random.Below(static_cast<int>(m_lists.offices.size()));
    patient.status = random.Below(static_cast<int>(m_lists.statuses.size()));
    patient.treatingDoctor = random.Below(static_cast<int>(m_lists.treatingDoctors.size()));
    patient.referringDoctor =
        random.OneIn(4) ? -1 : random.Below(static_cast<int>(m_lists.referringDoctors.size()));
    if (!random.OneIn(3))
    {
        patient.insurance = random.Below(static_cast<int>(m_lists.insurances.size()));
        patient.policyNumber = "P" + Digits(random.Below(10000000), 7);
    }
    patient.timepoints = MakeTimepoints(random, patient.birth);
    return patient;
}

} // namespace sample
