// What other programs of the suite need to know of the transfer program: how it is found, started and woken,
// and what its automation object answers. Plain constants; needs nothing but the compiler.
#pragma once

namespace rasko
{
inline constexpr char ProgramFile[] = "velrasko64.exe";
inline constexpr char ProgId[] = "VelRasko64.Application";
inline constexpr char ClassId[] = "{6E0B1C52-93D4-4C6B-8B1D-2F0B6A7C51E3}";

/// Application options that the program and the module share; whoever misses one writes it with its default.
/// That of the service is the setting of this name in the section "Environment", else the service of this
/// computer.
inline constexpr char OptionService[] = "RASKOTARGET"; ///< "host" or "host:port"
inline constexpr char DefaultService[] = "localhost:8443";

/// The program's window: hidden or not, it exists as long as the program runs. FindWindow(WindowClass,
/// nullptr).
inline constexpr char WindowClass[] = "VelRaskoWindow";
inline constexpr unsigned QuitCommand =
    0xE141; ///< its WM_COMMAND that ends the program, as the member Quit does
/// Registered message, both parameters 0: look into the task table now.
inline constexpr char WakeMessage[] = "WmVeltrixRasko3741";

/// Command line of the program. Without one it shows its window. "/RegServer" and "/UnregServer" register
/// the class below HKEY_LOCAL_MACHINE; COM itself starts it with "/Automation" or "-Embedding".
inline constexpr char OptionsSwitch[] = "/Options"; ///< opens the options at once
inline constexpr char HiddenSwitch[] = "/Hidden";   ///< starts with its window hidden

/// Members of the automation object. It is late bound (IDispatch); the numbers are its DISPIDs. Texts are
/// BSTR. Where a call answers a sentence, an empty one means success and any other can be shown as it stands.
enum Member : long
{
    HasCredentials = 1,   ///< get, VARIANT_BOOL: both are known for the present service
    UserName = 2,         ///< get
    Password = 3,         ///< get; given to this user's processes only, never stored unprotected
    EnterCredentials = 4, ///< method: opens the sign-in window and returns at once; poll HasCredentials
    ShowOptions = 5,      ///< method: opens the options and returns at once
    /// Method (patient GUID, bytes as decimal text) -> sentence: asks the service for room and for the
    /// patient's ID there, and stores both in the service-patients table. Blocks up to a minute.
    RegisterPatient = 6,
    /// Method (patient GUID, recipients, notes) -> sentence: says who receives the record, and what is said
    /// to them. Recipients are e-mail addresses or user names separated by ";"; they are added to those that
    /// the record already has.
    SetRecipients = 7,
    WindowHandle = 8, ///< get, long: the program's window
    Quit = 9,         ///< method: ends the program; a transfer under way goes on at the next start
};
inline constexpr const wchar_t* MemberNames[] = {L"HasCredentials",   L"UserName",     L"Password",
                                                 L"EnterCredentials", L"ShowOptions",  L"RegisterPatient",
                                                 L"SetRecipients",    L"WindowHandle", L"Quit"};
} // namespace rasko
