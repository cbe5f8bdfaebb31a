// What the archive dialog offers where the settings decide; choicedialog_test.cpp looks at the dialog itself.
#include "archive/dialogs/archivechoices.h"

#include <gtest/gtest.h>

namespace
{
using arc::ArchiveSituation;

TEST(ArchiveOffer, GettingNeedsTheSettingOrPracticeManagementOrTheViewer)
{
    for (int allow = -1; allow <= 4; ++allow)
    {
        for (const bool practice : {false, true})
        {
            for (const bool viewer : {false, true})
            {
                ArchiveSituation situation;
                situation.allowPatientChanges = allow;
                situation.practiceManagement = practice;
                situation.viewerEdition = viewer;
                const arc::ArchiveOffer offer = arc::OfferFor(situation);
                const bool expected = allow == 1 || allow == 3 || practice || viewer;
                EXPECT_EQ(expected, offer.getFromArchive) << allow << practice << viewer;
                EXPECT_EQ(expected, offer.getFromInternet) << allow << practice << viewer;
                EXPECT_EQ(arc::ArchiveRadio::GetFromArchive, offer.selected); // disabled or not
            }
        }
    }
}

TEST(ArchiveOffer, MergingNeedsOneStoredPatientThatMayBeChanged)
{
    const struct
    {
        const char* what;
        ArchiveSituation situation;
        bool merge;
    } cases[] = {
        {"all given", {ARCHIVE_OP_MERGE, true, 1, 1, false, false}, true},
        {"any nonzero setting", {ARCHIVE_OP_MERGE, true, 1, 2, false, false}, true},
        {"patient not stored", {ARCHIVE_OP_MERGE, false, 1, 1, false, false}, false},
        {"no patient selected", {ARCHIVE_OP_MERGE, true, 0, 1, false, false}, false},
        {"two patients selected", {ARCHIVE_OP_MERGE, true, 2, 1, false, false}, false},
        {"changes not allowed", {ARCHIVE_OP_MERGE, true, 1, 0, true, false}, false},
        {"viewer edition", {ARCHIVE_OP_MERGE, true, 1, 1, false, true}, false},
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.merge, arc::OfferFor(c.situation).mergeTimepoints) << c.what;
}
} // namespace
