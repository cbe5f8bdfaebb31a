// What the archive dialog offers; choicedialog_test.cpp looks at the dialog itself.
#include "archive/dialogs/archivechoices.h"

#include <gtest/gtest.h>

#include <string>

TEST(ArchiveOffer, DependsOnThePatientTheSettingAndTheEdition)
{
    using enum arc::ArchiveRadio;
    const struct
    {
        arc::ArchiveSituation
            situation;       // operation, stored patient, number selected, setting, practice, viewer
        std::string enabled; // of the five buttons, in the order of the group
        arc::ArchiveRadio selected;
    } cases[] = {
        {{ARCHIVE_OP_SAVE, false, 0, 1, false, false}, "10010", GetFromArchive},
        {{ARCHIVE_OP_LOAD, true, 1, 1, false, false}, "11111", GetFromArchive},
        {{ARCHIVE_OP_SAVE, true, 1, 1, false, false}, "11111", SaveToArchive},
        {{ARCHIVE_OP_MERGE, true, 1, 1, false, false}, "11111", MergeTimepoints},
        {{ARCHIVE_OP_UPLOAD, true, 1, 1, false, false}, "11111", None},
        {{ARCHIVE_OP_DOWNLOAD, false, 0, 1, false, false}, "10010", None},
        // Merging needs one selected, stored patient that may be changed.
        {{ARCHIVE_OP_MERGE, true, 0, 1, false, false}, "11011", GetFromArchive},
        {{ARCHIVE_OP_MERGE, true, 2, 1, false, false}, "11011", GetFromArchive},
        {{ARCHIVE_OP_MERGE, false, 1, 1, false, false}, "10010", GetFromArchive},
        {{ARCHIVE_OP_MERGE, true, 1, 1, false, true}, "11011", GetFromArchive},
        // Getting needs the setting, practice management or the viewer; it is selected though disabled.
        {{ARCHIVE_OP_LOAD, true, 1, -1, false, false}, "01101", GetFromArchive},
        {{ARCHIVE_OP_LOAD, true, 1, 0, false, false}, "01001", GetFromArchive},
        {{ARCHIVE_OP_MERGE, true, 1, 2, false, false}, "01101", MergeTimepoints},
        {{ARCHIVE_OP_LOAD, true, 1, 3, false, false}, "11111", GetFromArchive},
        {{ARCHIVE_OP_LOAD, true, 1, 4, false, false}, "01101", GetFromArchive},
        {{ARCHIVE_OP_LOAD, true, 1, 0, true, false}, "11011", GetFromArchive},
        {{ARCHIVE_OP_LOAD, true, 1, 0, false, true}, "11011", GetFromArchive},
    };
    for (const auto& c : cases)
    {
        const arc::ArchiveOffer offer = arc::OfferFor(c.situation);
        std::string enabled;
        for (const auto radio :
             {GetFromArchive, SaveToArchive, MergeTimepoints, GetFromInternet, SaveToInternet})
            enabled += offer.IsEnabled(radio) ? '1' : '0';
        EXPECT_EQ(enabled, c.enabled) << &c - cases;
        EXPECT_EQ(offer.selected, c.selected) << &c - cases;
    }
}
