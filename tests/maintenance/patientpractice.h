#pragma once

#include "app/exports/veldlgs.h"
#include "app/settingscontainer.h"
#include "maintenance/maintenanceres.h"
#include "tests/patients/testdatabase.h"
#include "tests/support/dialogquality.h"
#include "tests/support/dialogscript.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

/// A practice with one patient, whose records a test changes through the module's dialogs.
class PatientPractice : public DatabaseTest
{
protected:
    using Dialog = veltest::Dialog;
    using DialogScript = veltest::DialogScript;
    using Script = std::function<void(DialogScript&, const Dialog&)>;

    struct Timepoint
    {
        std::string name;
        velCDate date;
    };

    ~PatientPractice() override
    {
        AllowPatientChanges(1);
    }

    /// The setting of this computer; 1 allows them.
    static void AllowPatientChanges(int allowed)
    {
        g_VelIniSettingContainer.m_nAllowPatientChanges = allowed;
    }

    std::vector<std::string> Sql(const std::string& sql) const
    {
        return database.Execute(sql.c_str());
    }

    static dbCPatient Store(const char* id, const char* first, const char* last,
                            const std::vector<Timepoint>& timepoints)
    {
        dbCPatient patient = NewPatient(id, last, first);
        patient.SetDate(velCDate(2023, 1, 2));
        for (const Timepoint& given : timepoints)
        {
            dbCTimepoint timepoint;
            timepoint.SetName(given.name.c_str());
            timepoint.SetDate(given.date);
            EXPECT_EQ(patient.GetTimepoints().Add(&patient, timepoint, TRUE, TRUE), 0);
        }
        return Saved(patient);
    }

    /// What is stored of a patient's treatments ("code description active"), and behind it the timepoints
    /// ("number name|date|treatment").
    static std::vector<std::string> Stored(const char* id = "A1")
    {
        const CString strGUID = Loaded(id).GetGUID();
        dbCPatientTreatmentStatusHistoryTable history;
        history.LoadByPatID(strGUID);
        dbCTimepointsContainer timepoints;
        timepoints.LoadByPatID(strGUID, 0);
        std::vector<std::string> lines;
        for (const auto& row : history)
            lines.push_back((row.GetNewCode() + " " + row.GetDescription()).GetString() +
                            (" " + std::to_string(row.GetActive())));
        for (const auto& row : timepoints)
        {
            lines.push_back(std::to_string(row.GetNumber()) + " " + row.GetDescription().GetString() + "|" +
                            row.GetDateTime().ToISO().GetString() + "|");
            for (const auto& treatment : history)
                if (!row.GetptshID().IsEmpty() && treatment.GetptshID() == row.GetptshID())
                    lines.back() += treatment.GetDescription().GetString();
        }
        return lines;
    }

    /// The field for a timepoint's name; to be typed into as a person does.
    static veltest::Control NamesOf(const Dialog& dialog)
    {
        return dialog.Item(dialog.Has(IDC_NEWTP_NAMES) ? IDC_NEWTP_NAMES : IDC_RENAME_NAMES);
    }
    static void Type(const Dialog& dialog, const std::string& name)
    {
        NamesOf(dialog).SetText(name);
        NamesOf(dialog).Notify(CBN_EDITCHANGE);
        dialog.SettleIdle();
    }

    static bool IsEnabled(const Dialog& dialog, int control)
    {
        dialog.SettleIdle();
        return dialog.Item(control).IsEnabled();
    }

    /// An OK that comes before its button is disabled.
    static void PostOK(DialogScript& script, const Dialog& dialog)
    {
        PostMessageA(dialog.Handle(), WM_COMMAND, IDOK, reinterpret_cast<LPARAM>(dialog.Item(IDOK).Handle()));
        script.Settle(dialog.Handle());
    }

    /// Presses OK, answers the question with Yes or No and returns it.
    std::string Ask(DialogScript& script, const Dialog& dialog, int answer) const
    {
        dialog.SettleIdle();
        dialog.Press(IDOK);
        const Dialog box = script.WaitForBox();
        EXPECT_EQ(box.Title(), m_caption);
        EXPECT_THAT(box.Buttons(), testing::ElementsAre("Yes", "No"));
        EXPECT_EQ(box.DefaultButton(), m_defaultAnswer);
        return script.AnswerBox("", answer);
    }

    /// What was asked for fails: the user is told, and the dialog stays.
    static void ExpectRecordFailure(DialogScript& script, const Dialog& dialog)
    {
        EXPECT_THAT(script.AnswerBox("", IDOK),
                    testing::StartsWith("The patient's records could not be read or written."));
        EXPECT_TRUE(dialog.IsOpen());
    }

    dbCPatient m_patient =
        Store("A1", "Ann", "Lee", {{"Start", velCDate(2024, 3, 4)}, {"Recall", velCDate(2025, 5, 6)}});
    std::string m_caption = "Veltrix";
    std::string m_defaultAnswer = "Yes";
};
