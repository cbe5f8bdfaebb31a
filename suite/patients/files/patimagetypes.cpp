#include "suite/patients/files/patimagetypes.h"

#include <array>
#include <span>

namespace
{
constexpr patSImageType FACE[] = {{'A', "Profile"},
                                  {'B', "Frontal"},
                                  {'C', "Frontal Smile"},
                                  {'D', "Three-Quarter"},
                                  {'E', "Three-Quarter Smile"},
                                  {'F', "Profile Left"}};
constexpr patSImageType INTRAORAL[] = {{'A', "Right Buccal"},   {'B', "Frontal Occlusion"},
                                       {'C', "Left Buccal"},    {'D', "Upper Occlusal"},
                                       {'E', "Lower Occlusal"}, {'F', "Overjet"}};
constexpr patSImageType XRAY[] = {{'A', "Lateral Ceph"}, {'B', "Frontal Ceph"}, {'C', "Panoramic"},
                                  {'D', "Wrist"},        {'E', "TMJ Left"},     {'F', "TMJ Right"}};
constexpr patSImageType PERIAPICAL[] = {{'A', "Upper Right"},    {'B', "Upper Front"},  {'C', "Upper Left"},
                                        {'D', "Lower Right"},    {'E', "Lower Front"},  {'F', "Lower Left"},
                                        {'G', "Bitewing Right"}, {'H', "Bitewing Left"}};
constexpr patSImageType TREATMENT[] = {
    {'0', "Simulation"}, {'1', "Growth Forecast"}, {'2', "Superimposition"}};
constexpr patSImageType MODEL[] = {{'A', "Model Right"},
                                   {'B', "Model Front"},
                                   {'C', "Model Left"},
                                   {'D', "Model Upper"},
                                   {'E', "Model Lower"}};
constexpr patSImageType DOCUMENT[] = {{'A', "Letter"}, {'B', "Form"}, {'C', "Report"}, {'D', "Consent"}};
constexpr patSImageType OTHER[] = {{'A', "Other 1"}, {'B', "Other 2"}, {'C', "Other 3"}, {'D', "Other 4"},
                                   {'E', "Other 5"}, {'F', "Other 6"}, {'G', "Other 7"}, {'H', "Other 8"}};

struct Group
{
    const char* pszTitle;
    std::span<const patSImageType> types;
};

const std::array<Group, patCImageTypes::GROUP_COUNT> GROUPS = {{{"Face", FACE},
                                                                {"Intraoral", INTRAORAL},
                                                                {"X-ray", XRAY},
                                                                {"Periapical", PERIAPICAL},
                                                                {"Treatment Simulation", TREATMENT},
                                                                {"Model", MODEL},
                                                                {"Document", DOCUMENT},
                                                                {"Other", OTHER}}};

const Group* GroupAt(int nGroup)
{
    return nGroup >= 0 && nGroup < patCImageTypes::GROUP_COUNT ? &GROUPS[static_cast<size_t>(nGroup)]
                                                               : nullptr;
}
} // namespace

const char* patCImageTypes::GetGroupTitle(int nGroup)
{
    const Group* pGroup = GroupAt(nGroup);
    return pGroup ? pGroup->pszTitle : "";
}

int patCImageTypes::GetTypeCount(int nGroup)
{
    const Group* pGroup = GroupAt(nGroup);
    return pGroup ? static_cast<int>(pGroup->types.size()) : 0;
}

const patSImageType& patCImageTypes::GetType(int nGroup, int nType)
{
    const Group* pGroup = GroupAt(nGroup);
    if (!pGroup || nType < 0 || nType >= static_cast<int>(pGroup->types.size()))
        AfxThrowInvalidArgException();
    return pGroup->types[static_cast<size_t>(nType)];
}

int patCImageTypes::FindType(int nGroup, char chCode)
{
    if (chCode >= 'a' && chCode <= 'z')
        chCode = static_cast<char>(chCode - 'a' + 'A');
    const int nCount = GetTypeCount(nGroup);
    for (int i = 0; i < nCount; ++i)
        if (GetType(nGroup, i).chCode == chCode)
            return i;
    return -1;
}
