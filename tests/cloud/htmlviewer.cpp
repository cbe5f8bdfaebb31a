// Takes the place of the system's library of the HTML dialog for a test that loads it first: what it is asked
// to show is the test's to answer.
#include <windows.h>

#include <mshtmhst.h>

extern "C"
{
    __declspec(dllexport) SHOWHTMLDIALOGFN* showInTest = nullptr;

    __declspec(dllexport) HRESULT WINAPI
        ShowHTMLDialog(HWND parent, IMoniker* page, VARIANT* argument, WCHAR* options, VARIANT* result)
    {
        return showInTest(parent, page, argument, options, result);
    }
}
