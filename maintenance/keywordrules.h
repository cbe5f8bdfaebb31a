#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Rules of the keyword field and its menu.

/// Which stored list a keyword field offers.
enum kwList : int
{
    kwListNone = -1,
    kwListPatient = 0,
    kwListImage = 1,
};

/// Menu commands: "Edit These..." and, from the one after the base on, the keywords of the list.
inline constexpr unsigned kwCommandEdit = 24999;
inline constexpr unsigned kwCommandBase = 25000;
/// Command ids are 16 bits wide and those from 0xF000 on belong to the system, so the menu ends here.
inline constexpr unsigned kwCommandLast = 0xEFFF;

/// The list that a new field's window text names, in any letter case.
kwList kwListFromText(std::string_view windowText);

/// A keyword as the menu holds it.
struct kwMenuItem
{
    unsigned command;
    std::string text; ///< with ampersands doubled, as menus want it
};

/// The menu's items for a list. An empty keyword gives no item but uses up its number, so the commands after
/// it name a later position than their own.
std::vector<kwMenuItem> kwMenu(const std::vector<std::string>& keywords);

/// The position in the menu whose text a keyword command yields. After an empty keyword it is one past the
/// command's own item: hosts' users know it that way.
unsigned kwMenuPosition(unsigned command);

/// Doubles ampersands so that a menu shows them, and brings them back.
std::string kwToMenuText(std::string_view keyword);
std::string kwFromMenuText(std::string_view menuText);

/// The field's text after a keyword was chosen.
std::string kwAppend(const std::string& text, const std::string& keyword);
