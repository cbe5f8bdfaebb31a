// The host's application object.
#pragma once

#include "host/commandline.h"
#include "host/hostsession.h"
#include "host/picture.h"

#include <afxwin.h>

#include <memory>
#include <string>
#include <vector>

class hostCFrame;

/// Starts the host: reads the command line, makes a practice if one was asked for, opens the main window on it. Owns
/// the session and, through the framework, the main window.
class hostCApp : public CWinApp
{
public:
    BOOL InitInstance() override;
    int ExitInstance() override;
    BOOL OnIdle(LONG count) override;

protected:
    /// The options to start with. FALSE, after a message, when the program is not to start.
    virtual BOOL ReadOptions(hostSOptions& options);

    /// The program's arguments without its name.
    static std::vector<std::string> GetArguments();

    hostCFrame* GetFrame() const
    {
        return m_frame;
    }

private:
    BOOL MakePractice(const hostSOptions& options);

    hostCSession m_session;
    std::unique_ptr<picCSession> m_drawing;
    hostCFrame* m_frame = nullptr; // deletes itself
};
