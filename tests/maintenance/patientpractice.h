#pragma once

#include "app/exports/veldlgs.h"
#include "app/settingscontainer.h"
#include "suite/patients/velpat.h"
#include "tests/support/dialogquality.h"
#include "tests/support/dialogscript.h"
#include "tests/support/picture.h"
#include "tests/support/temporarypractice.h"

#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

/// Whether patients may be changed on this computer (1 yes), for the time of a test.
class PatientChanges
{
public:
    explicit PatientChanges(int allowed)
        : m_before(std::exchange(g_VelIniSettingContainer.m_nAllowPatientChanges, allowed))
    {
    }
    ~PatientChanges()
    {
        g_VelIniSettingContainer.m_nAllowPatientChanges = m_before;
    }
    PatientChanges(const PatientChanges&) = delete;
    PatientChanges& operator=(const PatientChanges&) = delete;

private:
    const int m_before;
};

/// A practice with one patient, whose records a test changes through the module's dialogs.
class PatientPractice : public testing::Test
{
protected:
    struct Timepoint
    {
        std::string name;
        velCDate date;
    };

    void SetUp() override
    {
        m_practice.Set("Environment", "DatabaseTimeout", "500"); // milliseconds
        dbCPatients::Create(DatabasePath().c_str());
        m_patient =
            Store("A1", "Ann", "Lee", {{"Start", velCDate(2024, 3, 4)}, {"Recall", velCDate(2025, 5, 6)}});
    }
    void TearDown() override
    {
        dbCPatients::Close();
    }

    std::string DatabasePath() const
    {
        return m_practice.Path("patients.db");
    }

    static dbCPatient Store(const char* id, const char* first, const char* last,
                            const std::vector<Timepoint>& timepoints)
    {
        dbCPatient patient;
        patient.SetID(id);
        patient.SetFirstname(first);
        patient.SetLastname(last);
        patient.SetDate(velCDate(2023, 1, 2));
        for (const Timepoint& given : timepoints)
        {
            dbCTimepoint timepoint;
            timepoint.SetName(given.name.c_str());
            timepoint.SetDate(given.date);
            EXPECT_EQ(patient.GetTimepoints().Add(&patient, timepoint, TRUE, TRUE), 0);
        }
        patient.Save();
        return patient;
    }

    veltest::TemporaryPractice m_practice;
    dbCPatient m_patient;
};
