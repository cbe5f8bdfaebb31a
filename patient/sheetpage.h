// What the five pages of the patient information sheet have in common.
#pragma once

#include "patient/rules/sheetrules.h"
#include "suite/dialogs/mfcpropertypage.h"

class dbCPatient;
class patCChartSheet;
namespace pat
{
struct Finding;
}

/// One page of patCChartSheet. It belongs to the sheet as a member and lives on the host's user interface
/// thread. The first time it is shown it raises its flag in the sheet: a page without the flag has no window,
/// is neither checked nor copied, and contributes nothing to the record.
class patCSheetPage : public mfcCPropertyPage
{
public:
    patCSheetPage(patCChartSheet& sheet, UINT nIDTemplate, pat::Page nPage);

    /// Runs the page's own checks for the sheet's OK, on the values of the last UpdateData(TRUE). A failing
    /// check shows its message, if it has one, and moves the focus to the control at fault, with this page
    /// brought to the front. Returns true when the page passes.
    virtual bool Check();

    /// Copies the page's values into the record. Called only after every check of the sheet has passed,
    /// inside the sheet's database transaction. Throws dbCException* when the database fails.
    virtual void CopyTo(dbCPatient& patient);

protected:
    /// Tells the user what a check found: this page to the front, the message, the focus to the control at
    /// fault. Returns whether it passed.
    bool Report(const pat::Finding& finding);

    /// The checks for leaving the page: those of OK, unless a page stays as it is when it is left.
    virtual bool CheckOnLeaving();

    /// Raises the page's flag in the sheet.
    BOOL OnSetActive() override;
    /// Transfers the controls into the members and runs CheckOnLeaving(). The user stays on the page when
    /// either fails.
    BOOL OnKillActive() override;
    /// Opens the page's help topic.
    BOOL OnHelpKey(UINT nHelpID) override;

    patCChartSheet& m_sheet;

private:
    const pat::Page m_nPage;
};
