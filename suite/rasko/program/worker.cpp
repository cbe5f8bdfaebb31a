#include "suite/rasko/program/worker.h"

#include "suite/rasko/program/wininetchannel.h"
#include "suite/rasko/transfer/texts.h"

namespace
{
rasko::Outcome Carry(const rasko::Task& task, const rasko::Connection& connection,
                     const rasko::Folders& folders, const rasko::ProgressReceiver& progress)
{
    try
    {
        rasko::WinInetChannel channel(connection.target);
        rasko::ServiceClient client(channel, connection.scripts, connection.credentials, connection.west);
        return RunTask(task, client, folders, progress);
    }
    catch (const std::exception& error)
    {
        return {rasko::Outcome::Waiting, rasko::text::Fill(rasko::text::NoAnswer, error.what())};
    }
}
} // namespace

namespace rasko
{
Worker::~Worker()
{
    Stop();
    if (m_thread.joinable())
        m_thread.join();
}

void Worker::Start(Task task, Connection connection, Folders folders)
{
    m_stop = false;
    m_told = false;
    m_progress = {};
    m_thread = std::thread([this, task = std::move(task), connection = std::move(connection),
                            folders = std::move(folders)]() mutable {
        const Outcome outcome = Carry(task, connection, folders, [this](const Progress& progress) {
            const std::lock_guard lock(m_mutex);
            m_progress = progress;
            if (!m_told)
                m_told = PostMessage(m_window, MessageProgress, 0, 0) != FALSE;
            return !m_stop;
        });
        {
            const std::lock_guard lock(m_mutex);
            m_outcome = outcome;
        }
        PostMessage(m_window, MessageDone, 0, 0);
    });
}

Progress Worker::TakeProgress()
{
    const std::lock_guard lock(m_mutex);
    m_told = false;
    return m_progress;
}

Outcome Worker::TakeOutcome()
{
    if (m_thread.joinable())
        m_thread.join();
    return m_outcome;
}
} // namespace rasko
