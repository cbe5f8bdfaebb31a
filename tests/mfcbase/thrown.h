// What a call throws, by the framework's rules: a pointer that the catcher deletes.
#pragma once

#include <afx.h>

#include <string>

namespace mfctest
{

// "CFileException 13": the class and, of a file's, the cause; empty when nothing is thrown.
template <class Call> std::string Thrown(Call call)
{
    std::string text;
    try
    {
        call();
    }
    catch (CException* e)
    {
        text = e->GetRuntimeClass()->m_lpszClassName;
        if (const auto* file = dynamic_cast<CFileException*>(e))
        {
            text += ' ' + std::to_string(file->m_cause);
        }
        e->Delete();
    }
    return text;
}

inline std::string FileError(int cause)
{
    return "CFileException " + std::to_string(cause);
}

} // namespace mfctest
