#pragma once

#include <array>
#include <string>
#include <string_view>

/// What is known about a tooth.
enum class cttTooth : char
{
    present = 'P',
    missing = 'M',
    extracted = 'X'
};

/// The 32 permanent teeth of a patient as a dentist sees them: two arches of 16, the patient's right on the
/// left. A tooth is named by its place (0 to 15 upper arch, 16 to 31 lower arch) or its two-digit FDI number.
class cttChart
{
public:
    static constexpr int toothCount = 32;
    static constexpr int archLength = 16;

    /// 18 to 11 and 21 to 28 above, 48 to 41 and 31 to 38 below.
    static int Number(int place);

    cttTooth Tooth(int place) const
    {
        return m_teeth[static_cast<std::size_t>(place)];
    }

    /// Takes a tooth to its next state: present, missing, extracted, present.
    void Toggle(int place);

    /// One letter per tooth in the order of the places; the empty text for a complete set, so that most
    /// records store nothing.
    std::string ToText() const;

    /// Takes such a text; false, with a complete set, when it is none.
    bool FromText(std::string_view text);

    bool operator==(const cttChart&) const = default;

private:
    static constexpr std::array<cttTooth, toothCount> CompleteSet();

    std::array<cttTooth, toothCount> m_teeth = CompleteSet();
};

/// Steps of the cursor keys from tooth to tooth; at the edges it stays where it is.
enum class cttStep
{
    left,
    right,
    up,
    down,
    first,
    last
};
int cttMove(int place, cttStep step);

constexpr std::array<cttTooth, cttChart::toothCount> cttChart::CompleteSet()
{
    std::array<cttTooth, toothCount> teeth = {};
    teeth.fill(cttTooth::present);
    return teeth;
}
