// The control factory: live controls from the records of a dialog
// definition, and a whole dialog window from a definition file.
//
// Each type of the type table is made as its toolkit, controls or editors
// class; every key of the record's property text that the type reads is
// applied (styles, values, colours, contents, files through the dialog's
// provider). Types whose control the program does not have are left out,
// and so is any record whose control cannot be made: the rest of the
// dialog is built all the same, so a damaged definition gives a window
// without what could not be read, never a failure of the window.
#pragma once

#include <cstdint>

#include "dialogs/dialog_definition.h"
#include "dialogs/wnd_dialog.h"

class SFile;
class SWnd;

// Whether the factory makes a control of type (false for the dialog
// itself, a type outside the table, and the types without a control class).
bool IsControlTypeBuilt(int type);

// Builds the control of one record as a child of parent, entered in
// dialog's lists with its ID and name (dialog may be null: the control is
// then the caller's to delete). live off (the editor's preview) takes
// WS_VISIBLE out of the style. Null when the type is not built or the
// control cannot be made.
SWnd* BuildControl(SWndDialog* dialog, SWnd* parent, const SDialogDefinition::_SCtrl& record,
                   const SDialogResourceProvider& provider, bool live);

// Builds dialog from the definition in source (read from its position):
// the window, its controls in file order, tab order, status bar, tab pages,
// toolbar and menu, colours, size limits, anchors, modal keys and focus.
// False when the window already exists, the definition is refused, or the
// window cannot be made.
bool BuildDialog(SFile* source, SWndDialog* dialog, const SDialogBuildOptions& options);

// The window core's anchor bits for a dialog anchor value (HALIGN OR
// VALIGN of a definition): the core moves edges, a definition moves a
// box. False when no set of edges gives the same layout (right together
// with width or centre, for instance); the dialog then moves the control
// itself by ApplyAnchorValue.
bool DialogAnchorToWindowAnchor(uint32_t dialogAnchor, unsigned* windowAnchor);
