#include "tests/support/dialogquality.h"

#include "tests/support/picture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <set>
#include <utility>

namespace veltest
{

namespace
{

// Distances and sizes in dialog units that a dialog of this suite keeps to.
constexpr int smallestMargin = 6;
constexpr int buttonHeight = 14;
constexpr int smallestGap = 3;

enum class Kind
{
    text,
    picture,
    group,
    push,
    check,
    edit,
    combo,
    other
};

struct Part
{
    HWND window;
    Kind kind;
    RECT place; // client coordinates of the dialog
    std::string label;
    bool tabStop;
    const Part* group = nullptr; // the smallest group box around it
};

DWORD StyleOf(HWND window)
{
    return static_cast<DWORD>(GetWindowLongPtrA(window, GWL_STYLE));
}

Kind KindOf(HWND window)
{
    const std::string className = WindowClass(window);
    const auto is = [&](const char* name) { return _stricmp(className.c_str(), name) == 0; };
    const DWORD style = StyleOf(window);
    if (is("static"))
    {
        const DWORD type = style & SS_TYPEMASK;
        return type <= SS_RIGHT || type == SS_SIMPLE || type == SS_LEFTNOWORDWRAP ? Kind::text
                                                                                  : Kind::picture;
    }
    if (is("button"))
    {
        const DWORD type = style & BS_TYPEMASK;
        if (type == BS_GROUPBOX)
            return Kind::group;
        return type <= BS_DEFPUSHBUTTON || type == BS_OWNERDRAW || (style & BS_PUSHLIKE) != 0 ? Kind::push
                                                                                              : Kind::check;
    }
    if (is("edit") || is("veledit"))
        return Kind::edit;
    return is("combobox") ? Kind::combo : Kind::other;
}

// The size of a text in the window's own font.
SIZE Measure(HWND window, const std::string& text, int width, UINT format)
{
    const HDC context = GetDC(window);
    const auto font = reinterpret_cast<HGDIOBJ>(SendMessageA(window, WM_GETFONT, 0, 0));
    const HGDIOBJ previous = SelectObject(context, font != nullptr ? font : GetStockObject(SYSTEM_FONT));
    RECT place = {0, 0, width, 0};
    DrawTextA(context, text.c_str(), static_cast<int>(text.size()), &place, DT_CALCRECT | format);
    SelectObject(context, previous);
    ReleaseDC(window, context);
    return {place.right, place.bottom};
}

std::string Name(const Part& part)
{
    return WindowClass(part.window) + " " + std::to_string(GetDlgCtrlID(part.window)) +
           (part.label.empty() ? "" : " \"" + part.label.substr(0, 40) + "\"");
}

char AccessKey(const std::string& label)
{
    for (std::size_t position = 0; position + 1 < label.size(); ++position)
    {
        if (label[position] == '&')
        {
            if (label[position + 1] != '&')
                return static_cast<char>(std::toupper(static_cast<unsigned char>(label[position + 1])));
            ++position;
        }
    }
    return '\0';
}

bool Contains(const RECT& outer, const RECT& inner)
{
    return outer.left <= inner.left && outer.top <= inner.top && outer.right >= inner.right &&
           outer.bottom >= inner.bottom;
}

class Inspection
{
public:
    Inspection(HWND dialog, const QualityOptions& options) : m_dialog(dialog), m_options(options)
    {
        GetClientRect(dialog, &m_client);
        Collect();
    }

    std::string Run()
    {
        CheckTexts();
        CheckPlaces();
        CheckAccessKeys();
        CheckDefaultButton();
        CheckTabOrder();
        CheckGrid();
        return m_findings;
    }

private:
    void Report(const std::string& finding)
    {
        m_findings += finding + "\n";
    }

    void Collect()
    {
        for (HWND child = GetWindow(m_dialog, GW_CHILD); child != nullptr;
             child = GetWindow(child, GW_HWNDNEXT))
        {
            const auto& ignored = m_options.ignoredIds;
            if (!IsWindowVisible(child) ||
                std::find(ignored.begin(), ignored.end(), GetDlgCtrlID(child)) != ignored.end())
                continue;
            Part part = {child, KindOf(child), {}, {}, (StyleOf(child) & WS_TABSTOP) != 0, nullptr};
            if (part.kind != Kind::edit && part.kind != Kind::combo && part.kind != Kind::other)
                part.label = WindowText(child);
            GetWindowRect(child, &part.place);
            MapWindowPoints(nullptr, m_dialog, reinterpret_cast<POINT*>(&part.place), 2);
            m_parts.push_back(part);
        }
        for (Part& part : m_parts)
        {
            for (const Part& group : m_parts)
                if (group.kind == Kind::group && &group != &part && Contains(group.place, part.place) &&
                    (part.group == nullptr || Contains(part.group->place, group.place)))
                    part.group = &group;
        }
    }

    void CheckTexts()
    {
        for (const Part& part : m_parts)
        {
            const int width = part.place.right - part.place.left;
            const int height = part.place.bottom - part.place.top;
            const DWORD style = StyleOf(part.window);
            SIZE needed = {0, 0};
            if (part.kind == Kind::text)
            {
                const bool wraps = (style & SS_TYPEMASK) <= SS_RIGHT;
                const UINT prefix = (style & SS_NOPREFIX) != 0 ? UINT{DT_NOPREFIX} : 0U;
                const bool ellipsis = (style & SS_ELLIPSISMASK) != 0;
                needed = Measure(part.window, part.label, width,
                                 prefix | DT_EXPANDTABS | (wraps ? UINT{DT_WORDBREAK} : UINT{DT_SINGLELINE}));
                needed.cx = ellipsis ? 0 : needed.cx;
            }
            else if (part.kind == Kind::push || part.kind == Kind::check || part.kind == Kind::group)
            {
                const bool lines = (style & BS_MULTILINE) != 0;
                const int around = part.kind == Kind::push ? 8 : part.kind == Kind::check ? 18 : 16;
                needed = Measure(part.window, part.label, width - around,
                                 lines ? UINT{DT_WORDBREAK} : UINT{DT_SINGLELINE});
                needed.cx += part.label.empty() ? 0 : around;
            }
            else if (part.kind == Kind::combo && (style & CBS_DROPDOWNLIST) == CBS_DROPDOWNLIST)
            {
                // Data of any length may stand in a list that can be typed into; only fixed choices must fit.
                needed.cx = Measure(part.window, WindowText(part.window), 0, DT_SINGLELINE | DT_NOPREFIX).cx +
                            GetSystemMetrics(SM_CXVSCROLL) + 8;
            }
            if (needed.cx > width || needed.cy > height)
            {
                Report("text is cut in " + Name(part) + ": needs " + std::to_string(needed.cx) + "x" +
                       std::to_string(needed.cy) + " of " + std::to_string(width) + "x" +
                       std::to_string(height));
            }
        }
    }

    void CheckPlaces()
    {
        for (std::size_t first = 0; first < m_parts.size(); ++first)
        {
            const Part& part = m_parts[first];
            if (!Contains(m_client, part.place))
                Report("leaves the dialog: " + Name(part));
            for (std::size_t second = first + 1; second < m_parts.size(); ++second)
            {
                const Part& other = m_parts[second];
                RECT common = {};
                const bool around = (part.kind == Kind::group && Contains(part.place, other.place)) ||
                                    (other.kind == Kind::group && Contains(other.place, part.place));
                if (!around && IntersectRect(&common, &part.place, &other.place))
                    Report("overlap: " + Name(part) + " and " + Name(other));
            }
        }
    }

    void CheckAccessKeys()
    {
        std::set<char> keys;
        for (std::size_t index = 0; index < m_parts.size(); ++index)
        {
            const Part& part = m_parts[index];
            const bool prefix = part.kind != Kind::text || (StyleOf(part.window) & SS_NOPREFIX) == 0;
            const char key = prefix ? AccessKey(part.label) : '\0';
            if (key == '\0')
                continue;
            if (!keys.insert(key).second)
                Report(std::string("access key ") + key + " twice: " + Name(part));
            const Part* field = index + 1 < m_parts.size() ? &m_parts[index + 1] : nullptr;
            if (part.kind == Kind::text && (field == nullptr || !field->tabStop ||
                                            field->kind == Kind::group || !ReadsOn(part.place, field->place)))
                Report("no field follows the label " + Name(part));
        }
    }

    void CheckDefaultButton()
    {
        int buttons = 0;
        int defaults = 0;
        for (const Part& part : m_parts)
        {
            buttons += part.kind == Kind::push ? 1 : 0;
            defaults += part.kind == Kind::push && IsDefaultButton(part.window) ? 1 : 0;
        }
        if (defaults > 1)
            Report("several default buttons");
        if (defaults == 0 && buttons > 0 && !m_options.isPage)
            Report("no default button");
    }

    // True when going from one place to the next reads naturally: on in the row, or down, or up again only to
    // a new column on the right.
    static bool ReadsOn(const RECT& from, const RECT& to)
    {
        const auto common = std::min(from.bottom, to.bottom) - std::max(from.top, to.top);
        const auto smaller = std::min(from.bottom - from.top, to.bottom - to.top);
        if (common * 2 >= smaller)
            return to.left >= from.left;
        return to.top >= from.top || to.left >= from.right;
    }

    void CheckTabOrder()
    {
        const Part* previous = nullptr;
        for (const Part& part : m_parts)
        {
            if (!part.tabStop || part.kind == Kind::group)
                continue;
            if (previous != nullptr &&
                !ReadsOn(PlaceSeenFrom(*previous, part), PlaceSeenFrom(part, *previous)))
                Report("the tab order jumps from " + Name(*previous) + " to " + Name(part));
            previous = &part;
        }
    }

    // What the eye enters or leaves: the whole group when the other one stands outside it.
    static const RECT& PlaceSeenFrom(const Part& part, const Part& other)
    {
        return part.group != nullptr && !IsInside(other, part.group) ? part.group->place : part.place;
    }

    static bool IsInside(const Part& part, const Part* group)
    {
        for (const Part* around = part.group; around != nullptr; around = around->group)
            if (around == group)
                return true;
        return false;
    }

    int ToUnits(int pixels, bool horizontal) const
    {
        RECT base = {0, 0, 400, 800};
        MapDialogRect(m_dialog, &base);
        return horizontal ? MulDiv(pixels, 400, base.right) : MulDiv(pixels, 800, base.bottom);
    }

    void CheckGrid()
    {
        for (const Part& part : m_parts)
        {
            const int height = ToUnits(part.place.bottom - part.place.top, false);
            const bool line = part.kind == Kind::push ||
                              (part.kind == Kind::edit && (StyleOf(part.window) & ES_MULTILINE) == 0);
            if (line && std::abs(height - buttonHeight) > 1)
                Report("height of " + std::to_string(height) + " units: " + Name(part));
            const int margin = std::min({ToUnits(part.place.left, true), ToUnits(part.place.top, false),
                                         ToUnits(m_client.right - part.place.right, true),
                                         ToUnits(m_client.bottom - part.place.bottom, false)});
            if (margin < smallestMargin && part.kind != Kind::picture)
                Report("margin of " + std::to_string(margin) + " units: " + Name(part));
        }
        for (const Part& part : m_parts)
        {
            for (const Part& other : m_parts)
            {
                if (part.kind != Kind::push || other.kind != Kind::push || &part == &other)
                    continue;
                const bool sameRow =
                    part.place.top == other.place.top && part.place.right <= other.place.left;
                const bool sameColumn =
                    part.place.left == other.place.left && part.place.bottom <= other.place.top;
                if ((sameRow && ToUnits(other.place.left - part.place.right, true) < smallestGap) ||
                    (sameColumn && ToUnits(other.place.top - part.place.bottom, false) < smallestGap))
                    Report("crowded: " + Name(part) + " and " + Name(other));
            }
        }
    }

    HWND m_dialog;
    QualityOptions m_options;
    RECT m_client = {};
    std::vector<Part> m_parts;
    std::string m_findings;
};

// Where Cancel stands, from the lower right corner.
std::pair<LONG, LONG> PlaceOfCancel(HWND dialog)
{
    RECT client = {};
    RECT button = {};
    GetClientRect(dialog, &client);
    GetWindowRect(GetDlgItem(dialog, IDCANCEL), &button);
    MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&button), 2);
    return {client.right - button.right, client.bottom - button.bottom};
}

void ExpectGrowth(HWND dialog, const QualityOptions& options)
{
    EXPECT_NE(GetWindowLongPtrA(dialog, GWL_STYLE) & WS_THICKFRAME, 0);
    const auto before = PlaceOfCancel(dialog);
    RECT place = {};
    RECT more = {0, 0, 60, 40}; // dialog units
    GetWindowRect(dialog, &place);
    MapDialogRect(dialog, &more);
    const int width = place.right - place.left;
    const int height = place.bottom - place.top;
    SetWindowPos(dialog, nullptr, 0, 0, width + more.right, height + more.bottom, SWP_NOMOVE | SWP_NOZORDER);
    EXPECT_EQ(PlaceOfCancel(dialog), before);
    EXPECT_EQ(Inspection(dialog, options).Run(), "");
    SetWindowPos(dialog, nullptr, 0, 0, width, height, SWP_NOMOVE | SWP_NOZORDER);
}

} // namespace

std::string DialogFindings(HWND dialog, const QualityOptions& options)
{
    return Inspection(dialog, options).Run();
}

void ExpectWellMade(const Dialog& dialog, const char* picture, const QualityOptions& options)
{
    EXPECT_EQ(DialogFindings(dialog.Handle(), options), "");
    EXPECT_TRUE(SavePicture(dialog.Handle(), picture));
    if (options.grows)
        ExpectGrowth(dialog.Handle(), options);
}

} // namespace veltest
