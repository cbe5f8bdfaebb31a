#include "cloud/net/serviceoptions.h"

#include "suite/patients/records/dbappoptions.h"
#include "suite/util/velini.h"

CString velServiceOption(LPCTSTR pszKey, LPCTSTR pszDefault)
{
    CString strValue;
    if (dbCApplicationOptionsContainer::GetApplicationOption(pszKey, strValue) == 0)
        return strValue;
    dbCApplicationOptionsContainer::SetApplicationOption(pszKey, pszDefault);
    return pszDefault;
}

CString velServiceHost()
{
    return velServiceOption("RASKOTARGET", velenv("RASKOTARGET", "localhost"));
}

CString velCommandScript()
{
    return velServiceOption("RASKOCOMMAND", "/beta/upload/veltrixserver.asp");
}

CString velUploadScript()
{
    return velServiceOption("RASKOUPLOAD", "/beta/upload/veltrixupload.asp");
}
