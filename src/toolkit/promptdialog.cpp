#include "toolkit/promptdialog.h"

#include <algorithm>
#include <cstring>

#include "platform/system/messagebox.h"

TSXpromptdialog::TSXpromptdialog(CWnd& parent, const char* dialogCaption, const char* fieldLabel,
                                 char* buffer, int fieldLimit)
    : CDialog(resourceNumber, parent), caption(dialogCaption), label(fieldLabel), text(buffer),
      limit(fieldLimit) {}

void TSXpromptdialog::OnInitDialog() {
    CDialog::OnInitDialog();
    SetWindowTextA(caption);
    SetDlgItemTextA(labelId, label);
    SetDlgItemTextA(fieldId, text);
    LimitText(fieldId, limit);
}

void TSXpromptdialog::OnOK() {
    char typed[500] = "";
    GetDlgItemTextA(fieldId, typed, static_cast<std::size_t>(std::clamp(limit, 0, 499)));
    std::memcpy(text, typed, std::strlen(typed) + 1);
    CDialog::OnOK();
}

int promptForText(CWnd& parent, const char* caption, const char* label, char* text, int limit) {
    TSXpromptdialog dialog(parent, caption, label, text, limit);
    return dialog.DoModal() == IDOK ? 1 : 0;
}
