// What the archive dialog offers for each situation.
#include "archive/dialogs/archivechoices.h"

#include <gtest/gtest.h>

namespace
{
using arc::ArchiveRadio;
using arc::ArchiveSituation;

TEST(ArchiveRadio, InternetButtonsStandInTheOppositeOrderToTheirCodes)
{
    const struct
    {
        int radio;
        int operation;
    } cases[] = {{0, 0}, {1, 1}, {2, 2}, {3, 4}, {4, 3}};
    for (const auto& c : cases)
    {
        EXPECT_EQ(static_cast<ARCHIVE_OP>(c.operation),
                  arc::OperationOfRadio(static_cast<ArchiveRadio>(c.radio)));
        EXPECT_EQ(static_cast<ArchiveRadio>(c.radio),
                  arc::RadioOfOperation(static_cast<ARCHIVE_OP>(c.operation)));
    }
    EXPECT_FALSE(arc::OperationOfRadio(ArchiveRadio::None));
    EXPECT_EQ(ArchiveRadio::None, arc::RadioOfOperation(static_cast<ARCHIVE_OP>(5)));
}

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
            }
        }
    }
}

TEST(ArchiveOffer, SavingNeedsAStoredPatient)
{
    for (const bool valid : {false, true})
    {
        ArchiveSituation situation;
        situation.patientValid = valid;
        const arc::ArchiveOffer offer = arc::OfferFor(situation);
        EXPECT_EQ(valid, offer.saveToArchive);
        EXPECT_EQ(valid, offer.saveToInternet);
        EXPECT_EQ(valid, offer.includeViewer);
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

TEST(ArchiveOffer, PreselectsTheOperationOrGettingFromAnArchive)
{
    const struct
    {
        const char* what;
        ArchiveSituation situation;
        ArchiveRadio selected;
    } cases[] = {
        {"load", {ARCHIVE_OP_LOAD, true, 1, 1, false, false}, ArchiveRadio::GetFromArchive},
        {"save", {ARCHIVE_OP_SAVE, true, 1, 1, false, false}, ArchiveRadio::SaveToArchive},
        {"merge", {ARCHIVE_OP_MERGE, true, 1, 1, false, false}, ArchiveRadio::MergeTimepoints},
        {"save without patient", {ARCHIVE_OP_SAVE, false, 0, 1, false, false}, ArchiveRadio::GetFromArchive},
        {"merge with two", {ARCHIVE_OP_MERGE, true, 2, 1, false, false}, ArchiveRadio::GetFromArchive},
        {"load while getting is disabled",
         {ARCHIVE_OP_LOAD, true, 1, 0, false, false},
         ArchiveRadio::GetFromArchive},
        {"upload", {ARCHIVE_OP_UPLOAD, true, 1, 1, false, false}, ArchiveRadio::None},
        {"download", {ARCHIVE_OP_DOWNLOAD, true, 1, 1, false, false}, ArchiveRadio::None},
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.selected, arc::OfferFor(c.situation).selected) << c.what;
}
} // namespace
