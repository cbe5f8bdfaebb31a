#pragma once

#include "suite/patients/store/patdefs.h"

/// One image type: the character that ends its files' extension and its name for users.
struct patSImageType
{
    char chCode;          ///< third character of the extension, as in ".I2A"
    const char* pszTitle; ///< for example "Profile"
};

/// The image groups and types. Bit k of a timepoint's word for group g says that it holds an image of type k.
class VELPAT_API patCImageTypes
{
public:
    enum : int
    {
        GROUP_COUNT = 8
    };

    /// Name of a group, 0 to 7, for users.
    static const char* GetGroupTitle(int nGroup);

    /// Number of types in a group, at most 32; 0 for a group that does not exist.
    static int GetTypeCount(int nGroup);

    /// A type of a group, both from 0 and valid.
    static const patSImageType& GetType(int nGroup, int nType);

    /// The index of the type with this character (any letter case), -1 when the group has none.
    static int FindType(int nGroup, char chCode);
};
