#include "afxcoll.h"

IMPLEMENT_DYNAMIC(CStringArray, CObject)
