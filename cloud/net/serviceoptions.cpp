#include "cloud/net/serviceoptions.h"

#include "suite/patients/records/dbappoptions.h"
#include "suite/rasko/raskoapi.h"
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
    return velServiceOption(rasko::OptionService, velenv(rasko::OptionService, rasko::DefaultService));
}

CString velCommandScript()
{
    return velServiceOption("RASKOCOMMAND", "/beta/upload/veltrixserver.asp");
}

CString velUploadScript()
{
    return velServiceOption("RASKOUPLOAD", "/beta/upload/veltrixupload.asp");
}
