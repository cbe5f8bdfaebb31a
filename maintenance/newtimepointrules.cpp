#include "maintenance/newtimepointrules.h"

namespace maint
{

int FirstTreatment(int count)
{
    return count > 2 ? count - 3 : count - 1;
}

int MovedIndex(int index, int step, int count)
{
    const int moved = index + step;
    return moved < 0 || moved >= count ? index : moved;
}

} // namespace maint
