// Header lines: what is accepted is within its bounds and survives being written.
#include "archive/files/headerline.h"
#include "fuzz/check.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto header = arc::ParseHeaderLine({reinterpret_cast<const char*>(data), size});
    if (header)
    {
        Check(header->lastName.size() <= arc::HeaderFieldLength &&
              header->firstName.size() <= arc::HeaderFieldLength &&
              header->id.size() <= arc::HeaderFieldLength && !header->id.empty());
        Check(arc::ParseHeaderLine(arc::WriteHeaderLine(*header)) == header);
    }
    return 0;
}
