#include "app/wnd_setting.h"

#include "app/resources.h"
#include "editors/code_edit_ctrl.h"
#include "foundation/file.h"
#include "foundation/message_numbers.h"
#include "toolkit/button_ctrls.h"
#include "toolkit/notification.h"
#include "toolkit/selector.h"

namespace {

// The texts set on showing, by control name.
constexpr const char* TEXTS[][2] = {
    {"GRP_GENERAL", "General"},
    {"TXT_FOLDER", "Folder:"},
    {"TXT_IMAGES", "Images:"},
    {"TXT_OPTIONS", "Options:"},
    {"BTN_FOLDERDEF", "Default"},
    {"CHECK_TOOLBAR", "Small Icons"},
    {"CHECK_AUTOHIDE", "Auto Hide Window after playing from thumbnail"},
    {"GRP_TASKBAR", "Taskbar"},
    {"CHECK_TASKBAR", "Show Taskbar"},
    {"TXT_TASKTEXT", "Text Color"},
    {"CANCEL", "Cancel"},
};

constexpr const char* CAPTION = "Preferences";

} // namespace

bool PWndSetting::Create(SWnd* owner) {
    SFileMem file("BINARY", RESOURCE_PREFERENCES_DIALOG);
    SDialogBuildOptions options;
    options.parent = owner;
    options.forcePopup = true;
    options.stayHidden = true;
    if (!CreateFromDefinition(&file, options)) {
        return false;
    }
    SetText(CAPTION);
    for (const auto& [name, text] : TEXTS) {
        if (SWnd* control = GetControl(name)) {
            control->SetText(text);
        }
    }
    return true;
}

void PWndSetting::SetValues(const PPreferences& values) {
    if (SWnd* edit = GetControl("EDIT_FOLDER")) {
        edit->SetText(values.folder.c_str());
    }
    if (SWnd* edit = GetControl("EDIT_IMAGES")) {
        edit->SetText(values.images.c_str());
    }
    const std::pair<const char*, bool> checks[] = {{"CHECK_TOOLBAR", values.smallIcons},
                                                   {"CHECK_AUTOHIDE", values.autoHide},
                                                   {"CHECK_TASKBAR", values.taskbar}};
    for (const auto& [name, on] : checks) {
        if (auto* check = GetControlAs<SCheckCtrl>(name)) {
            check->SetCheck(on);
        }
    }
    if (SWnd* swatch = GetControl("TASK_TEXT")) {
        swatch->SetBackColor(values.taskbarColor & 0xFFFFFF);
        swatch->Invalidate();
    }
    if (auto* emails = GetControlAs<SCodeEditCtrl>("EDIT_EMAILS")) {
        emails->SetText(EmailsToLines(values.emails.c_str()).c_str());
    }
}

PPreferences PWndSetting::GetValues() const {
    PPreferences values;
    if (SWnd* edit = GetControl("EDIT_FOLDER")) {
        values.folder = edit->GetText();
    }
    if (SWnd* edit = GetControl("EDIT_IMAGES")) {
        values.images = edit->GetText();
    }
    auto checked = [this](const char* name) {
        auto* check = GetControlAs<SCheckCtrl>(name);
        return check != nullptr && check->GetCheck();
    };
    values.smallIcons = checked("CHECK_TOOLBAR");
    values.autoHide = checked("CHECK_AUTOHIDE");
    values.taskbar = checked("CHECK_TASKBAR");
    if (SWnd* swatch = GetControl("TASK_TEXT")) {
        values.taskbarColor = swatch->GetBackColor() & 0xFFFFFF;
    }
    if (auto* emails = GetControlAs<SCodeEditCtrl>("EDIT_EMAILS")) {
        values.emails = EmailsFromLines(emails->GetEditText().c_str());
    }
    return values;
}

int PWndSetting::Run() {
    CenterOnParent(false);
    if (SWnd* edit = GetControl("EDIT_FOLDER")) {
        SetFocus(edit->GetHandle());
    }
    return DoModal() == 0 ? 0 : -1;
}

bool PWndSetting::ChooseFolder() {
    SWnd* edit = GetControl("EDIT_FOLDER");
    if (edit == nullptr) {
        return false;
    }
    SSelector selector(this);
    SString folder;
    if (!selector.Folder("Choose your root folder...", edit->GetText().c_str(), &folder) ||
        folder.IsEmpty()) {
        return false;
    }
    edit->SetText(folder.c_str());
    return true;
}

void PWndSetting::ResetFolder() {
    if (SWnd* edit = GetControl("EDIT_FOLDER")) {
        edit->SetText("");
    }
}

bool PWndSetting::ChooseTextColor() {
    SWnd* swatch = GetControl("TASK_TEXT");
    if (swatch == nullptr) {
        return false;
    }
    SSelector selector(this);
    uint32_t color = swatch->GetBackColor() & 0xFFFFFF;
    if (!selector.Color("Text Color", &color)) {
        return false;
    }
    swatch->SetBackColor(color);
    swatch->Invalidate();
    return true;
}

LRESULT PWndSetting::OnMessage(unsigned message, WPARAM wParam, LPARAM lParam) {
    SNotification note(message, wParam, lParam);
    switch (message) {
    case SN_BUTTON_CLICKED:
        if (SWnd* control = note.Control()) {
            if (control == GetControl("BTN_FOLDER")) {
                ChooseFolder();
                return 0;
            }
            if (control == GetControl("BTN_FOLDERDEF")) {
                ResetFolder();
                return 0;
            }
        }
        break;
    case SN_MEDIA_BUTTON_CLICKED:
        if (note.Control() != nullptr && note.Control() == GetControl("TASK_TEXT")) {
            ChooseTextColor();
            return 0;
        }
        break;
    case SM_OK:
        // A text longer than the store hands back would read as empty at
        // the next start: the user shortens it first.
        if (const char* name = FindOverlongPreference(GetValues())) {
            SString text;
            text.Format("The value \"%s\" is too long to be kept: at most 255 bytes.", name);
            MessageBox(GetHandle(), text.c_str(), CAPTION, MB_OK | MB_ICONWARNING);
            return 0;
        }
        break;
    default:
        break;
    }
    return SWndDialog::OnMessage(message, wParam, lParam);
}
