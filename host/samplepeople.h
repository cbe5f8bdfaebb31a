// Invented people for the sample practice. Plain C++: the same seed and index give the same patient on every
// platform, whatever the size of the practice, so that pictures and measurements can be compared.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace sample
{

// A calendar date; year 0 means none.
struct Date
{
    int year = 0;
    int month = 1;
    int day = 1;

    auto operator<=>(const Date&) const = default; // NOLINT(modernize-use-nullptr): a comparison with 0
};

struct Address
{
    std::string company;
    std::string street;
    std::string city;
    std::string state;
    std::string postalCode;
    std::string country;
};

// The kind is the name that the database's list of phone types uses.
struct Phone
{
    std::string number;
    std::string kind;
};

// Somebody beside the patients: a guardian or a doctor.
struct Person
{
    std::string title;
    std::string given;
    std::string family;
    std::string email;
    Date birth;
    bool female = false;
    Address address;
    std::vector<Phone> phones;
};

struct Timepoint
{
    std::string name;
    Date date;
    int images = 0;
};

// Indexes point into the lists of Lists; -1 means none.
struct Patient
{
    std::string id;
    std::string given;
    std::string family;
    std::string nickname;
    std::string title;
    std::string salutation;
    std::string email;
    std::string modelNumber;
    std::string keywords;
    std::string notes;
    Date birth;
    bool female = false;
    int genderIdentity = 0;
    int race = 0;
    Address address;
    std::vector<Phone> phones;
    bool hasGuardian = false;
    Person guardian;
    int office = -1;
    int status = -1;
    int treatingDoctor = -1;
    int referringDoctor = -1;
    int insurance = -1;
    std::string policyNumber;
    std::vector<Timepoint> timepoints;
};

// What the practice holds beside its patients.
struct Lists
{
    std::vector<std::string> offices;
    std::vector<std::string> statuses;
    std::vector<std::string> patientKeywords;
    std::vector<std::string> imageKeywords;
    std::vector<std::string> insurances;
    std::vector<Person> treatingDoctors;
    std::vector<Person> referringDoctors;
};

// All text is UTF-8. Phone numbers and e-mail addresses come from the ranges kept free for fiction.
class Generator
{
public:
    // The number of patients only fixes the width of the numbers in the IDs, so that no ID is the beginning of
    // another one.
    explicit Generator(std::size_t patients, std::uint64_t seed = 1);

    const Lists& GetLists() const
    {
        return m_lists;
    }

    // The patient at an index below the number of patients. Thread safe, takes about a microsecond.
    Patient GetPatient(std::size_t index) const;

private:
    std::uint64_t m_seed;
    int m_digits;
    Lists m_lists;
};

} // namespace sample
