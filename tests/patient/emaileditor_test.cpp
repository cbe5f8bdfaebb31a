#include "patient/emaileditor.h"

#include "app/modalrun.h"
#include "patient/detailsres.h"
#include "tests/support/dialogquality.h"
#include "tests/support/dialogscript.h"
#include "tests/support/picture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using testing::ElementsAre;
using veltest::Dialog;
using veltest::DialogScript;

TEST(EmailEditor, AddsChangesRemovesAndLosesNothing)
{
    velCDlgEditEmails editor({"ida@example.org", "sorel@example.org"}, nullptr);
    const auto result = veltest::RunModal(
        [&] { return velRunModal(editor); },
        [](DialogScript& script) {
            const Dialog dialog = script.WaitForDialog("E-mail Addresses");
            EXPECT_EQ(veltest::DialogFindings(dialog.Handle()), "");
            EXPECT_TRUE(veltest::SavePicture(dialog.Handle(), "edit-emails"));
            const auto field = dialog.Item(IDC_EMAIL_ADDRESS);
            const auto list = dialog.Item(IDC_EMAIL_LIST);
            const auto press = [&](int button) {
                dialog.SettleIdle();
                dialog.Press(button);
                script.Settle(dialog.Handle());
            };
            const auto refuse = [&](int button, const char* text) {
                press(button);
                script.AnswerBox(text, IDOK);
                script.WaitUntil("the editor is usable again", [&] { return dialog.IsEnabled(); });
                EXPECT_TRUE(field.HasFocus());
            };
            dialog.SettleIdle();
            for (const int button : {IDC_EMAIL_ADD, IDC_EMAIL_CHANGE, IDC_EMAIL_REMOVE, IDC_EMAIL_FIRST})
                EXPECT_FALSE(dialog.Item(button).IsEnabled()) << button;
            EXPECT_EQ(field.Send(EM_GETLIMITTEXT), 60);
            field.Type("ida");
            refuse(IDC_EMAIL_ADD, "Please enter the e-mail address in full, for example name@practice.com.");
            refuse(IDOK,
                   "The address being entered is not in the list yet. Press Add or Change to take it over, "
                   "or empty the field to drop it.");
            field.Replace("IDA@example.org");
            refuse(IDC_EMAIL_ADD, "IDA@example.org is already listed.");

            const char question[] =
                "What stands in the fields has not been added to the list. Do you want to drop it?";
            list.Choose(1);
            script.AnswerBox(question, IDNO);
            script.Settle(dialog.Handle());
            EXPECT_EQ(field.Text(), "IDA@example.org");
            EXPECT_EQ(list.Selection(), -1);
            list.Choose(1);
            script.AnswerBox(question, IDYES);
            script.Settle(dialog.Handle());
            EXPECT_EQ(field.Text(), "sorel@example.org");

            field.Replace("s@example.org");
            press(IDC_EMAIL_CHANGE);
            field.Type("new@example.org");
            press(IDC_EMAIL_ADD);
            EXPECT_THAT(list.Items(), ElementsAre("ida@example.org", "s@example.org", "new@example.org"));
            list.Choose(2);
            field.Replace("newer@example.org");
            press(IDC_EMAIL_FIRST);
            EXPECT_EQ(list.Selection(), 0);
            press(IDC_EMAIL_CHANGE);
            list.Choose(1);
            press(IDC_EMAIL_REMOVE);
            EXPECT_EQ(field.Text(), "");
            dialog.Press(IDOK);
        });
    EXPECT_EQ(result, IDOK);
    EXPECT_THAT(editor.GetEmails(), ElementsAre("newer@example.org", "s@example.org"));
}

} // namespace
