// A regular DLL with an application object that does nothing: what load_bench measures the module against.
#include <afxwin.h>

namespace
{

class EmptyApp : public CWinApp
{
};

EmptyApp theApp;

} // namespace
