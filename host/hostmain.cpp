#include "host/hostapp.h"

namespace
{

hostCApp theApp;

} // namespace
