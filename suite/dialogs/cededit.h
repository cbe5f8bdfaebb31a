#pragma once

#include "suite/dialogs/ctlapi.h"

/// The suite's edit field, window class "VELEDIT". The window text that a dialog template gives it is the
/// field's label: it is shown inside, greyed, while the field is empty and has not the focus. The field's own
/// text starts empty, and all text messages work on that. Otherwise it is the system's edit control with all
/// its styles and messages. The class needs no object of the framework; a dialog may bind a cedCEdit, a CEdit
/// or nothing to it. Label and state belong to the window.
class VELCTL_API cedCEdit : public CEdit
{
    DECLARE_DYNAMIC(cedCEdit)

public:
    /// Registers the window class for a module; dialogs whose templates lie in that module can then use it.
    /// TRUE also when it is registered already. UnregisterControlClass must come before the module unloads,
    /// with no window of the class left.
    static BOOL RegisterControlClass(HINSTANCE hInstance);
    static BOOL UnregisterControlClass(HINSTANCE hInstance);

protected:
    DECLARE_MESSAGE_MAP()
};

/// The field for a patient ID: takes as many characters as an ID may have and changes none of them; what is
/// not allowed is refused later with a message instead of being altered silently. For any edit control.
class VELCTL_API cedCEditID : public CEdit
{
    DECLARE_DYNAMIC(cedCEditID)

public:
    static constexpr UINT maxCharacters = 25;

protected:
    void PreSubclassWindow() override;
    DECLARE_MESSAGE_MAP()
};
