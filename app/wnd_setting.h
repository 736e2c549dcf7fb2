// PWndSetting: the modal preferences dialog, built from the embedded
// definition 162. It only shows and edits values (PPreferences): the root
// folder with its folder chooser and its "Default" button, the
// shared-cover names, the three options, the strip's text colour on a
// swatch that opens the colour chooser, and the contact addresses one a
// line. The caller reads the values back after OK and stores and applies
// them; Cancel, Escape or closing the window give nothing back.
#pragma once

#include "app/preferences.h"
#include "dialogs/wnd_dialog.h"

class PWndSetting : public SWndDialog {
public:
    // Builds the dialog, hidden, over owner's top-level window, with every
    // text set. False when it cannot be built.
    bool Create(SWnd* owner);
    // Fills the controls.
    void SetValues(const PPreferences& values);
    // What the controls hold now.
    PPreferences GetValues() const;
    // Centres it on its owner and runs it modally: 0 for OK, -1 otherwise.
    int Run();

    // The buttons' actions (also reached by clicks).
    bool ChooseFolder();
    void ResetFolder();
    bool ChooseTextColor();

    LRESULT OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) override;
};
