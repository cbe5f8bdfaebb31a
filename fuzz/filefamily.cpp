// Names of files in the working folder: whoever may own one, moving it to another ID keeps what it is.
#include "fuzz/check.h"
#include "suite/patients/files/filefamily.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view name(reinterpret_cast<const char*>(data), size);
    for (const std::string_view owner : pat::PossibleOwners(name))
    {
        const auto identity = pat::IdentifyFile(name, owner);
        Check(identity && name.starts_with(owner) && identity->timepoint >= -1 && identity->timepoint < 100);
        const std::string moved = pat::MovedFileName(name, owner, "B-9");
        Check(pat::IdentifyFile(moved, "B-9") == identity);
        Check(pat::MovedFileName(moved, "b-9", owner) == name);
        const auto renumbered = pat::IdentifyFile(pat::MovedFileName(name, owner, "B-9", 42), "B-9");
        Check(renumbered && renumbered->kind == identity->kind &&
              renumbered->timepoint == (identity->timepoint < 0 ? -1 : 42));
    }
    return 0;
}
