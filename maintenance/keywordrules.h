#pragma once

#include <string>
#include <string_view>
#include <vector>

/// Rules of the keyword field, its menu and the keyword editor.
namespace maint
{

/// Which stored list a keyword field offers.
enum class KeywordList : int
{
    None = -1,
    Patient = 0,
    Image = 1,
};

/// Menu commands: "Edit These..." and, from the one after the base on, the keywords of the list.
inline constexpr unsigned keywordCommandEdit = 24999;
inline constexpr unsigned keywordCommandBase = 25000;
/// Command ids are 16 bits wide and those from 0xF000 on belong to the system, so the menu ends here.
inline constexpr unsigned keywordCommandLast = 0xEFFF;

/// The list that a new field's window text names, in any letter case.
KeywordList KeywordListFromText(std::string_view windowText);

/// A keyword as the menu holds it.
struct KeywordMenuItem
{
    unsigned command;
    std::string text; ///< with ampersands doubled, as menus want it
};

/// The menu's items for a list. An empty keyword gives no item but uses up its number, so the commands after
/// it name a later position than their own.
std::vector<KeywordMenuItem> KeywordMenu(const std::vector<std::string>& keywords);

/// The position in the menu whose text a keyword command yields. After an empty keyword it is one past the
/// command's own item: hosts' users know it that way.
unsigned KeywordMenuPosition(unsigned command);

/// Doubles ampersands so that a menu shows them, and brings them back.
std::string ToMenuText(std::string_view keyword);
std::string FromMenuText(std::string_view menuText);

/// The field's text after a keyword was chosen.
std::string AppendKeyword(const std::string& text, const std::string& keyword);

/// The most characters that a keyword may have: list boxes of the system return no longer texts.
inline constexpr int longestKeyword = 500;

/// Whether a text can be added to a list of keywords.
enum class KeywordCheck
{
    Accepted,
    Empty, ///< nothing or only blanks
    TooLong,
    Duplicate,
};

/// isListed says whether the list holds the text in any letter case.
KeywordCheck CheckKeyword(std::string_view text, bool isListed);

} // namespace maint
