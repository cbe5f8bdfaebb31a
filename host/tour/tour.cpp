#include "host/tour/tour.h"

#include "host/hostres.h"
#include "tests/support/picture.h"

#include <commctrl.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <exception>

namespace
{

constexpr UINT_PTR kSubclass = 0x544F5552;
const UINT kRunMessage = ::RegisterWindowMessage("VelTourRun");

struct Work
{
    const std::function<void()>* work;
    std::exception_ptr failure;
};

LRESULT CALLBACK OnTourMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR)
{
    if (message == kRunMessage)
    {
        auto* work = reinterpret_cast<Work*>(lParam);
        try
        {
            (*work->work)();
        }
        catch (CException* thrown)
        {
            char text[512] = {};
            thrown->GetErrorMessage(text, sizeof text);
            thrown->Delete();
            work->failure = std::make_exception_ptr(veltest::ScriptFailure(text));
        }
        catch (...)
        {
            work->failure = std::current_exception();
        }
        return 0;
    }
    return ::DefSubclassProc(window, message, wParam, lParam);
}

std::string MenuText(HMENU menu, UINT position)
{
    char text[256] = {};
    ::GetMenuString(menu, position, text, sizeof text, MF_BYPOSITION);
    return text;
}

char AccessKey(const std::string& text)
{
    const std::size_t mark = text.find('&');
    return mark == std::string::npos || mark + 1 >= text.size()
               ? '\0'
               : static_cast<char>(std::tolower(static_cast<unsigned char>(text[mark + 1])));
}

} // namespace

void tourAttach(HWND frame)
{
    ::SetWindowSubclass(frame, OnTourMessage, kSubclass, 0);
}

tourCGuide::tourCGuide(veltest::DialogScript& script, HWND frame) : m_script(script), m_frame(frame)
{
    NewEvents();
}

void tourCGuide::Print(const std::string& line)
{
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
}

void tourCGuide::BeginStep(const std::string& title)
{
    Print(std::to_string(++m_step) + ". " + title);
}

void tourCGuide::Expect(bool holds, const std::string& what)
{
    Print((holds ? "   ok       " : "   DIFFERS  ") + what);
    m_failures += holds ? 0 : 1;
}

void tourCGuide::ExpectText(const std::string& what, const std::string& expected, const std::string& found)
{
    Expect(expected == found, what + ": " + found + (expected == found ? "" : " (expected: " + expected + ")"));
}

void tourCGuide::OnUi(const std::function<void()>& work)
{
    Work message = {&work, nullptr};
    ::SendMessage(m_frame, kRunMessage, 0, reinterpret_cast<LPARAM>(&message));
    if (message.failure)
    {
        std::rethrow_exception(message.failure);
    }
}

veltest::Control tourCGuide::Child(int id)
{
    return {m_script, ::GetDlgItem(m_frame, id)};
}

tourCGuide::MenuPlace tourCGuide::FindCommand(int command) const
{
    const HMENU bar = ::GetMenu(m_frame);
    for (int index = 0; index < ::GetMenuItemCount(bar); ++index)
    {
        const HMENU popup = ::GetSubMenu(bar, index);
        for (int position = 0; position < ::GetMenuItemCount(popup); ++position)
        {
            if (::GetMenuItemID(popup, position) == static_cast<UINT>(command))
            {
                return {popup, index, MenuText(bar, static_cast<UINT>(index)),
                        MenuText(popup, static_cast<UINT>(position))};
            }
        }
    }
    throw veltest::ScriptFailure("no menu has command " + std::to_string(command));
}

void tourCGuide::Choose(int command)
{
    const MenuPlace place = FindCommand(command);
    const std::string item = veltest::WithoutAccessKeys(place.item.substr(0, place.item.find('\t')));
    Print("   menu     " + veltest::WithoutAccessKeys(place.title) + " > " + item);
    ::PostMessage(m_frame, WM_SYSCOMMAND, SC_KEYMENU, AccessKey(place.title));
    m_script.WaitForMenu();
    m_script.ChooseMenuItem(place.item);
}

bool tourCGuide::IsGreyed(int command)
{
    const MenuPlace place = FindCommand(command);
    OnUi([&] { ::SendMessage(m_frame, WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(place.popup), place.index); });
    return (::GetMenuState(place.popup, static_cast<UINT>(command), MF_BYCOMMAND) & (MF_GRAYED | MF_DISABLED)) != 0;
}

void tourCGuide::ExpectResult(const std::string& expected)
{
    m_script.WaitUntil("the main window", [&] { return ::IsWindowEnabled(m_frame) != FALSE; });
    m_script.Settle(m_frame);
    char text[256] = {};
    OnUi([&] { ::SendDlgItemMessage(m_frame, IDC_STATUSBAR, SB_GETTEXT, 0, reinterpret_cast<LPARAM>(text)); });
    ExpectText("result", expected, text);
}

std::vector<dbSAuditEvent> tourCGuide::NewEvents()
{
    std::vector<dbSAuditEvent> news;
    OnUi(
        [&]
        {
            dbTList<dbSAuditEvent> events;
            CVeltrixLogin::LoadEvents(events, 100);
            for (const dbSAuditEvent& event : events)
            {
                if (event.nID > m_lastEvent)
                {
                    news.push_back(event);
                }
            }
            m_lastEvent = events.IsEmpty() ? m_lastEvent : events[0].nID;
        });
    return news;
}

void tourCGuide::ExpectNoEvent()
{
    const std::vector<dbSAuditEvent> events = NewEvents();
    Expect(events.empty(), events.empty() ? "no audit event" : "audit event: " + std::string(events[0].strText));
}

void tourCGuide::ExpectEvent(dbAuditKind kind, const std::string& text)
{
    const std::vector<dbSAuditEvent> events = NewEvents();
    const bool one = events.size() == 1;
    Expect(one, std::to_string(events.size()) + " audit event");
    if (one)
    {
        Expect(events[0].nKind == kind, "audit kind " + std::to_string(events[0].nKind));
        ExpectText("audit event", text, events[0].strText.GetString());
        Expect(!events[0].strPatientGUID.IsEmpty() && !events[0].strUser.IsEmpty() && events[0].dateTime.IsValid(),
               "audit event names patient, user and time");
    }
}

void tourCGuide::ExpectEvents(const std::vector<Event>& expected)
{
    const std::vector<dbSAuditEvent> events = NewEvents();
    Expect(events.size() == expected.size(), "audit events: " + std::to_string(events.size()));
    for (std::size_t index = 0; index < std::min(events.size(), expected.size()); ++index)
    {
        // Newest first in the log.
        const dbSAuditEvent& event = events[events.size() - 1 - index];
        ExpectText("audit event", std::to_string(expected[index].kind) + " " + expected[index].text,
                   std::to_string(event.nKind) + " " + event.strText.GetString());
    }
}

void tourCGuide::PracticeChanged()
{
    m_lastEvent = 0;
    NewEvents();
}

void tourCGuide::WaitForThumbnails()
{
    m_script.WaitUntil("the thumbnails",
                       [&]
                       {
                           // Image 0 is the empty frame that stands until the file has been read.
                           int missing = 0;
                           OnUi(
                               [&]
                               {
                                   const HWND list = ::GetDlgItem(m_frame, IDC_IMAGES);
                                   LVITEM item = {};
                                   item.mask = LVIF_IMAGE;
                                   for (; ::SendMessage(list, LVM_GETITEM, 0, reinterpret_cast<LPARAM>(&item)) != 0;
                                        ++item.iItem)
                                   {
                                       missing += item.iImage == 0;
                                   }
                               });
                           return missing == 0;
                       });
}

std::string tourCGuide::PictureName(const std::string& name)
{
    char number[8];
    std::snprintf(number, sizeof number, "%02d-", ++m_pictures);
    return number + name;
}

void tourCGuide::Picture(HWND window, const std::string& name)
{
    m_script.Settle(window);
    const std::string file = PictureName(name);
    Expect(veltest::SavePicture(window, file), "picture  " + file + ".png");
}

void tourCGuide::PagePictures(const veltest::Dialog& sheet, const std::string& name)
{
    const std::string file = PictureName(name);
    const int pages = veltest::SavePagePictures(m_script, sheet, file);
    Expect(pages == 5, "picture  " + file + "-1.png to -" + std::to_string(pages) + ".png");
}
