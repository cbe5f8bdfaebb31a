#include "suite/dialogs/teethchart.h"

#include <algorithm>

namespace
{

bool IsState(char letter)
{
    return letter == static_cast<char>(cttTooth::present) || letter == static_cast<char>(cttTooth::missing) ||
           letter == static_cast<char>(cttTooth::extracted);
}

} // namespace

int cttChart::Number(int place)
{
    const bool lower = place >= archLength;
    const int column = place % archLength;
    const bool left = column >= archLength / 2; // the patient's left
    const int quadrant = lower ? (left ? 3 : 4) : (left ? 2 : 1);
    return quadrant * 10 + (left ? column - 7 : 8 - column);
}

void cttChart::Toggle(int place)
{
    cttTooth& tooth = m_teeth[static_cast<std::size_t>(place)];
    switch (tooth)
    {
    case cttTooth::present:
        tooth = cttTooth::missing;
        break;
    case cttTooth::missing:
        tooth = cttTooth::extracted;
        break;
    case cttTooth::extracted:
        tooth = cttTooth::present;
        break;
    }
}

std::string cttChart::ToText() const
{
    if (*this == cttChart())
    {
        return {};
    }
    std::string text;
    for (const cttTooth tooth : m_teeth)
    {
        text += static_cast<char>(tooth);
    }
    return text;
}

bool cttChart::FromText(std::string_view text)
{
    *this = cttChart();
    if (text.empty())
    {
        return true;
    }
    if (text.size() != m_teeth.size() || !std::all_of(text.begin(), text.end(), IsState))
    {
        return false;
    }
    std::transform(text.begin(), text.end(), m_teeth.begin(),
                   [](char letter) { return static_cast<cttTooth>(letter); });
    return true;
}

int cttMove(int place, cttStep step)
{
    const int column = place % cttChart::archLength;
    const int arch = place - column;
    switch (step)
    {
    case cttStep::left:
        return arch + std::max(column - 1, 0);
    case cttStep::right:
        return arch + std::min(column + 1, cttChart::archLength - 1);
    case cttStep::up:
        return column;
    case cttStep::down:
        return cttChart::archLength + column;
    case cttStep::first:
        return arch;
    case cttStep::last:
        return arch + cttChart::archLength - 1;
    }
    return place;
}
