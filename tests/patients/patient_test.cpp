// A patient through the database and back, and what Save promises.

#include "tests/patients/testdatabase.h"

#include <set>

namespace
{
using Patient = DatabaseTest;

TEST_F(Patient, EveryFieldComesBackFromTheFile)
{
    const CString strText = HardText();
    const dbCPatient saved = Saved(ListedPatient("A1", strText, strText));
    EXPECT_TRUE(saved.IsValid());
    const PatientImage stored = database.ImageOf("A1");
    // Nothing is put into another's place: as many texts are there as were given.
    std::multiset<std::string> texts;
    for (const auto& [name, value] : stored)
        if (value.size() > static_cast<size_t>(strText.GetLength()) && value.starts_with(strText.GetString()))
            texts.insert(value);
    EXPECT_EQ(texts.size(), 50U);
    EXPECT_EQ(std::set<std::string>(texts.begin(), texts.end()).size(), 44U)
        << "the guardian shares an address";

    const PatientImage others{{"genderIdentity", "47"},
                              {"race", "8001"},
                              {"norm", "4"},
                              {"teeth", "PPPPPPPPPPPPPPPPPPPPPPPPPPPPPPMX"},
                              {"recordDate", "2019-08-07"},
                              {"0.gender", "2"},
                              {"0.birthDate", "2010-02-28"},
                              {"0.address.1.type", "O"},
                              {"1.gender", "1"},
                              {"1.birthDate", "1975-12-31"},
                              {"1.phone.0.type", "Mobile"},
                              {"referral.0.date", "2024-03-01"},
                              {"timepoint.2.number", "2"},
                              {"timepoint.2.date", "2022-05-17 14:30:59"},
                              {"timepoint.2.bits0", "4"},
                              {"timepoint.2.bits4", "1"},
                              {"timepoint.1.active", "0"}};
    for (const auto& [name, value] : others)
        EXPECT_EQ(stored.at(name), value) << name;

    dbCPatients::Close();
    dbCPatients::Open(database.Path().c_str());
    dbCPatient byID = Loaded("a1"), byGUID = Loaded(saved.GetGUID());
    EXPECT_EQ(Image(byID), Image(byGUID));
    EXPECT_EQ(byID.GetReferrals()[0].Get_docLastname() + byID.GetReferrals()[0].Get_docFirstname(),
              strText + "Tom");
    EXPECT_TRUE(byID.GetAddress(2).IsEmpty() && byID.GetAddress(-1).IsEmpty());
    EXPECT_EQ(byID.GetTimepoints()[2].GetImageFilename(3, patCImageTypes::FindType(3, 'h')), "A102.I3H");
    byID.Save();
    EXPECT_EQ(Differences(stored, database.ImageOf("A1")), std::vector<std::string>());
}

TEST_F(Patient, TextThatTheCodePageDoesNotHaveIsToldAndShownButNeverChanged)
{
    NewPatient("A1", "Wang").Save();
    database.Execute("UPDATE persons SET lastName = 'Wang \xE7\x8E\x8B'");
    EXPECT_EQ(ErrorOf([] { dbCPatient().Load("A1"); }), dbErrText);
    dbTList<dbSPatientListRow> rows;
    ASSERT_EQ(dbCPatients().GetPage(dbSearchName, "", nullptr, 10, rows), 1);
    EXPECT_EQ(rows[0].strLastname, "Wang ?");
    database.Execute("UPDATE persons SET lastName = 'damaged ' || CAST(x'C3' AS TEXT)");
    EXPECT_EQ(ErrorOf([] { dbCPatient().Load("A1"); }), dbErrText);
    rows.RemoveAll();
    dbCPatients().GetPage(dbSearchName, "", nullptr, 10, rows);
    EXPECT_EQ(rows[0].strLastname.Left(8), "damaged ");
}

TEST_F(Patient, SavingAgainReplacesWhatWasRemoved)
{
    dbCPatient patient = Saved(FullPatient("A1"));
    const CString strKept = patient.GetTimepoints()[2].GettpID();
    patient.GetTimepoints().RemoveAt(0);
    // The remaining two change numbers with each other.
    patient.GetTimepoints()[0].SetNumber("A1", 2);
    patient.GetTimepoints()[1].SetNumber("A1", 1);
    patient.GetPhones().RemoveAt(0);
    patient.RemovePersonInfo(dbPersonGuardian);
    patient.RemoveInsurance(patient.GetInsurances()[0].GetInsuranceGUID());
    patient.Save();
    patient.SetNotes("once more");
    patient.Save();

    EXPECT_EQ(Image(Loaded("A1")), Image(patient));
    CString strTpID;
    EXPECT_EQ(dbCPatients::Get_tpID("A1", 1, strTpID), 0);
    EXPECT_EQ(strTpID, strKept);
    EXPECT_NE(dbCPatients::Get_tpID("A1", 2, strTpID), 0);
}

TEST_F(Patient, LoadOfWhatIsNotThereLeavesTheObjectAlone)
{
    NewPatient("A1").Save();
    dbCPatient patient = NewPatient("B2", "Other");
    for (const char* psz : {"", "A", "A1 ", "A%", "' OR 1=1 --", "{00000000-0000-0000-0000-000000000000}"})
        EXPECT_FALSE(patient.Load(psz)) << psz;
    EXPECT_FALSE(patient.Load("A1", FALSE, TRUE));
    EXPECT_EQ(patient.GetLastname(), "Other");
    EXPECT_FALSE(patient.IsValid());
}

TEST_F(Patient, RefusedIDs)
{
    for (const char* psz : {"", "ABCDEFGHIJKLMNOPQRSTUVWXYZ", "A\\B", "..\\A", "A:B", "A*", "A\x01"})
        EXPECT_EQ(ErrorOf([&] { NewPatient(psz).Save(); }), dbErrInvalid) << psz;
    for (const char* psz : {"CON", "aux", "NUL.1", "PRN ", "COM1", "lpt9"})
        EXPECT_EQ(ErrorOf([&] { NewPatient(psz).Save(); }), dbErrReservedID) << psz;
    for (const char* psz : {"CONS", "COM", "COMX", "COM10"})
        NewPatient(psz).Save();
    NewPatient("ABCDEFGHIJKLMNOPQRSTUVWXY").Save();
    dbCPatients patients;
    EXPECT_FALSE(patients.IsIDFree("abcdefghijklmnopqrstuvwxy"));
}

TEST_F(Patient, ATakenIDIsRefusedInAnyLetterCase)
{
    dbCPatient first = Saved(NewPatient("AB12")), second = NewPatient("ab12"),
               third = Saved(NewPatient("C3"));
    EXPECT_EQ(ErrorOf([&] { second.Save(); }), dbErrDuplicateID);
    EXPECT_FALSE(second.IsValid());
    EXPECT_TRUE(second.GetGUID().IsEmpty());
    third.SetID("Ab12");
    EXPECT_EQ(ErrorOf([&] { third.Save(); }), dbErrDuplicateID);
    first.SetID("ab12");
    first.Save();
    EXPECT_EQ(dbCPatients().GetCount(), 2);
    dbCPatient sameGUID = NewPatient("D4");
    sameGUID.SetGUID(first.GetGUID());
    EXPECT_EQ(ErrorOf([&] { sameGUID.Save(); }), dbErrDuplicateGUID);
}

TEST_F(Patient, ARecordChangedBySomeoneElseIsNotOverwritten)
{
    NewPatient("A1").Save();
    dbCPatient mine, theirs;
    mine.Load("A1");
    theirs.Load("A1");
    theirs.SetNotes("theirs");
    theirs.Save();
    mine.SetNotes("mine");
    EXPECT_EQ(ErrorOf([&] { mine.Save(); }), dbErrChangedElsewhere);
    EXPECT_EQ(mine.GetNotes(), "mine");
    dbCPatients().DeletePatient("A1");
    EXPECT_EQ(ErrorOf([&] { theirs.Save(); }), dbErrChangedElsewhere);
    EXPECT_TRUE(theirs.isDeleted());
    // Loaded again from an archive it is another record: what was read before does not go over it.
    dbCPatient again = NewPatient("A1");
    again.SetGUID(theirs.GetGUID());
    ASSERT_TRUE(dbCPatients().AddFromArchive(again));
    for (int i = 0; i < 3; ++i, again.Save())
    {
        EXPECT_EQ(ErrorOf([&] { mine.Save(); }), dbErrChangedElsewhere) << i;
        EXPECT_EQ(ErrorOf([&] { theirs.Save(); }), dbErrChangedElsewhere) << i;
    }
}

TEST_F(Patient, RollbackPutsObjectFileAndDatabaseBack)
{
    dbCPatient stored = Saved(NewPatient("A1"));
    dbCPatient added = NewPatient("B2");
    {
        dbCTransaction outer;
        {
            dbCTransaction inner;
            added.Save();
            stored.SetNotes("edited");
            stored.Save();
            {
                NewPatient("GONE").Save();
            } // the object does not live to see the rollback
            inner.Commit();
        }
        EXPECT_TRUE(added.IsValid());
        EXPECT_FALSE(dbCPatients().IsIDFree("GONE"));
    }
    EXPECT_FALSE(dbCTransaction::IsActive());
    EXPECT_FALSE(added.IsValid());
    EXPECT_TRUE(added.GetGUID().IsEmpty());
    EXPECT_EQ(stored.GetNotes(), "edited") << "what the user entered stays";
    EXPECT_TRUE(dbCPatients().IsIDFree("B2"));
    EXPECT_EQ(GetFileAttributesA((database.practice.Working() + "B2.PF").c_str()), INVALID_FILE_ATTRIBUTES);
    // Both can be saved again, whatever an inner transaction takes back.
    dbCTransaction outer;
    added.Save();
    {
        dbCTransaction inner;
        NewPatient("C3").Save();
    }
    stored.Save();
    outer.Commit();
    EXPECT_EQ(Loaded("A1").GetNotes(), "edited");
    EXPECT_FALSE(dbCPatients().IsIDFree("B2"));
    EXPECT_TRUE(dbCPatients().IsIDFree("C3"));
}

TEST_F(Patient, SimilarPatient)
{
    dbCPatient saved = Saved(NewPatient("A1", "M\xDCLLER ", "J\xF6rg"));
    dbCPatient undated = NewPatient("A2", "Undated");
    undated.SetBirthdate(velCDate());
    undated.Save();
    dbCPatients patients;
    CString strGUID;
    EXPECT_TRUE(patients.FindSimilar("j\xD6RG", "m\xFCller", velCDate(2010, 2, 28), &strGUID));
    EXPECT_EQ(strGUID, saved.GetGUID());
    EXPECT_FALSE(patients.FindSimilar("J\xF6rg", "M\xFCller", velCDate(2010, 2, 27)));
    EXPECT_FALSE(patients.FindSimilar("J\xF6rg", "Muller", velCDate(2010, 2, 28)));
    EXPECT_FALSE(patients.FindSimilar("J\xF6rg", "M\xFCller", velCDate()));
    EXPECT_TRUE(patients.FindSimilar("Ann", "undated", velCDate()));
    ASSERT_TRUE(undated.Load("A2"));
    EXPECT_TRUE(undated.GetBirthdate().IsNull() && undated.FormatBirthdate().IsEmpty());
    saved.SetBirthdate(velCDate(2011, 1, 1));
    saved.SetVeltrixID("41");
    saved.Save();
    strGUID = "";
    EXPECT_TRUE(patients.FindVeltrixID("41", strGUID));
    EXPECT_EQ(strGUID, saved.GetGUID());
    EXPECT_FALSE(patients.FindVeltrixID("", strGUID)) << "what was never shared";
    EXPECT_FALSE(patients.FindSimilar("J\xF6rg", "M\xFCller", velCDate(2010, 2, 28)));
}

TEST(PatientList, PagesAndSearchesOfTheList)
{
    TestDatabase database(false);
    {
        dbCTransaction transaction;
        for (int i = 0; i < 25; ++i)
        {
            CString strID, strFirst;
            strID.Format("P%02d", i);
            strFirst.Format("First%02d", 24 - i);
            NewPatient(strID, i % 2 ? "lee" : "Adams", strFirst).Save();
        }
        NewPatient("Q_1", "100%", "x").Save();
        // Any character may stand in a name, also where its place in the order is kept.
        for (int i = 0; i < 20; ++i)
            NewPatient(("R" + std::to_string(100 + i)).c_str(), "Z\x01",
                       ("1 2 \x01" + std::to_string(i % 3)).c_str())
                .Save();
        transaction.Commit();
    }
    dbCPatients patients;
    dbTList<dbSPatientListRow> rows;
    ASSERT_EQ(patients.GetPage(dbSearchName, "", nullptr, 100, rows), 46);
    EXPECT_EQ(rows[0].strLastname, "100%");
    EXPECT_EQ(rows[1].strFirstname, "First00");
    EXPECT_EQ(rows[25].strID, "P01");

    const struct
    {
        dbPatientSearch nBy;
        const char* pszSearch;
        int nCount;
    } CASES[] = {{dbSearchName, "", 46},
                 {dbSearchID, "", 46},
                 {dbSearchName, "L", 12},
                 {dbSearchName, "LEE", 12},
                 {dbSearchName, "lee, first0", 5},
                 {dbSearchName, "leex", 0},
                 {dbSearchName, "%", 0},
                 {dbSearchName, "100%", 1},
                 {dbSearchID, "p", 25},
                 {dbSearchID, "P1", 10},
                 {dbSearchID, "q_", 1},
                 {dbSearchID, "_", 0},
                 {dbSearchName, "'", 0},
                 {dbSearchName, "z\x01", 20}};
    for (const auto& test : CASES)
    {
        rows.RemoveAll();
        EXPECT_EQ(patients.GetPage(test.nBy, test.pszSearch, nullptr, 100, rows), test.nCount)
            << test.pszSearch;
        dbTList<dbSPatientListRow> paged;
        while (patients.GetPage(test.nBy, test.pszSearch,
                                paged.IsEmpty() ? nullptr : &paged[paged.GetCount() - 1], 3, paged) > 0)
        {
        }
        ASSERT_EQ(paged.GetCount(), test.nCount) << test.pszSearch;
        for (int i = 0; i < paged.GetCount(); ++i)
            EXPECT_EQ(paged[i].strID, rows[i].strID) << test.pszSearch;
        EXPECT_EQ(patients.GetCount(test.nBy, test.pszSearch), test.nCount) << test.pszSearch;
    }
}

TEST_F(Patient, BalanceDecidesOnDeletion)
{
    dbCPatient patient = NewPatient("A1");
    EXPECT_EQ(ErrorOf([&] { patient.SetBalance(5); }), dbErrNotFound);
    patient.Save();
    EXPECT_TRUE(patient.CanDeletePatient());
    for (const int nBalance : {-1, 0})
    {
        patient.SetBalance(nBalance);
        EXPECT_EQ(patient.CanDeletePatient(), nBalance == 0);
    }
}

TEST_F(Patient, AtMostAHundredTimepoints)
{
    dbCPatient patient = NewPatient("A1");
    for (int i = 0; i < 100; ++i)
        ASSERT_EQ(patient.GetTimepoints().Add(&patient, dbCTimepoint(), TRUE, FALSE), 0);
    EXPECT_EQ(patient.GetTimepoints().Add(&patient, dbCTimepoint(), TRUE, FALSE), 1993);
    EXPECT_EQ(patient.GetTimepoints().GetCount(), 100);
    EXPECT_EQ(patient.PasteTimepoint(dbCTimepoint()), 1993);
    patient.GetTimepoints().RemoveAt(42);
    EXPECT_EQ(patient.GetTimepoints().Add(&patient, dbCTimepoint(), TRUE, FALSE), 0);
    EXPECT_EQ(patient.GetTimepoints()[99].GetBaseFilename(), "A142");
    patient.Save();
}

TEST_F(Patient, PastedTimepointTakesTheNumberOfItsBaseName)
{
    dbCPatient source = FullPatient("S1"), target = FullPatient("T1");
    patCTimepoint timepoint;
    EXPECT_FALSE(source.CopyTimepoint(3, timepoint));
    ASSERT_TRUE(source.CopyTimepoint(1, timepoint));
    timepoint.SetBaseFilename("T101");
    EXPECT_EQ(target.PasteTimepoint(timepoint), dbCPatient::PASTE_NUMBER_TAKEN);
    timepoint.SetBaseFilename("T1XY");
    EXPECT_EQ(target.PasteTimepoint(timepoint), dbCPatient::PASTE_NUMBER_TAKEN);
    timepoint.SetBaseFilename("T107");
    EXPECT_EQ(target.PasteTimepoint(timepoint), 0);
    target.Save();
    source.Save();
    dbCPatient loaded = Loaded("T1");
    ASSERT_EQ(loaded.GetTimepoints().GetCount(), 4);
    EXPECT_EQ(loaded.GetTimepoints()[3].GetBaseFilename(), "T107");
    patCTimepoint pasted = timepoint, expected = timepoint;
    ASSERT_TRUE(loaded.CopyTimepoint(3, pasted));
    EXPECT_NE(pasted.GettpID(), timepoint.GettpID());
    expected.SettpID(pasted.GettpID());
    const auto imageOf = [](const patCTimepoint& one) {
        dbCPatient patient;
        patient.GetTimepoints().Add(one);
        return Image(patient);
    };
    EXPECT_EQ(imageOf(pasted), imageOf(expected));
    // Adding one again gives it number and GUID of its own, where asked for.
    EXPECT_EQ(loaded.GetTimepoints().Add(&loaded, timepoint, TRUE, TRUE), 0);
    EXPECT_EQ(loaded.GetTimepoints().Add(&loaded, patCTimepoint(), FALSE, FALSE), 0);
    EXPECT_EQ(loaded.GetTimepoints()[4].GetBaseFilename(), "T103");
    EXPECT_NE(loaded.GetTimepoints()[4].GettpID(), timepoint.GettpID());
    EXPECT_TRUE(dbCPatients::IsGUID(loaded.GetTimepoints()[5].GettpID()));
    EXPECT_EQ(loaded.GetReferrals().AddReferralDoc("", velCDate()), -1);
    EXPECT_EQ(dbCPhone::GetTypeName(-1) + dbCPhone::GetTypeName(dbCPhone::GetTypeCount()), "");
}

TEST(PatientFields, NamesAreShownTidiedAndBirthDatesHaveLimits)
{
    patCPatient patient;
    patient.SetLastname("  de \t la\r\nCruz ");
    EXPECT_EQ(patient.GetLastname(1), "de la Cruz");
    const velCDate today = velCDate::Today();
    velCDate invalid;
    invalid.SetStatus(COleDateTime::invalid);
    EXPECT_TRUE(patCPatients::IsDOBValid(velCDate(), FALSE));
    EXPECT_TRUE(patCPatients::IsDOBValid(today, FALSE));
    EXPECT_TRUE(patCPatients::IsDOBValid(velCDate(1850, 1, 1), FALSE));
    EXPECT_FALSE(patCPatients::IsDOBValid(velCDate(1849, 12, 31), FALSE));
    EXPECT_FALSE(patCPatients::IsDOBValid(today + COleDateTimeSpan(1, 0, 0, 0), FALSE));
    EXPECT_FALSE(patCPatients::IsDOBValid(invalid, FALSE));
}
} // namespace
